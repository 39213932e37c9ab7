#include "trial/check.h"

#include <fnmatch.h>
#include <spawn.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <fstream>
#include <functional>
#include <iostream>
#include <iterator>
#include <map>
#include <set>
#include <system_error>

#include "installer/signals.h"
#include "sandbox/processes.h"
#include "trial/places.h"
#include "trial/preview.h"
#include "trial/product_check.h"
#include "trial/undo_check.h"

namespace fs = std::filesystem;
using installer::HeldSignals;
using installer::Session;
using sandbox::Change;
using Texts = std::vector<std::string>;

namespace trial {

namespace {

std::string brief(Change const& change) {
    return change.letter + (" " + change.path);
}

/// The first three, and how many more there are.
std::string first_of(Texts const& changes) {
    std::string list;
    for (std::size_t number = 0; number < changes.size() && number < 3; ++number)
        list += (number == 0 ? "" : ", ") + changes[number];
    return list +
           (changes.size() > 3 ? " and " + std::to_string(changes.size() - 3) + " more" : "");
}

std::string text_of(fs::path const& file) {
    return {std::istreambuf_iterator<char>(std::ifstream(file).rdbuf()), {}};
}

/// Installs, uninstalls and judges.
class Check {
  public:
    /// Throws StartError where an integration is there already, for it would be undone too.
    Check(Session const& session, Sequence& sequence, Report& report)
        : session_(session), places_(session), sequence_(sequence), report_(report) {
        std::string const earlier = find_integration(session);
        if (!earlier.empty()) throw StartError(earlier);
    }

    void run(ChangeReport const& changes) {
        sequence_.install();
        changes.show("changed by the install", changes.find());
        if (!sequence_.has_integrated()) {
            if (!report_.has_failed()) fail("nothing was checked, for nothing was integrated");
            return;
        }
        sequence_.call("perform_deintegration");
        for (std::string const& process : sandbox::orphans())
            fail("still running after the uninstall: " + process);
        judge(changes);
    }

    Places const& places() const { return places_; }

  private:
    void judge(ChangeReport const& changes) {
        Texts remarks, in_workbench, in_product, elsewhere;
        std::vector<Change> const left = left_unexpectedly(changes, remarks);
        changes.show("left by the uninstall", left, remarks);
        for (Change const& change : left) {
            if (is_of_workbench(change)) in_workbench.push_back(brief(change));
            else if (places_.is_in_product(change.path)) in_product.push_back(brief(change));
            else elsewhere.push_back(brief(change));
        }
        if (!in_workbench.empty())
            fail("the uninstall leaves the workbench changed: " + first_of(in_workbench));
        else if (!places_.workbench.empty()) report_.success("The workbench is as it was.");
        if (!elsewhere.empty())
            fail("the uninstall leaves changes beside the workbench and the product: " +
                 first_of(elsewhere));
        if (!in_product.empty())
            report_.note("the uninstall leaves the product changed: " + first_of(in_product));
    }

    /// What does not count becomes a remark: what is left by design, and what is ignored.
    std::vector<Change> left_unexpectedly(ChangeReport const& changes, Texts& remarks) const {
        std::vector<Change> left;
        std::string by_design;
        int preferences_files = 0;
        for (Change const& change : changes.find()) {
            bool const may_be_left = !is_of_workbench(change);
            if (may_be_left && is_whole_script(change)) by_design = "the de-integration script";
            else if (may_be_left && has_only_location(change, changes)) ++preferences_files;
            else if (may_be_left && is_ignored(change))
                remarks.push_back("ignored: " + brief(change));
            else left.push_back(change);
        }
        if (preferences_files != 0)
            by_design += (by_design.empty() ? "" : ", ") + std::string("the location in ") +
                         std::to_string(preferences_files) + " preferences file" +
                         (preferences_files == 1 ? "" : "s");
        if (!by_design.empty()) remarks.insert(remarks.begin(), "by design: " + by_design);
        return left;
    }

    /// A directory that is gone took along what was in it.
    bool is_of_workbench(Change const& change) const {
        fs::path const place = fs::path(change.path) / "";
        bool const held_it = (places_.workbench / "").string().rfind(place, 0) == 0;
        return places_.is_in_workbench(change.path) || (held_it && change.letter != 'M');
    }

    bool is_whole_script(Change const& change) const {
        return change.path == fs::weakly_canonical(deintegration_script(session_)) &&
               !copy_to_be_undone(session_).empty();
    }

    /// Whether nothing but the host changed the file, where it set the product's location.
    bool has_only_location(Change const& change, ChangeReport const& changes) const {
        auto const saved = sequence_.saved_preferences().find(change.path);
        return saved != sequence_.saved_preferences().end() && change.letter == 'M' &&
               change.detail.empty() &&
               saved->second.first == text_of(changes.before(change.path)) &&
               saved->second.second == text_of(change.path);
    }

    bool is_ignored(Change const& change) const {
        return std::any_of(session_.ignored.begin(), session_.ignored.end(),
                           [&](std::string const& pattern) {
                               return fnmatch(pattern.c_str(), change.path.c_str(),
                                              FNM_PATHNAME | FNM_LEADING_DIR) == 0;
                           });
    }

    void fail(std::string const& sentence) { report_.failure("check", sentence); }

    Session const& session_;
    Places const places_; ///< as they are before a script can move them away
    Sequence& sequence_;
    Report& report_;
};

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

ExitStatus check(Session& session, Sequence& sequence, Report& report) {
    Check trial(session, sequence, report);
    return run_in_sandbox(session, report,
                          [&](ChangeReport const& changes) { trial.run(changes); });
}

ExitStatus check_without_sandbox(Session& session, Sequence& sequence, Report& report) {
    Check trial(session, sequence, report);
    HeldSignals const signals; // until the copies are removed
    CopyFolder const copies(trial.places());
    auto const run_and_report = [&] {
        ChangeReport const changes(copies.copy(trial.places()), session, report);
        std::cout << "The disk changes: this check really installs and uninstalls." << std::endl;
        if (!fs::exists("/proc/self"))
            report.note("there is no /proc: what still runs after the uninstall is not seen");
        trial.run(changes);
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
