#include "trial/copies.h"

#include <spawn.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <fstream>
#include <iostream>
#include <map>
#include <set>
#include <system_error>

#include "installer/signals.h"
#include "trial/places.h"

namespace fs = std::filesystem;
using installer::HeldSignals;

namespace trial {

namespace {

/// A folder for copies of the workbench and the product, removed with all that is in it.
class CopyFolder {
  public:
    /// Throws StartError where there can be none.
    explicit CopyFolder(Places const& places) {
        std::error_code absent;
        path_ = fs::canonical(fs::temp_directory_path(absent), absent) / "wb-trial-XXXXXX";
        if (places.is_in_workbench(path_) || places.is_in_product(path_))
            throw StartError("TMPDIR has to lie outside of the workbench and the product, for it "
                             "gets copies of them");
        if (absent || !mkdtemp(path_.data()))
            throw StartError("TMPDIR names no directory in which copies can be made");
    }
    ~CopyFolder() {
        std::error_code is_closed, is_left;
        fs::remove_all(path_, is_closed);
        if (is_closed) has_succeeded(start({"chmod", "-R", "u+rwX", "--", path_.c_str(), nullptr}));
        fs::remove_all(path_, is_left);
    }
    CopyFolder(CopyFolder const&) = delete;
    CopyFolder& operator=(CopyFolder const&) = delete;

    /// Copies what is there. Throws StartError where it cannot.
    std::vector<sandbox::Watched> copy(Places const& places) const {
        std::vector<sandbox::Watched> directories;
        for (fs::path const& place : std::set<fs::path>{places.workbench, places.product}) {
            std::string const copy = path_ + "/" + std::to_string(directories.size());
            std::error_code absent;
            if (fs::is_directory(place, absent))
                directories.push_back(sandbox::watch(place, copy, ""));
        }
        std::map<fs::path, pid_t> commands;
        for (sandbox::Watched const& watched : directories)
            commands[watched.directory] = start(
                {"cp", "-a", "--", watched.directory.c_str(), watched.before.c_str(), nullptr});
        std::string failed;
        for (auto const& [place, command] : commands)
            if (!has_succeeded(command)) failed = place;
        if (!failed.empty()) throw StartError("cp: " + failed + " cannot be copied");
        return directories;
    }

  private:
    /// Starts a command whose words end with a null pointer. Returns 0 where it cannot.
    static pid_t start(std::vector<char const*> const& command) {
        pid_t process = 0;
        posix_spawnp(&process, command[0], nullptr, nullptr,
                     const_cast<char* const*>(command.data()), environ);
        return process;
    }

    static bool has_succeeded(pid_t process) {
        int status = 0;
        return process != 0 && waitpid(process, &status, 0) == process && status == 0;
    }

    std::string path_;
};

/// Runs `work` in a child. Until that ends, this process only reaps, and passes on the signals that
/// it holds. Returns what `work` returned, or 128 and the number of the signal that ended it.
int run_in_child(HeldSignals const& signals, std::function<int()> const& work) {
    pid_t const child = fork();
    if (child == -1) throw std::system_error(errno, std::generic_category(), "start a process");
    if (child == 0) _exit(work());
    int status = 0;
    pid_t ended = 0;
    while ((ended = waitpid(-1, &status, WNOHANG)) != child && !HeldSignals::pending())
        if (ended == 0) signals.wait();
    if (ended != child) kill(child, HeldSignals::pending());
    while (ended != child) ended = wait(&status);
    return WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
}

/// Ends all children of this process, and theirs as they are left to it, as far as /proc shows
/// them.
void end_children() {
    pid_t child = 0;
    while (std::ifstream("/proc/thread-self/children") >> child) {
        kill(child, SIGKILL);
        waitpid(child, nullptr, 0);
    }
}

} // namespace

ExitStatus run_beside_copies(installer::Session& session, Report& report,
                             std::function<void(ChangeReport const&)> const& work) {
    HeldSignals const signals; // until the copies are removed
    Places const places(session);
    CopyFolder const copies(places);
    auto const run_and_report = [&] {
        ChangeReport const changes(copies.copy(places), session, report);
        std::cout << "The disk changes: this check really installs and uninstalls." << std::endl;
        if (!fs::exists("/proc/self"))
            report.note("there is no /proc: what still runs after the uninstall is not seen");
        work(changes);
        std::cout << "What the last list shows is left on the disk. Nothing beside the "
                     "workbench and the product was compared.\n";
        return report.finish();
    };
    int const result = run_in_child(signals, [&] { // in which no child is the caller's
        prctl(PR_SET_CHILD_SUBREAPER, 1);
        int const status = run_in_child(signals, [&] {
            signals.release();
            return status_or_error(run_and_report);
        });
        if (HeldSignals::pending()) end_children();
        return status;
    });
    if (result <= not_started) return ExitStatus(result);
    throw std::runtime_error("signal " + std::to_string(result - 128) + " ended the check");
}

} // namespace trial
