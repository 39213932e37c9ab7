#include "sandbox/sandbox.h"

#include <fcntl.h>
#include <linux/capability.h>
#include <mntent.h>
#include <sched.h>
#include <sys/file.h>
#include <sys/mman.h>
#include <sys/mount.h>
#include <sys/prctl.h>
#include <sys/statvfs.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <fstream>
#include <map>
#include <optional>
#include <set>

namespace fs = std::filesystem;

namespace sandbox {

namespace {

/// What to do where namespaces are refused.
std::string remedy() {
    for (auto const& [setting, refusing] :
         {std::pair<std::string, char>("user.max_user_namespaces", '0'),
          {"kernel.unprivileged_userns_clone", '0'},
          {"kernel.apparmor_restrict_unprivileged_userns", '1'}}) {
        std::string file = "/proc/sys/" + setting;
        std::replace(file.begin(), file.end(), '.', '/');
        if (std::ifstream(file).get() == refusing)
            return setting + " is " + refusing + ": change it with sysctl, or run as root";
    }
    return "run as root and outside of a chroot; a container has to allow CAP_SYS_ADMIN, and its "
           "seccomp filter unshare and mount";
}

[[noreturn]] void refuse(std::string const& what, std::string const& advice) {
    throw Refused("there can be no sandbox: " + what + "; " + advice);
}

void check(bool succeeds, std::string const& what) {
    if (succeeds) return;
    std::string const cause = std::strerror(errno); // before the remedy is looked for
    refuse(what + ": " + cause, remedy());
}

/// A path for this process alone to what the descriptor stands for, whatever its name.
std::string path_of(int descriptor) {
    return "/proc/self/fd/" + std::to_string(descriptor);
}

int open_directory(fs::path const& directory, int flags) {
    int const opened = open(directory.c_str(), O_DIRECTORY | O_CLOEXEC | flags);
    check(opened != -1, "open " + directory.string());
    return opened;
}

bool lies_below(fs::path const& path, fs::path const& directory) {
    return path != directory && *path.lexically_relative(directory).begin() != "..";
}

/// Whether all directories from below `outer` down to `directory` are this user's own. An ordinary
/// user's overlay cannot change what lies below one that is not.
bool is_own_down_to(fs::path const& directory, fs::path const& outer) {
    for (fs::path step = directory; step != outer; step = step.parent_path()) {
        struct stat status {};
        check(stat(step.c_str(), &status) == 0, "stat " + step.string());
        if (status.st_uid != geteuid() || status.st_gid != getegid()) return false;
    }
    return true;
}

struct Covered {
    /// With their status: in a user namespace the owner could not be told.
    std::map<fs::path, struct stat> directories;
    std::vector<fs::path> mounted_files; ///< below them; these stay, read-only
};

/// The directories that need an overlay of their own, parents first: those that lie in no other or
/// cannot be changed through it, and all mounts below them. One that this user cannot enter needs
/// none.
Covered covered(std::vector<fs::path> const& named, bool is_root) {
    std::set<fs::path> directories;
    std::error_code absent;
    for (fs::path const& name : named)
        if (fs::is_directory(name, absent) && access(name.c_str(), R_OK | X_OK) == 0)
            directories.insert(fs::canonical(name));
    directories.erase("/"); // it could only be entered, not covered
    Covered result;
    for (fs::path const& directory : directories) { // parents come before what lies in them
        auto const covers = [&](auto const& outer) { return lies_below(directory, outer.first); };
        auto const outer =
            std::find_if(result.directories.rbegin(), result.directories.rend(), covers);
        bool const is_covered = outer != result.directories.rend() &&
                                (is_root || is_own_down_to(directory, outer->first));
        if (!is_covered) result.directories[directory];
    }

    if (result.directories.empty()) refuse("there is no directory that may change", "name one");
    std::FILE* const mounts = setmntent("/proc/self/mounts", "re");
    check(mounts, "read /proc/self/mounts");
    while (mntent const* const mount = getmntent(mounts)) {
        std::string const point = mount->mnt_dir;
        auto const covers = [&](auto const& outer) { return lies_below(point, outer.first); };
        bool const is_inside =
            std::any_of(result.directories.begin(), result.directories.end(), covers);
        if (!is_inside || !fs::exists(point, absent)) continue; // or hidden by a later mount
        if (!is_root)
            refuse(point + " is mounted below a directory that may change, and cannot be covered "
                           "by an ordinary user",
                   "unmount it or run as root; below HOME or TMPDIR, let these name another");
        if (fs::is_directory(point)) result.directories[point];
        else result.mounted_files.emplace_back(point);
    }
    endmntent(mounts);
    for (auto& [directory, status] : result.directories)
        check(stat(directory.c_str(), &status) == 0, "stat " + directory.string());
    return result;
}

/// A folder on the disk for the upper layers, where an ordinary user's cannot lie in memory. It is
/// locked while it is in use, so that the next run can tell one that was left behind. To be made by
/// the one user of a user namespace: an overlay leaves folders in it that have no rights at all.
class ScratchFolder {
  public:
    ScratchFolder() {
        for (fs::directory_entry const& entry : fs::directory_iterator("/var/tmp"))
            if (entry.path().string().rfind(prefix, 0) == 0 && lock(entry.path()))
                fs::remove_all(entry);
        path = prefix + std::string("XXXXXX");
        check(mkdtemp(path.data()) && lock(path), "make a folder in /var/tmp");
    }
    ~ScratchFolder() {
        std::error_code next_run_will_do;
        fs::remove_all(path, next_run_will_do);
    }
    ScratchFolder(ScratchFolder const&) = delete;
    ScratchFolder& operator=(ScratchFolder const&) = delete;

