#pragma once

// Which directories get an overlay, and what is mounted below them.

#include <filesystem>
#include <set>
#include <vector>

namespace sandbox {

struct Coverage {
    std::set<std::filesystem::path> directories; ///< to be covered, parents first
    std::set<std::filesystem::path> mounts;      ///< the places of all mounts that can be seen
    std::set<std::filesystem::path> foreign; ///< those with another owner than this ordinary user
};

/// Covers the directories in "/", the mounts below them, and the ones that are named, each as far
/// as the kernel lets. An ordinary user cannot cover a directory that has a mount below it; its
/// sub-directories without one are covered then. Where others own a directory on the way to one
/// that is named, the highest own one below that is covered. Only looks. Throws Refused where the
/// mounts cannot be read.
Coverage plan_coverage(std::vector<std::filesystem::path> const& named, bool is_root);

/// The first of the paths that lies below the directory, or an empty one.
std::filesystem::path first_below(std::set<std::filesystem::path> const& paths,
                                  std::filesystem::path const& directory);

/// The nearest of the paths that is or holds the directory, or an empty one.
std::filesystem::path nearest_above(std::set<std::filesystem::path> const& paths,
                                    std::filesystem::path const& directory);

/// The mounts that overlays over these directories would hide, for they have none themselves.
std::set<std::filesystem::path> hidden_mounts(std::set<std::filesystem::path> const& mounts,
                                              std::set<std::filesystem::path> const& covered);

} // namespace sandbox
