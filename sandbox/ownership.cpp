#include "sandbox/ownership.h"

#include <fcntl.h>
#include <fts.h>
#include <grp.h>
#include <linux/posix_acl.h>
#include <linux/posix_acl_xattr.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "sandbox/sandbox.h"

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
bool can_be_changed(FTSENT const& entry) {
    int const rights = entry.fts_info == FTS_D ? W_OK | X_OK : W_OK;
    return faccessat(AT_FDCWD, entry.fts_accpath, rights, AT_EACCESS) == 0 ||
           (entry.fts_statp->st_uid == geteuid() && errno == EACCES);
}

std::string owner_in_words(struct stat const& status) {
    if (status.st_uid != geteuid()) return "owner " + std::to_string(status.st_uid);
    if (status.st_gid != getegid()) return "group " + name_of(status.st_gid);
    return "others have rights to it or to its directory";
}

/// Finds what this user can change outside and not in the sandbox.
class Search {
  public:
    explicit Search(Coverage const& coverage) : coverage_(coverage) {}

    void enter(std::string directory) {
        char* const names[] = {directory.data(), nullptr};
        std::unique_ptr<FTS, int (*)(FTS*)> const tree(fts_open(names, FTS_PHYSICAL, nullptr),
                                                       fts_close);
        require(tree != nullptr, "read " + directory);
        while (FTSENT* const entry = fts_read(tree.get()))
            if (entry->fts_info == FTS_D || entry->fts_info == FTS_F) visit(*entry);
    }

    void refuse_what_was_found() const {
        if (found_.empty()) return;
        auto const& [path, owner] = *found_.begin();
        std::string const more =
            found_.size() == 1 ? "" : " and " + std::to_string(found_.size() - 1) + " more";
        bool const helps_sg =
            is_group_alone_ && groups_.size() == 1 && can_be_first(*groups_.begin());
        refuse("what belongs to others cannot change in it, and you could change " + path + " (" +
               owner + ")" + more + "; run it " +
               (helps_sg ? "in sg " + name_of(*groups_.begin()) + " -c '...', or " : "") +
               (geteuid() == 0 ? "in a container that allows CAP_SYS_ADMIN" : "as root"));
    }

  private:
    enum Obstacle { none, group, other };

    void visit(FTSENT& entry) {
        struct stat const& status = *entry.fts_statp;
        bool const is_directory = entry.fts_info == FTS_D, is_own = status.st_uid == user_;
        // An overlay's topmost directory is not copied up.
        bool const is_topmost = is_directory && coverage_.directories.count(entry.fts_path) != 0;
        Obstacle obstacle = !is_own ? other : status.st_gid != group_ ? group : none;
        if (!is_topmost) {
            obstacle = std::max(obstacle, Obstacle(entry.fts_parent->fts_number));
            if (obstacle == none && names_others(entry.fts_accpath, is_directory)) obstacle = other;
            entry.fts_number = obstacle; // for what lies in it is copied up after it
        }
        if (is_own) groups_.insert(status.st_gid);
        if (obstacle == none || !can_be_changed(entry)) return;
        found_[entry.fts_path] = owner_in_words(status);
        is_group_alone_ = is_group_alone_ && obstacle == group;
    }

    Coverage const& coverage_;
    uid_t const user_ = geteuid();
    gid_t const group_ = getegid();
    std::set<gid_t> groups_;                   ///< of all that this user owns
    std::map<std::string, std::string> found_; ///< by path, with who owns it
    bool is_group_alone_ = true;               ///< that keeps what was found from changing
};

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
        if (nearest_above(directories, directory.parent_path()).empty()) search.enter(directory);
    search.refuse_what_was_found();
}

} // namespace sandbox