    std::string path;

  private:
    static constexpr char const* prefix = "/var/tmp/wb-trial-sandbox-";

    /// The lock is held until this process and the one in the sandbox have ended.
    static bool lock(fs::path const& folder) {
        int const file = open(folder.c_str(), O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
        struct stat status {};
        return fstat(file, &status) == 0 && status.st_uid == geteuid() &&
               flock(file, LOCK_EX | LOCK_NB) == 0;
    }
};

/// Makes the process the one user of a user namespace, in which it stays who it is and may mount.
void enter_user_namespace() {
    std::string const user = std::to_string(geteuid());
    std::string const group = std::to_string(getegid());
    check(unshare(CLONE_NEWUSER) == 0, "unshare");
    auto const write = [](std::string const& file, std::string const& text) {
        check(bool(std::ofstream("/proc/self/" + file) << text << std::flush), "write " + file);
    };
    write("setgroups", "deny");
    write("uid_map", user + " " + user + " 1");
    write("gid_map", group + " " + group + " 1");
}

/// What nothing that is run may have: what this process lets nobody have now, and what leads out of
/// the sandbox.
std::set<int> forbidden_capabilities() {
    std::set<int> forbidden = {CAP_SYS_ADMIN, CAP_SYS_PTRACE, CAP_SYS_CHROOT,
                               CAP_MKNOD,     CAP_SYS_RAWIO,  CAP_SYS_MODULE};
    for (int number = 0, held = 0; (held = prctl(PR_CAPBSET_READ, number)) >= 0; ++number)
        if (held == 0) forbidden.insert(number);
    return forbidden;
}

/// Takes them from what is run, and from this process what it has only in its user namespace.
void drop_capabilities(std::set<int> const& forbidden, bool is_root) {
    for (int const capability : forbidden)
        check(prctl(PR_CAPBSET_DROP, capability) == 0, "drop a capability");
    __user_cap_header_struct header = {_LINUX_CAPABILITY_VERSION_3, 0};
    __user_cap_data_struct none[_LINUX_CAPABILITY_U32S_3] = {};
    if (!is_root) check(syscall(SYS_capset, &header, none) == 0, "drop all capabilities");
}

/// Whether this process can do without a user namespace, as root can who was not confined.
bool has_rights_of_root(int file_in_memory) {
    __user_cap_header_struct header = {_LINUX_CAPABILITY_VERSION_3, 0};
    __user_cap_data_struct held[_LINUX_CAPABILITY_U32S_3] = {};
    check(syscall(SYS_capget, &header, held) == 0, "read the capabilities");
    for (int const needed : {CAP_SYS_ADMIN, CAP_DAC_OVERRIDE, CAP_CHOWN, CAP_FOWNER, CAP_SETPCAP})
        if ((held[0].effective & CAP_TO_MASK(needed)) == 0) return false;
    return fsetxattr(file_in_memory, "trusted.overlay.probe", "", 0, 0) == 0;
}

/// Makes the topmost folder of an upper layer, which is what the directory itself is in the
/// sandbox. Where its owner cannot be kept, this user becomes it, with the rights that they have.
int make_upper(int base, std::string const& name, int lower, struct stat const& status) {
    check(mkdirat(base, name.c_str(), S_IRWXU) == 0, "mkdir");
    int const upper = openat(base, name.c_str(), O_DIRECTORY | O_CLOEXEC);
    mode_t mode = status.st_mode & 07777;
    if (fchown(upper, status.st_uid, status.st_gid) != 0 && status.st_uid != geteuid()) {
        mode &= ~mode_t{S_IRWXU};
        for (int const right : {R_OK, W_OK, X_OK})
            if (access(path_of(lower).c_str(), right) == 0) mode |= mode_t(right) << 6;
    }
    check(fchmod(upper, mode) == 0, "chmod");
    return upper;
}

/// Returns a mount that is not in its place yet. The layers are named by descriptors, because a
/// directory's own name may hold what separates the options. Redirections and partial copies are
/// off, as they are for an ordinary user, so that the upper layer holds every name that changed.
int make_overlay(int lower, int upper, int work, bool is_root) {
    int const context = fsopen("overlay", FSOPEN_CLOEXEC);
    check(context != -1, "make an overlay");
    auto const set = [&](char const* option, std::string const& value) {
        return fsconfig(context, FSCONFIG_SET_STRING, option, value.c_str(), 0) == 0;
    };
    // What the mount below does not allow, this one does not either: the flags are the same bits.
    struct statvfs status {};
    bool const is_made =
        set("lowerdir", path_of(lower)) && set("upperdir", path_of(upper)) &&
        set("workdir", path_of(work)) &&
        (is_root ? set("redirect_dir", "off") && set("metacopy", "off")
                 : fsconfig(context, FSCONFIG_SET_FLAG, "userxattr", nullptr, 0) == 0) &&
        fsconfig(context, FSCONFIG_CMD_CREATE, nullptr, nullptr, 0) == 0 &&
        fstatvfs(lower, &status) == 0;
    return is_made ? fsmount(context, FSMOUNT_CLOEXEC, status.f_flag & 0xf) : -1;
}

void put_in_place(int mount, fs::path const& place) {
    check(move_mount(mount, "", AT_FDCWD, place.c_str(), MOVE_MOUNT_F_EMPTY_PATH) == 0,
          "mount at " + place.string());
}

/// Covers the directories and makes all else read-only. The upper layers lie in the folder
/// `scratch`, or in memory where that is empty.
std::vector<Overlay> mount_overlays(Covered const& covered, std::string const& scratch,
                                    bool is_root) {
    auto const& directories = covered.directories;
    fs::path const place = fs::current_path();
    std::string const base_path = scratch.empty() ? directories.begin()->first.string() : scratch;
    check(unshare(CLONE_NEWNS) == 0, "unshare");
    check(mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0, "make mounts private");
    // Where a container hides parts of /proc this fails; the old one will do then.
    mount("proc", "/proc", "proc", MS_NOSUID | MS_NODEV | MS_NOEXEC, nullptr);
    std::vector<int> lowers;
    lowers.reserve(directories.size());
    for (auto const& [directory, status] : directories)
        lowers.push_back(open_directory(directory, O_PATH));
    if (scratch.empty())
        check(mount("tmpfs", base_path.c_str(), "tmpfs", 0, "mode=0700") == 0, "mount a tmpfs");
    int const base = open_directory(base_path, O_RDONLY);

    std::vector<int> mounts;
    std::vector<Overlay> overlays;
    for (auto const& [directory, status] : directories) {
        int const lower = lowers[mounts.size()];
        std::string const name = std::to_string(mounts.size());
        int const upper = make_upper(base, name, lower, status);
        int const work = make_upper(base, name + "-work", lower, status);
        mounts.push_back(make_overlay(lower, upper, work, is_root));
        check(mounts.back() != -1, "lay an overlay over " + directory.string());
        overlays.push_back({directory, path_of(lower), path_of(upper), {}});
    }
    mount_attr read_only = {};
    read_only.attr_set = MOUNT_ATTR_RDONLY;
    check(mount_setattr(AT_FDCWD, "/", AT_RECURSIVE, &read_only, sizeof read_only) == 0,
          "make the disk read-only");
    if (scratch.empty()) umount2(base_path.c_str(), MNT_DETACH);
    std::vector<int> files; // taken while neither the tmpfs nor an overlay hides one
    for (fs::path const& file : covered.mounted_files) {
        files.push_back(open_tree(AT_FDCWD, file.c_str(), OPEN_TREE_CLONE | OPEN_TREE_CLOEXEC));
        check(files.back() != -1, "open the mount at " + file.string());
    }
    for (std::size_t number = 0; number < mounts.size(); ++number) {
        put_in_place(mounts[number], overlays[number].directory);
        check(stat(overlays[number].directory.c_str(), &overlays[number].start) == 0,
              "stat " + overlays[number].directory.string());
    }
    for (std::size_t number = 0; number < files.size(); ++number)
        put_in_place(files[number], covered.mounted_files[number]);
    fs::current_path(place);
    return overlays;
}

} // namespace

int run(std::vector<fs::path> const& directories,
        std::function<int(std::vector<Overlay> const&)> const& work) {
    int const in_memory = memfd_create("probe", MFD_CLOEXEC);
    bool const is_root = has_rights_of_root(in_memory);
    bool const needs_scratch = !is_root && fsetxattr(in_memory, "user.probe", "", 0, 0) != 0;
    close(in_memory);
    Covered const all = covered(directories, is_root);
    std::set<int> const forbidden = forbidden_capabilities();
    if (!is_root) enter_user_namespace();
    std::optional<ScratchFolder> scratch;
    if (needs_scratch) scratch.emplace();

    std::array<int, 2> refusal; // a pipe through which the child says why it cannot begin
    check(pipe2(refusal.data(), O_CLOEXEC) == 0 && unshare(CLONE_NEWPID) == 0, "unshare");
    pid_t const child = fork();
    check(child != -1, "fork");
    if (child == 0) {
        std::vector<Overlay> overlays;
        try {
            check(prctl(PR_SET_PDEATHSIG, SIGKILL) == 0, "prctl");
            overlays = mount_overlays(all, scratch ? scratch->path : "", is_root);
            drop_capabilities(forbidden, is_root);
        } catch (std::exception const& error) {
            bool const is_told = write(refusal[1], error.what(), std::strlen(error.what())) > 0;
            _exit(is_told ? 0 : 1);
        }
        close(refusal[1]);
        _exit(work(overlays));
    }
    close(refusal[1]);
    std::array<char, 4096> words;
    ssize_t const size = read(refusal[0], words.data(), words.size());
    close(refusal[0]);
    int status = 0;
    waitpid(child, &status, 0);
    if (size > 0) throw Refused(std::string(words.data(), std::size_t(size)));
    if (WIFEXITED(status)) return WEXITSTATUS(status);
    throw std::runtime_error("signal " + std::to_string(WTERMSIG(status)) + " ended the sandbox");
}

} // namespace sandbox
