#include "sandbox/scratch_folder.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>

#include "sandbox/sandbox.h"

namespace fs = std::filesystem;

namespace sandbox {

namespace {

constexpr char const* prefix = "/var/tmp/wb-trial-sandbox-";

/// The lock is held until this process has ended.
bool lock(fs::path const& folder) {
    int const file = open(folder.c_str(), O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
    struct stat status {};
    return fstat(file, &status) == 0 && status.st_uid == geteuid() &&
           flock(file, LOCK_EX | LOCK_NB) == 0;
}

} // namespace

ScratchFolder::ScratchFolder() : path_(prefix + std::string("XXXXXX")) {
    std::error_code next_run_will_do;
    for (fs::directory_entry const& entry : fs::directory_iterator("/var/tmp"))
        if (entry.path().string().rfind(prefix, 0) == 0 && lock(entry))
            fs::remove_all(entry, next_run_will_do);
    require(mkdtemp(path_.data()) && lock(path_), "make a folder in /var/tmp");
}

ScratchFolder::~ScratchFolder() {
    std::error_code next_run_will_do;
    fs::remove_all(path_, next_run_will_do);
}

bool needs_scratch_folder() {
    int const in_memory = memfd_create("probe", MFD_CLOEXEC);
    bool const keeps_attributes = fsetxattr(in_memory, "user.probe", "", 0, 0) == 0;
    close(in_memory);
    return !keeps_attributes || std::getenv("WB_TRIAL_SCRATCH");
}

} // namespace sandbox
