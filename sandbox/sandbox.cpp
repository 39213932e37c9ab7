#include "sandbox/sandbox.h"

#include <fcntl.h>
#include <linux/keyctl.h>
#include <poll.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <set>
#include <system_error>

#include "sandbox/capabilities.h"
#include "sandbox/overlays.h"
#include "sandbox/ownership.h"
#include "sandbox/scratch_folder.h"
#include "sandbox/user_namespace.h"

namespace fs = std::filesystem;

namespace sandbox {

namespace {

/// The directories among those that this user has the right to, free of links.
std::set<fs::path> directories_with(int right, std::vector<fs::path> const& names) {
    std::set<fs::path> directories;
    std::error_code absent;
    for (fs::path const& name : names)
        if (fs::is_directory(name, absent) && access(name.c_str(), right) == 0)
            directories.insert(fs::canonical(name));
    directories.erase("/"); // it can be entered, but not covered
    return directories;
}

/// Lets this process open as many files as it may, and returns the limits that it had.
rlimit raise_descriptor_limit(Coverage const& coverage) {
    rlimit limits{};
    require(getrlimit(RLIMIT_NOFILE, &limits) == 0, "read the limit of open files");
    rlimit const raised = {limits.rlim_max, limits.rlim_max};
    std::size_t const needed = 16 + 2 * coverage.directories.size() +
                               hidden_mounts(coverage.mounts, coverage.directories).size();
    if (raised.rlim_cur < needed || setrlimit(RLIMIT_NOFILE, &raised) != 0)
        throw DescriptorsRefused(
            "there can be no sandbox: for the mounts that there are it needs " +
            std::to_string(needed) + " open files; raise the limit with ulimit -n");
    return limits;
}

/// What has to be found out before there is a user namespace.
struct Preparation {
    bool is_root;
    Coverage coverage;
    std::set<fs::path> needed, wanted; ///< those that can be written
    std::set<int> forbidden_capabilities;
    rlimit descriptors; ///< for what runs in the sandbox
};

Preparation prepare(Directories const& named) try {
    bool const is_root = has_rights_of_root();
    std::vector<fs::path> all = named.needed;
    all.insert(all.end(), named.wanted.begin(), named.wanted.end());
    Coverage const coverage = plan_coverage(all, is_root);
    rlimit const descriptors = raise_descriptor_limit(coverage);
    if (!is_root) require_own(directories_with(R_OK, named.needed), coverage);
    return {is_root,
            coverage,
            directories_with(W_OK, named.needed),
            directories_with(W_OK, named.wanted),
            forbidden_capabilities(),
            descriptors};
} catch (std::system_error const& error) { // for want of a thread or a descriptor
    refuse(std::string("it cannot be prepared: ") + error.what());
}

/// Those of the directories that are read-only now, each with why.
std::map<fs::path, std::string> find_read_only(std::set<fs::path> const& directories,
                                               Coverage const& coverage, Overlays const& overlays) {
    std::map<fs::path, std::string> found;
    for (fs::path const& directory : directories) {
        if (access(directory.c_str(), W_OK) == 0 || errno != EROFS) continue;
        fs::path const covered = nearest_above(coverage.directories, directory);
        fs::path const mount = first_below(coverage.mounts, directory);
        auto const refused = overlays.refused.find(covered);
        found[directory] = refused != overlays.refused.end()
                               ? "the overlay over " + covered.string() +
                                     " is refused: " + std::strerror(refused->second)
                           : mount.empty() ? "it cannot be listed"
                                           : "of the mount at " + mount.string();
    }
    return found;
}

/// Shuts this process, the first one of its namespace, in.
Inside enter(Preparation const& prepared, std::string const& scratch) {
    std::error_code removed;
    fs::path const place = fs::current_path(removed);
    require_permission(unshare(CLONE_NEWNS) == 0, "unshare");
    require_permission(mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0,
                       "make the mounts private");
    // Where a container hides parts of /proc this fails; the old one will do then.
    mount("proc", "/proc", "proc", MS_NOSUID | MS_NODEV | MS_NOEXEC, nullptr);
    Overlays const overlays = mount_overlays(prepared.coverage, scratch, prepared.is_root,
                                             int(prepared.descriptors.rlim_cur));
    auto const read_only = [&](std::set<fs::path> const& directories) {
        return find_read_only(directories, prepared.coverage, overlays);
    };
    for (auto const& [directory, why] : read_only(prepared.needed))
        refuse(directory.string() + " cannot be covered, because " + why);
    require(removed || chdir(place.c_str()) == 0, "enter the working directory " + place.string());
    // What a script adds to the caller's session keyring would stay. Some kernels have none.
    syscall(SYS_keyctl, KEYCTL_JOIN_SESSION_KEYRING, nullptr);
    drop_capabilities(prepared.forbidden_capabilities, prepared.is_root);
    return {overlays.mounted, read_only(prepared.wanted)};
}

/// Waits for a child, and reaps the orphans that this process gets. Returns the child's status, or
/// 128 and the number of the signal that ended it.
int wait_for(pid_t child) {
    int status = 0;
    for (pid_t ended = 0; ended != child;) ended = wait(&status);
    return WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
}

/// Ends with the parent, also where that has ended before: then nobody reads from the pipe.
void end_with_parent(int pipe) {
    require(prctl(PR_SET_PDEATHSIG, SIGKILL) == 0, "end with the parent");
    pollfd end = {pipe, 0, 0};
    if (poll(&end, 1, 0) != 0) _exit(EXIT_FAILURE);
}

/// Calls `work` in a child. It does not work itself, for it has to reap: a script that
/// waits for its daemon to end would wait for ever, as `kill -0` succeeds for a zombie. Writes to
/// `refusal` why it cannot begin.
int run_first_process(int refusal, Preparation const& prepared, std::string const& scratch,
                      std::function<int(Inside const&)> const& work) {
    int const kept = dup2(refusal, STDERR_FILENO + 1);
    close_range(STDERR_FILENO + 2, ~0U, 0);
    Inside inside;
    pid_t child = 0;
    try {
        end_with_parent(kept);
        inside = enter(prepared, scratch);
        child = fork();
        require(child != -1, "start a process");
    } catch (std::exception const& error) {
        return write(kept, error.what(), std::strlen(error.what())) > 0 ? 0 : 1;
    }
    close(kept);
    if (child != 0) return wait_for(child);
    setsid();
    setrlimit(RLIMIT_NOFILE, &prepared.descriptors);
    return work(inside);
}

} // namespace

void refuse(std::string const& cause) {
    throw Refused("there can be no sandbox: " + cause);
}

void require(bool succeeds, std::string const& what) {
    if (!succeeds) refuse(what + ": " + std::strerror(errno));
}

int run(Directories const& named, std::function<int(Inside const&)> const& work) {
    Preparation const prepared = prepare(named);
    if (!prepared.is_root) enter_user_namespace();
    std::optional<ScratchFolder> scratch;
    if (needs_scratch_folder()) scratch.emplace();
    std::string const folder = scratch ? scratch->path() : "";

    std::array<int, 2> refusal;
    require(pipe2(refusal.data(), O_CLOEXEC) == 0, "make a pipe");
    require_permission(unshare(CLONE_NEWPID | CLONE_NEWIPC) == 0, "unshare");
    // Here and in the sandbox, whose processes could else reach the disk and the other open files
    // of this one through /proc.
    prctl(PR_SET_DUMPABLE, 0);
    pid_t const first_process = fork();
    require(first_process != -1, "start a process");
    if (first_process == 0) _exit(run_first_process(refusal[1], prepared, folder, work));
    close(refusal[1]);
    std::array<char, 4096> words;
    ssize_t const size = read(refusal[0], words.data(), words.size());
    close(refusal[0]);
    int const result = wait_for(first_process);
    if (size > 0) throw Refused(std::string(words.data(), std::size_t(size)));
    if (result > 128)
        throw std::runtime_error("signal " + std::to_string(result - 128) + " ended the sandbox");
    return result;
}

} // namespace sandbox
