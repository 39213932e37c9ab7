#include "sandbox/ownership.h"

#include <dirent.h>
#include <fcntl.h>
#include <grp.h>
#include <linux/posix_acl.h>
#include <linux/posix_acl_xattr.h>
#include <sched.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstring>
#include <future>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "sandbox/sandbox.h"
#include "sandbox/user_namespace.h"

namespace fs = std::filesystem;

namespace sandbox {

namespace {

/// Its name, or its number where it has none.
std::string name_of(gid_t number) {
    group const* const found = getgrgid(number);
    return found ? found->gr_name : std::to_string(number);
}

/// Whether `sg` makes the group the first one of this user.
bool can_be_first(gid_t number) {
    std::vector<gid_t> own(std::size_t(getgroups(0, nullptr)));
    bool const are_known = getgroups(int(own.size()), own.data()) != -1;
    return are_known && getgrgid(number) && std::count(own.begin(), own.end(), number) != 0;
}

bool does_list_name_others(char const* path, char const* attribute) {
    ssize_t const size = lgetxattr(path, attribute, nullptr, 0); // nearly always there is none
    if (size <= 0) return false;
    std::vector<char> list(std::size_t(size), '\0');
    if (lgetxattr(path, attribute, list.data(), list.size()) != size) return true;
    posix_acl_xattr_entry entry{};
    for (std::size_t at = sizeof(posix_acl_xattr_header); at + sizeof entry <= list.size();
         at += sizeof entry) {
        std::memcpy(&entry, &list[at], sizeof entry);
        if (entry.e_tag == ACL_USER && entry.e_id != geteuid()) return true;
        if (entry.e_tag == ACL_GROUP && entry.e_id != getegid()) return true;
    }
    return false;
}

/// Whether this user can change it where nothing holds it back: its owner gets every right that is
/// missing.
bool can_be_changed(char const* name, struct stat const& status) {
    int const rights = S_ISDIR(status.st_mode) ? W_OK | X_OK : W_OK;
    return faccessat(AT_FDCWD, name, rights, AT_EACCESS) == 0 ||
           (status.st_uid == geteuid() && errno == EACCES);
}

std::string owner_in_words(struct stat const& status) {
    if (status.st_uid != geteuid()) return "owner " + std::to_string(status.st_uid);
    if (status.st_gid != getegid()) return "group " + name_of(status.st_gid);
    return "others have rights to it or to its directory";
}

/// What keeps something from changing in the sandbox.
enum Obstacle { none, group, other };

struct Directory {
    std::string path;
    Obstacle obstacle; ///< for what lies in it, which is copied up after it
};

/// Looks at directories and regular files, and follows no links.
class Search {
  public:
    explicit Search(Coverage const& coverage) : coverage_(coverage) {}

    void visit(char const* name, std::string const& path, Obstacle inherited) {
        struct stat status {};
        if (lstat(name, &status) != 0) return;
        bool const is_directory = S_ISDIR(status.st_mode), is_own = status.st_uid == user_;
        if (!is_directory && !S_ISREG(status.st_mode)) return;
        // An overlay's topmost directory is not copied up.
        bool const is_topmost = is_directory && coverage_.directories.count(path) != 0;
        Obstacle obstacle = !is_own ? other : status.st_gid != group_ ? group : none;
        if (!is_topmost) obstacle = std::max(obstacle, inherited);
        if (!is_topmost && obstacle == none && names_others(name, is_directory)) obstacle = other;
        bool const is_found = obstacle != none && can_be_changed(name, status);
        std::lock_guard const lock(mutex_);
        if (is_directory) directories_.push_back({path, is_topmost ? none : obstacle});
        if (is_own) groups_.insert(status.st_gid);
        if (!is_found) return;
        found_[path] = status;
        is_group_alone_ = is_group_alone_ && obstacle == group;
    }

    /// In two threads, for nearly all the time goes by in the kernel.
    void visit_all_below() {
        while (!directories_.empty()) {
            std::vector<Directory> const level = std::exchange(directories_, {});
            std::atomic<std::size_t> next = 0;
            auto const work = [&] {
                require_permission(unshare(CLONE_FS) == 0, "unshare"); // for a thread's own chdir
                for (std::size_t at = 0; (at = next++) < level.size();) visit_contents(level[at]);
            };
            auto first = std::async(std::launch::async, work);
            auto second = std::async(std::launch::async, work);
            first.get();
            second.get();
        }
    }

    void refuse_what_was_found() const {
        if (found_.empty()) return;
        auto const& [path, status] = *found_.begin();
        std::string const more =
            found_.size() == 1 ? "" : " and " + std::to_string(found_.size() - 1) + " more";
        bool const helps_sg =
            is_group_alone_ && groups_.size() == 1 && can_be_first(*groups_.begin());
        refuse("what belongs to others cannot change in it, and you could change " + path + " (" +
               owner_in_words(status) + ")" + more + "; run it " +
               (helps_sg ? "in sg " + name_of(*groups_.begin()) + " -c '...', or " : "") +
               (geteuid() == 0 ? "in a container that allows CAP_SYS_ADMIN" : "as root"));
    }

  private:
    /// Makes it the working directory, for the kernel finds short names sooner.
    void visit_contents(Directory const& directory) {
        std::unique_ptr<DIR, int (*)(DIR*)> const stream(opendir(directory.path.c_str()), closedir);
        bool const is_closed_or_gone = !stream && (errno == EACCES || errno == ENOENT);
        require(stream || is_closed_or_gone, "read " + directory.path);
        if (!stream || fchdir(dirfd(stream.get())) != 0) return;
        while (dirent const* const entry = readdir(stream.get())) {
            std::string const name = entry->d_name;
            if (name != "." && name != "..")
                visit(entry->d_name, directory.path + "/" + name, directory.obstacle);
        }
    }

    Coverage const& coverage_;
    uid_t const user_ = geteuid();
    gid_t const group_ = getegid();
    std::vector<Directory> directories_; ///< whose contents have not been visited
    std::set<gid_t> groups_;             ///< of all that this user owns
    /// What this user can change outside and not in the sandbox, by path.
    std::map<std::string, struct stat> found_;
    bool is_group_alone_ = true; ///< that keeps it from changing
    std::mutex mutex_;
};

} // namespace

bool names_others(char const* path, bool is_directory) {
    return does_list_name_others(path, "system.posix_acl_access") ||
           (is_directory && does_list_name_others(path, "system.posix_acl_default"));
}

void require_own(std::set<fs::path> const& directories, Coverage const& coverage) {
    Search search(coverage);
    for (fs::path const& directory : directories)
        if (nearest_above(directories, directory.parent_path()).empty())
            search.visit(directory.c_str(), directory, none);
    search.visit_all_below();
    search.refuse_what_was_found();
}

} // namespace sandbox
