#pragma once

#include <string>

namespace sandbox {

/// A folder on the disk for the upper layers, where they cannot lie in memory. It is locked while
/// it is in use, so that the next run finds and removes one that was left behind. To be made
/// in the user namespace, if there is one: an overlay leaves folders in it that have no rights.
class ScratchFolder {
  public:
    /// Throws Refused where it cannot be made.
    ScratchFolder();
    ~ScratchFolder();
    ScratchFolder(ScratchFolder const&) = delete;
    ScratchFolder& operator=(ScratchFolder const&) = delete;

    std::string const& path() const { return path_; }

  private:
    std::string path_;
};

/// Whether upper layers in memory would lose attributes, as they do before Linux 6.6. Also so where
/// the environment has WB_TRIAL_SCRATCH, which is for tests.
bool needs_scratch_folder();

} // namespace sandbox
