#include "sandbox/user_namespace.h"

#include <sched.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <fstream>
#include <thread>

#include "sandbox/sandbox.h"

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

/// Tries again, for the kernel counts a thread that has been joined a moment longer, and a process
/// with threads gets no user namespace.
bool unshare_users() {
    for (int tries = 0; tries < 1000; ++tries) {
        if (unshare(CLONE_NEWUSER) == 0) return true;
        if (errno != EINVAL) break;
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return false;
}

} // namespace

void require_permission(bool succeeds, std::string const& what) {
    int const error = errno;
    bool const is_refused = error == EPERM || error == EACCES || error == ENOSPC;
    if (!succeeds && is_refused) refuse(what + ": " + std::strerror(error) + "; " + remedy());
    require(succeeds, what);
}

void enter_user_namespace() {
    std::string const user = std::to_string(geteuid());
    std::string const group = std::to_string(getegid());
    require_permission(unshare_users(), "unshare");
    auto const write = [](std::string const& file, std::string const& text) {
        require_permission(bool(std::ofstream("/proc/self/" + file) << text << std::flush),
                           "write /proc/self/" + file);
    };
    write("setgroups", "deny");
    write("uid_map", user + " " + user + " 1");
    write("gid_map", group + " " + group + " 1");
}

} // namespace sandbox
