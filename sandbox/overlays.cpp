#include "sandbox/overlays.h"

#include <attr/libattr.h>
#include <fcntl.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include <cerrno>
#include <map>

#include "sandbox/sandbox.h"

namespace fs = std::filesystem;

namespace sandbox {

namespace {

/// A path for this process alone to what the descriptor stands for, whatever its name.
std::string path_of(int descriptor) {
    return "/proc/self/fd/" + std::to_string(descriptor);
}

int open_directory(fs::path const& directory) {
    return open(directory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
}

/// Makes the topmost folder of an upper layer, which is what the directory itself is in the
/// sandbox. An ordinary user becomes the owner of one that others own, with the rights that they
/// have. The owner that is seen here does not tell: who is not mapped looks like user 65534.
void make_upper(fs::path const& folder, int lower, bool is_foreign) {
    struct stat status {};
    require(mkdir(folder.c_str(), S_IRWXU) == 0 && fstat(lower, &status) == 0, "make a folder");
    int const upper = open_directory(folder);
    require(upper != -1, "open a folder");
    mode_t mode = status.st_mode & 07777;
    if (is_foreign || fchown(upper, status.st_uid, status.st_gid) != 0) {
        mode &= ~mode_t{S_IRWXU};
        for (int const right : {R_OK, W_OK, X_OK})
            if (access(path_of(lower).c_str(), right) == 0) mode |= mode_t(right) << 6;
    }
    bool const has_mode = fchmod(upper, mode) == 0;
    auto* const every_one = +[](char const* /*name*/, error_context* /*context*/) { return 1; };
    attr_copy_fd("", lower, "", upper, every_one, nullptr); // as many as can be kept
    close(upper);
    require(has_mode, "set a mode");
}

/// Returns a mount that is not in its place yet, or -1. The layers are named by descriptors, for a
/// directory's own name may hold what separates the options. Redirections and partial copies are
/// off, as they are for an ordinary user, so that the upper layer holds every name that changed.
int make_overlay(int lower, fs::path const& upper, fs::path const& work, bool is_root) {
    int const context = fsopen("overlay", FSOPEN_CLOEXEC);
    require(context != -1, "make an overlay");
    auto const set = [&](char const* option, std::string const& value) {
        return fsconfig(context, FSCONFIG_SET_STRING, option, value.c_str(), 0) == 0;
    };
    // What the mount below does not allow, this one does not either: the flags are the same bits.
    struct statvfs status {};
    bool const is_created =
        set("lowerdir", path_of(lower)) && set("upperdir", upper) && set("workdir", work) &&
        (is_root ? set("redirect_dir", "off") && set("metacopy", "off")
                 : fsconfig(context, FSCONFIG_SET_FLAG, "userxattr", nullptr, 0) == 0) &&
        fsconfig(context, FSCONFIG_CMD_CREATE, nullptr, nullptr, 0) == 0 &&
        fstatvfs(lower, &status) == 0;
    int const overlay = is_created ? fsmount(context, FSMOUNT_CLOEXEC, status.f_flag & 0xf) : -1;
    int const error = errno;
    close(context);
    errno = error;
    return overlay;
}

/// Opens those that this user can read.
std::map<fs::path, int> open_lowers(Coverage const& coverage, int lowest) {
    std::map<fs::path, int> lowers;
    for (fs::path const& directory : coverage.directories) {
        int const lower = open_directory(directory);
        require(lower != -1 || errno == EACCES || errno == ENOENT, "open " + directory.string());
        if (lower == -1) continue;
        int const moved = fcntl(lower, F_DUPFD_CLOEXEC, lowest);
        if (moved != -1) close(lower);
        lowers[directory] = moved == -1 ? lower : moved;
    }
    return lowers;
}

struct Layers {
    int lower, overlay;
    fs::path upper;
};

/// Those of each directory that the kernel gives an overlay, with the upper ones in the folder
/// `base`. The others become `refused`.
std::map<fs::path, Layers> make_layers(std::map<fs::path, int> const& lowers, fs::path const& base,
                                       Coverage const& coverage, bool is_root,
                                       std::map<fs::path, int>& refused) {
    std::map<fs::path, Layers> all;
    std::size_t number = 0;
    for (auto const& [directory, lower] : lowers) {
        fs::path const upper = base / std::to_string(number++);
        fs::path const work = upper.string() + "-work";
        make_upper(upper, lower, coverage.foreign.count(directory) != 0);
        require(mkdir(work.c_str(), S_IRWXU) == 0, "make a folder");
        int const overlay = make_overlay(lower, upper, work, is_root);
        if (overlay != -1) {
            all[directory] = {lower, overlay, upper};
            continue;
        }
        refused[directory] = errno;
        close(lower);
    }
    return all;
}

/// Those that the overlays would hide.
std::map<fs::path, int> copy_mounts(Coverage const& coverage,
                                    std::map<fs::path, Layers> const& layers) {
    std::set<fs::path> covered;
    for (auto const& [directory, of_directory] : layers) covered.insert(directory);
    std::map<fs::path, int> copies;
    for (fs::path const& mount : hidden_mounts(coverage.mounts, covered)) {
        copies[mount] = open_tree(AT_FDCWD, mount.c_str(),
                                  OPEN_TREE_CLONE | OPEN_TREE_CLOEXEC | AT_NO_AUTOMOUNT);
        require(copies[mount] != -1, "open the mount at " + mount.string());
    }
    return copies;
}

/// Leaves out what somebody else has removed by now.
void put_in_place(int mount, fs::path const& place) {
    bool const is_there =
        move_mount(mount, "", AT_FDCWD, place.c_str(), MOVE_MOUNT_F_EMPTY_PATH) == 0;
    require(is_there || errno == ENOENT, "mount at " + place.string());
    close(mount);
}

void make_read_only() {
    mount_attr read_only = {};
    read_only.attr_set = MOUNT_ATTR_RDONLY;
    require(mount_setattr(AT_FDCWD, "/", AT_RECURSIVE, &read_only, sizeof read_only) == 0,
            "make the disk read-only");
}

} // namespace

Overlays mount_overlays(Coverage const& coverage, std::string const& scratch, bool is_root,
                        int lowest) {
    std::map<fs::path, int> const lowers = open_lowers(coverage, lowest);
    if (lowers.empty()) refuse("no directory can be covered");
    // A layer has to lie on a mount that has a place, and any place will do until there are the
    // overlays: the descriptor keeps the tmpfs when it is gone from there.
    fs::path const place = scratch.empty() ? lowers.begin()->first : fs::path(scratch);
    if (scratch.empty())
        require(mount("tmpfs", place.c_str(), "tmpfs", 0, "mode=0700") == 0, "mount a tmpfs");
    int const base = open_directory(place);
    require(base != -1, "open " + place.string());
    Overlays overlays;
    std::map<fs::path, Layers> const layers =
        make_layers(lowers, path_of(base), coverage, is_root, overlays.refused);
    make_read_only();
    if (scratch.empty()) umount2(place.c_str(), MNT_DETACH);

    std::map<fs::path, int> mounts = copy_mounts(coverage, layers);
    for (auto const& [directory, of_directory] : layers) mounts[directory] = of_directory.overlay;
    for (auto const& [directory, mount] : mounts) put_in_place(mount, directory);
    for (auto const& [directory, of_directory] : layers)
        if (fs::exists(directory))
            overlays.mounted.push_back(
                watch(directory, path_of(of_directory.lower), of_directory.upper));
    return overlays;
}

} // namespace sandbox
