#pragma once

// A disk that looks as it is and stays as it is, by Linux namespaces and overlays. It holds back
// accidents and not an attacker: the network, devices and local sockets are reached as ever.

#include <sys/stat.h>

#include <filesystem>
#include <functional>
#include <stdexcept>
#include <vector>

namespace sandbox {

/// A directory that may change in the sandbox, and only there.
struct Overlay {
    std::filesystem::path directory; ///< its path, free of links
    std::filesystem::path lower;     ///< it as it is on the disk; a path for the sandbox alone
    std::filesystem::path upper;     ///< what changed in it, likewise
    struct stat start;               ///< its own status before anything ran
};

/// There can be no sandbox, and nothing was run: the cause and the remedy.
struct Refused : std::runtime_error {
    using std::runtime_error::runtime_error;
};

/// Runs `work` in a process of its own. What it, and all that it starts, writes below one of the
/// directories is gone afterwards; everything else is read-only. What it leaves running is ended.
/// Mounts below the directories are covered as well, and files mounted there stay, read-only; "/"
/// and what is no directory is passed over.
/// `work` is given the overlays, parents first, and must not throw.
///
/// Returns what `work` returned. Throws Refused, and std::runtime_error where a signal ended it. To
/// be called once, by a process without threads: it stays in a user namespace afterwards.
int run(std::vector<std::filesystem::path> const& directories,
        std::function<int(std::vector<Overlay> const&)> const& work);

} // namespace sandbox
