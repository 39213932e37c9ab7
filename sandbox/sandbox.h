#pragma once

// A disk that looks as it is and stays as it is, by Linux namespaces and overlays. It holds back
// accidents and not an attacker: the network, devices and daemons that listen on a socket outside
// of the overlays are reached as ever.

#include <filesystem>
#include <functional>
#include <map>
#include <stdexcept>
#include <string>
#include <vector>

#include "sandbox/changes.h"

namespace sandbox {

struct Directories {
    std::vector<std::filesystem::path> needed; ///< without one of these there is no sandbox
    std::vector<std::filesystem::path> wanted; ///< these are covered as far as the kernel lets
};

/// What can change in the sandbox.
struct Inside {
    std::vector<Watched> directories; ///< parents first
    /// The wanted directories that could be written outside and are read-only here, each with why.
    std::map<std::filesystem::path, std::string> read_only;
};

/// There can be no sandbox, and nothing was run: the cause and, where there is one, the remedy.
struct Refused : std::runtime_error {
    using std::runtime_error::runtime_error;
};

/// Refused for want of descriptors, of which a user can often have more.
struct DescriptorsRefused : Refused {
    using Refused::Refused;
};

/// Both throw Refused; `require` with what errno says, where `succeeds` is false.
[[noreturn]] void refuse(std::string const& cause);
void require(bool succeeds, std::string const& what);

/// Runs `work` in a process, a session and namespaces of its own. Every directory of the disk can
/// change there, as far as the kernel lets, and all that was written is gone afterwards; the rest
/// is read-only. What `work` leaves running is ended. `work` must not throw.
///
/// Directories that are named and not there are ignored. Returns what `work` returned. Throws
/// Refused, and std::runtime_error where a signal ended it. To be called once, by a process without
/// threads: it stays in a user namespace afterwards.
int run(Directories const& named, std::function<int(Inside const&)> const& work);

} // namespace sandbox
