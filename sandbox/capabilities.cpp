#include "sandbox/capabilities.h"

#include <linux/capability.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <sys/xattr.h>
#include <unistd.h>

#include "sandbox/sandbox.h"

namespace sandbox {

namespace {

struct Capabilities {
    __user_cap_header_struct header = {_LINUX_CAPABILITY_VERSION_3, 0};
    __user_cap_data_struct sets[_LINUX_CAPABILITY_U32S_3] = {};

    bool get() { return syscall(SYS_capget, &header, sets) == 0; }
    bool set() { return syscall(SYS_capset, &header, sets) == 0; }
};

} // namespace

bool has_rights_of_root() {
    Capabilities own;
    require(own.get(), "read the capabilities");
    for (int const needed : {CAP_SYS_ADMIN, CAP_DAC_OVERRIDE, CAP_CHOWN, CAP_FOWNER, CAP_SETPCAP})
        if ((own.sets[0].effective & CAP_TO_MASK(needed)) == 0) return false;
    int const in_memory = memfd_create("probe", MFD_CLOEXEC);
    bool const may_mark = fsetxattr(in_memory, "trusted.overlay.probe", "", 0, 0) == 0;
    close(in_memory);
    return may_mark;
}

std::set<int> forbidden_capabilities() {
    // What a script needs on a disk, and for the users and daemons that it makes.
    std::set<int> const granted = {
        CAP_CHOWN,    CAP_DAC_OVERRIDE, CAP_DAC_READ_SEARCH, CAP_FOWNER,  CAP_FSETID,
        CAP_KILL,     CAP_SETGID,       CAP_SETUID,          CAP_SETPCAP, CAP_NET_BIND_SERVICE,
        CAP_IPC_LOCK, CAP_SYS_NICE,     CAP_AUDIT_WRITE,     CAP_SETFCAP};
    std::set<int> forbidden;
    for (int number = 0, held = 0; (held = prctl(PR_CAPBSET_READ, number)) >= 0; ++number)
        if (held == 0 || granted.count(number) == 0) forbidden.insert(number);
    return forbidden;
}

void drop_capabilities(std::set<int> const& forbidden, bool is_root) {
    for (int const capability : forbidden)
        require(prctl(PR_CAPBSET_DROP, capability) == 0, "drop a capability");
    Capabilities kept;
    require(kept.get(), "read the capabilities");
    for (auto& set : kept.sets) {
        set.inheritable = 0; // the bounding set does not hold these back
        if (!is_root) set.effective = set.permitted = 0;
    }
    if (!is_root) kept.sets[0].permitted = CAP_TO_MASK(CAP_DAC_READ_SEARCH);
    require(kept.set(), "drop capabilities");
}

void ReadingRights::use(bool is_used) {
    Capabilities own;
    std::uint32_t const right = CAP_TO_MASK(CAP_DAC_READ_SEARCH);
    bool const is_kept_back = own.get() && own.sets[0].permitted == right;
    own.sets[0].effective = is_used ? right : 0;
    if (is_kept_back) own.set();
}

} // namespace sandbox
