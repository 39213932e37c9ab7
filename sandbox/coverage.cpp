#include "sandbox/coverage.h"

#include <fcntl.h>
#include <libmount/libmount.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <memory>
#include <string>

#include "sandbox/ownership.h"
#include "sandbox/sandbox.h"

namespace fs = std::filesystem;

namespace sandbox {

namespace {

/// Whether no other mount hides the one with this number, as far as this user may look. Neither
/// asks a server nor mounts anything.
bool is_visible(char const* place, int number) {
    struct statx status {};
    int const flags = AT_SYMLINK_NOFOLLOW | AT_NO_AUTOMOUNT | AT_STATX_DONT_SYNC;
    if (statx(AT_FDCWD, place, flags, 0, &status) != 0) return errno == EACCES;
    return status.stx_mnt_id == static_cast<unsigned>(number);
}

/// Whether this user's overlay could change what lies in it.
bool is_own(fs::path const& directory) {
    struct stat status {};
    return stat(directory.c_str(), &status) == 0 && status.st_uid == geteuid() &&
           status.st_gid == getegid() && !names_others(directory.c_str(), true) &&
           access(directory.c_str(), R_OK | X_OK) == 0;
}

/// Whether all directories from below `outer` down to `directory` are this user's own. An ordinary
/// user's overlay cannot change what lies below one that is not.
bool is_own_down_to(fs::path const& directory, fs::path const& outer) {
    for (fs::path step = directory; step != outer; step = step.parent_path())
        if (!is_own(step)) return false;
    return true;
}

/// The directory, or the highest above it with nothing but own ones between.
fs::path highest_own(fs::path directory) {
    while (is_own(directory) && is_own(directory.parent_path()) && directory.parent_path() != "/")
        directory = directory.parent_path();
    return directory;
}

class Plan {
  public:
    explicit Plan(bool is_root) : is_root_(is_root) { read_mounts(); }

    void cover(fs::path const& directory) {
        struct stat status {};
        if (access(directory.c_str(), R_OK | X_OK) != 0 || stat(directory.c_str(), &status) != 0)
            return;
        if (!is_root_ && !first_below(coverage_.mounts, directory).empty())
            return cover_inside(directory);
        coverage_.directories.insert(directory);
        if (!is_root_ && status.st_uid != geteuid()) coverage_.foreign.insert(directory);
    }

    void cover_inside(fs::path const& directory) {
        for (fs::directory_entry const& entry : fs::directory_iterator(directory))
            if (!entry.is_symlink() && left_out_.count(entry) == 0 && entry.is_directory())
                cover(entry);
    }

    void cover_mounts() {
        std::error_code unreachable;
        for (fs::path const& mount : coverage_.mounts)
            if (!nearest_above(coverage_.directories, mount).empty() &&
                left_out_.count(mount) == 0 && fs::is_directory(mount, unreachable))
                cover(mount);
    }

    /// One that lies in another has an overlay of its own where the other's cannot change it.
    void cover_named(fs::path const& name) {
        std::error_code absent;
        fs::path const directory = fs::canonical(name, absent);
        if (absent || !fs::is_directory(directory) || directory == "/") return;
        fs::path const outer = nearest_above(coverage_.directories, directory);
        if (is_root_ && outer.empty()) cover(directory);
        if (!is_root_ && (outer.empty() || !is_own_down_to(directory, outer)))
            cover(highest_own(directory));
    }

    Coverage const& coverage() const { return coverage_; }

  private:
    void read_mounts() {
        std::unique_ptr<libmnt_table, void (*)(libmnt_table*)> const table(
            mnt_new_table_from_file("/proc/self/mountinfo"), mnt_unref_table);
        if (!table) refuse("/proc/self/mountinfo cannot be read");
        std::unique_ptr<libmnt_iter, void (*)(libmnt_iter*)> const position(
            mnt_new_iter(MNT_ITER_FORWARD), mnt_free_iter);
        libmnt_fs* mount = nullptr;
        while (mnt_table_next_fs(table.get(), position.get(), &mount) == 0) {
            char const* const place = mnt_fs_get_target(mount);
            if (!is_visible(place, mnt_fs_get_id(mount))) continue;
            coverage_.mounts.insert(place);
            if (mnt_fs_get_fstype(mount) == std::string("autofs")) left_out_.insert(place);
        }
    }

    Coverage coverage_;
    /// The kernel's own, and the mounts that are not to be triggered.
    std::set<fs::path> left_out_ = {"/proc", "/sys", "/dev", "/run"};
    bool is_root_;
};

} // namespace

fs::path first_below(std::set<fs::path> const& paths, fs::path const& directory) {
    auto const next = paths.upper_bound(directory); // what lies in it comes right behind it
    bool const is_below =
        next != paths.end() && *next->lexically_relative(directory).begin() != "..";
    return is_below ? *next : fs::path();
}

fs::path nearest_above(std::set<fs::path> const& paths, fs::path const& directory) {
    for (fs::path step = directory; step != "/"; step = step.parent_path())
        if (paths.count(step) != 0) return step;
    return {};
}

std::set<fs::path> hidden_mounts(std::set<fs::path> const& mounts,
                                 std::set<fs::path> const& covered) {
    std::set<fs::path> hidden;
    for (fs::path const& mount : mounts)
        if (covered.count(mount) == 0 && !nearest_above(covered, mount).empty())
            hidden.insert(mount);
    return hidden;
}

Coverage plan_coverage(std::vector<fs::path> const& named, bool is_root) {
    Plan plan(is_root);
    plan.cover_inside("/");
    for (fs::path const& name : std::set<fs::path>(named.begin(), named.end()))
        plan.cover_named(name);
    plan.cover_mounts();
    return plan.coverage();
}

} // namespace sandbox
