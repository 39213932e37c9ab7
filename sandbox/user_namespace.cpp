#include "sandbox/user_namespace.h"

#include <grp.h>
#include <sched.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <vector>

#include "sandbox/sandbox.h"

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
            return setting + " is " + refusing + "; change it with sysctl, or run as root";
    }
    return std::string(geteuid() == 0 ? "" : "run as root; ") +
           "a container has to allow CAP_SYS_ADMIN, unshare and mount";
}

/// Its name, or its number where it has none.
std::string name_of(gid_t number) {
    group const* const found = getgrgid(number);
    return found ? found->gr_name : std::to_string(number);
}

/// Whether `sg` makes the group the first one of this user.
bool can_be_first(gid_t number) {
    std::vector<gid_t> own(std::size_t(getgroups(0, nullptr)));
    getgroups(int(own.size()), own.data());
    return getgrgid(number) && std::count(own.begin(), own.end(), number) != 0;
}

} // namespace

void require_right(bool succeeds, std::string const& what) {
    int const error = errno;
    bool const is_refused = error == EPERM || error == EACCES || error == ENOSPC;
    if (!succeeds && is_refused) refuse(what + ": " + std::strerror(error) + "; " + remedy());
    require(succeeds, what);
}

void require_own(std::set<fs::path> const& directories) {
    std::string others;
    std::set<gid_t> groups;
    bool is_owner = true;
    for (fs::path const& directory : directories) {
        struct stat status {};
        if (stat(directory.c_str(), &status) != 0 || access(directory.c_str(), W_OK) != 0) continue;
        groups.insert(status.st_gid);
        bool const is_own = status.st_uid == geteuid();
        is_owner = is_owner && is_own;
        if (is_own && status.st_gid == getegid()) continue;
        others +=
            (others.empty() ? "" : ", ") + directory.string() + " belongs to the " +
            (is_own ? "group " + name_of(status.st_gid) : "owner " + std::to_string(status.st_uid));
    }
    if (others.empty()) return;
    bool const helps_sg = is_owner && groups.size() == 1 && can_be_first(*groups.begin());
    std::string const how =
        helps_sg ? "run it in sg " + name_of(*groups.begin()) + " -c '...', or" : "run it";
    refuse("only what is yours, and your first group's, could change in it: " + others + "; " +
           how + " as root" + (geteuid() == 0 ? " outside of a container" : ""));
}

void enter_user_namespace() {
    std::string const user = std::to_string(geteuid());
    std::string const group = std::to_string(getegid());
    require_right(unshare(CLONE_NEWUSER) == 0, "unshare");
    auto const write = [](std::string const& file, std::string const& text) {
        require_right(bool(std::ofstream("/proc/self/" + file) << text << std::flush),
                      "write /proc/self/" + file);
    };
    write("setgroups", "deny");
    write("uid_map", user + " " + user + " 1");
    write("gid_map", group + " " + group + " 1");
}

} // namespace sandbox
