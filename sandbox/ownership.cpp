#include "sandbox/ownership.h"

#include <dirent.h>
#include <fcntl.h>
#include <grp.h>
#include <linux/posix_acl.h>
#include <linux/posix_acl_xattr.h>
#include <sched.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstring>
#include <future>
#include <map>
#include <memory>
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

struct Findings {
    std::vector<Directory> directories; ///< to be looked into
    /// What this user can change outside and not in the sandbox, by path.
    std::map<std::string, std::pair<struct stat, Obstacle>> obstructed;
    std::set<gid_t> groups; ///< of all that this user owns

    void add(Findings other) {
        directories.insert(directories.end(), other.directories.begin(), other.directories.end());
        obstructed.merge(other.obstructed);
        groups.merge(other.groups);
    }
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
        if (is_directory) found_.directories.push_back({path, is_topmost ? none : obstacle});
        if (is_own) found_.groups.insert(status.st_gid);
        if (obstacle != none && can_be_changed(name, status))
            found_.obstructed[path] = {status, obstacle};
    }

    /// Makes it the working directory, for the kernel finds short names sooner.
    void look_into(Directory const& directory) {
        std::unique_ptr<DIR, int (*)(DIR*)> const stream(opendir(directory.path.c_str()), closedir);
        require(stream || errno != ENAMETOOLONG, "read " + directory.path);
        if (!stream || fchdir(dirfd(stream.get())) != 0) return;
        while (dirent const* const entry = readdir(stream.get())) {
            std::string const name = entry->d_name;
            if (name != "." && name != "..")
                visit(entry->d_name, directory.path + "/" + name, directory.obstacle);
        }
    }

    Findings const& found() const { return found_; }

  private:
    Coverage const& coverage_;
    uid_t const user_ = geteuid();
    gid_t const group_ = getegid();
    Findings found_;
};

/// Looks into the directories, in two threads, for nearly all the time goes by in the kernel.
Findings look_into(std::vector<Directory> const& directories, Coverage const& coverage) {
    std::atomic<std::size_t> next = 0;
    auto const work = [&] {
        require_permission(unshare(CLONE_FS) == 0, "unshare"); // a working directory of its own
        Search search(coverage);
        for (std::size_t at = 0; (at = next++) < directories.size();)
            search.look_into(directories[at]);
        return search.found();
    };
    auto other_half = std::async(std::launch::async, work);
    Findings found = std::async(std::launch::async, work).get();
    found.add(other_half.get());
    return found;
}

/// Throws Refused if anything is obstructed.
void refuse_obstructed(Findings const& found) {
    if (found.obstructed.empty()) return;
    auto const& [path, first] = *found.obstructed.begin();
    std::size_t const count = found.obstructed.size();
    bool const is_group_alone =
        std::all_of(found.obstructed.begin(), found.obstructed.end(),
                    [](auto const& each) { return each.second.second == group; });
    bool const helps_sg =
        is_group_alone && found.groups.size() == 1 && can_be_first(*found.groups.begin());
    refuse("what belongs to others cannot change in it, and you could change " + path + " (" +
           owner_in_words(first.first) + ")" +
           (count == 1 ? "" : " and " + std::to_string(count - 1) + " more") + "; run it " +
           (helps_sg ? "in sg " + name_of(*found.groups.begin()) + " -c '...', or " : "") +
           (geteuid() == 0 ? "in a container that allows CAP_SYS_ADMIN" : "as root"));
}

} // namespace

bool names_others(char const* path, bool is_directory) {
    return does_list_name_others(path, "system.posix_acl_access") ||
           (is_directory && does_list_name_others(path, "system.posix_acl_default"));
}

bool has_own_ids(struct stat const& status) {
    return status.st_uid == geteuid() && status.st_gid == getegid();
}

void require_own(std::set<fs::path> const& directories, Coverage const& coverage) {
    Search search(coverage);
    for (fs::path const& directory : directories)
        if (nearest_above(directories, directory.parent_path()).empty())
            search.visit(directory.c_str(), directory, none);
    Findings found = search.found();
    while (!found.directories.empty()) {
        std::vector<Directory> const level = std::exchange(found.directories, {});
        found.add(look_into(level, coverage));
    }
    refuse_obstructed(found);
}

} // namespace sandbox
