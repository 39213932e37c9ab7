#include "sandbox/sandbox.h"

#include <fcntl.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <optional>
#include <set>

#include "sandbox/capabilities.h"
#include "sandbox/overlays.h"
#include "sandbox/processes.h"
#include "sandbox/scratch_folder.h"
#include "sandbox/user_namespace.h"

namespace fs = std::filesystem;

namespace sandbox {

namespace {

/// The directories of those that are there, free of links.
std::set<fs::path> present(std::vector<fs::path> const& names) {
    std::set<fs::path> directories;
    std::error_code absent;
    for (fs::path const& name : names)
        if (fs::is_directory(name, absent) && access(name.c_str(), R_OK | X_OK) == 0)
            directories.insert(fs::canonical(name));
    directories.erase("/"); // it can be entered, but not covered
    return directories;
}

/// Finds what keeps directories from changing.
class Obstacles {
  public:
    Obstacles(Coverage const& coverage, std::vector<Watched> const& watched)
        : mounts_(coverage.mounts) {
        for (Watched const& directory : watched) covered_.insert(directory.directory);
        places_ = mounts_;
        places_.insert(covered_.begin(), covered_.end());
    }

    /// The mount because of which the directory has no overlay, or nothing where it has one.
    fs::path above(fs::path const& directory) const {
        fs::path const nearest = nearest_above(places_, directory);
        if (covered_.count(nearest) != 0) return {};
        fs::path const below = first_below(mounts_, directory);
        return !below.empty() ? below : nearest.empty() ? "/" : nearest;
    }

    /// A mount in the directory that has no overlay, or nothing.
    fs::path inside(fs::path const& directory) const {
        for (auto place = places_.upper_bound(directory);
             place != places_.end() && lies_below(*place, directory); ++place)
            if (covered_.count(*place) == 0) return *place;
        return {};
    }

  private:
    std::set<fs::path> mounts_, covered_, places_;
};

Inside look_around(std::vector<Watched> const& watched, Coverage const& coverage,
                   Directories const& named) {
    Obstacles const obstacles(coverage, watched);
    for (fs::path const& directory : present(named.needed))
        if (fs::path const mount = obstacles.above(directory); !mount.empty())
            refuse(directory.string() + " cannot be covered, because of the mount at " +
                   mount.string());
    Inside inside{watched, {}};
    for (fs::path const& directory : present(named.wanted)) {
        fs::path mount = obstacles.above(directory);
        if (mount.empty()) mount = obstacles.inside(directory);
        if (!mount.empty()) inside.obstacles[directory] = mount;
    }
    return inside;
}

struct Preparation {
    Coverage coverage;
    std::set<int> forbidden;
    bool is_root;
};

/// Shuts this process, the first one of its namespace, in.
Inside enter(Preparation const& prepared, Directories const& named, std::string const& scratch) {
    require(prctl(PR_SET_PDEATHSIG, SIGKILL) == 0, "end with the parent");
    std::error_code removed;
    fs::path const place = fs::current_path(removed);
    require_right(unshare(CLONE_NEWNS) == 0, "unshare");
    require_right(mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0,
                  "make the mounts private");
    // Where a container hides parts of /proc this fails; the old one will do then.
    mount("proc", "/proc", "proc", MS_NOSUID | MS_NODEV | MS_NOEXEC, nullptr);
    Inside inside = look_around(mount_overlays(prepared.coverage, scratch, prepared.is_root),
                                prepared.coverage, named);
    require(removed || chdir(place.c_str()) == 0, "enter the working directory " + place.string());
    drop_capabilities(prepared.forbidden, prepared.is_root);
    return inside;
}

/// Calls `enter` and then only reaps. Writes to `refusal` why it cannot begin.
int run_first_process(int refusal, std::function<Inside()> const& enter,
                      std::function<int(Inside const&)> const& work) {
    int const kept = dup2(refusal, STDERR_FILENO + 1);
    close_range(STDERR_FILENO + 2, ~0U, 0);
    Inside inside;
    try {
        inside = enter();
    } catch (std::exception const& error) {
        return write(kept, error.what(), std::strlen(error.what())) > 0 ? 0 : 1;
    }
    close(kept);
    return run_in_child([&] {
        setsid();
        return work(inside);
    });
}

/// Waits for the first process. Throws Refused with what it wrote to `refusal`.
int wait_for(pid_t first_process, int refusal) {
    std::array<char, 4096> words;
    ssize_t const size = read(refusal, words.data(), words.size());
    close(refusal);
    int status = 0;
    waitpid(first_process, &status, 0);
    if (size > 0) throw Refused(std::string(words.data(), std::size_t(size)));
    int const result = WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
    if (result > 128)
        throw std::runtime_error("signal " + std::to_string(result - 128) + " ended the sandbox");
    return result;
}

} // namespace

void refuse(std::string const& cause) {
    throw Refused("there can be no sandbox: " + cause);
}

void require(bool succeeds, std::string const& what) {
    if (!succeeds) refuse(what + ": " + std::strerror(errno));
}

int run(Directories const& named, std::function<int(Inside const&)> const& work) {
    bool const is_root = has_rights_of_root();
    if (!is_root) require_own(present(named.own));
    std::vector<fs::path> all = named.needed;
    all.insert(all.end(), named.wanted.begin(), named.wanted.end());
    Preparation const prepared = {plan_coverage(all, is_root), forbidden_capabilities(), is_root};
    if (!is_root) enter_user_namespace();
    std::optional<ScratchFolder> scratch;
    if (needs_scratch_folder()) scratch.emplace();
    std::string const folder = scratch ? scratch->path() : "";

    std::array<int, 2> refusal;
    require(pipe2(refusal.data(), O_CLOEXEC) == 0, "make a pipe");
    require_right(unshare(CLONE_NEWPID | CLONE_NEWIPC) == 0, "unshare");
    prctl(PR_SET_DUMPABLE, 0); // here and in the sandbox: nothing in it may look into this process
    pid_t const first_process = fork();
    require(first_process != -1, "start a process");
    if (first_process == 0)
        _exit(run_first_process(
            refusal[1], [&] { return enter(prepared, named, folder); }, work));
    close(refusal[1]);
    return wait_for(first_process, refusal[0]);
}

} // namespace sandbox
