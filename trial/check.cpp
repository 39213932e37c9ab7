#include "trial/check.h"

#include <spawn.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <iostream>
#include <set>

#include "installer/held_signals.h"
#include "sandbox/processes.h"
#include "trial/preview.h"

namespace fs = std::filesystem;
using installer::Session;
using sandbox::Change;

namespace trial {

namespace {

bool lies_in(std::string const& path, fs::path const& directory) {
    return !directory.empty() && (path + "/").rfind(directory / "", 0) == 0;
}

/// The product and the workbench, free of links.
struct Places {
    fs::path workbench, product;

    explicit Places(Session const& session)
        : workbench(resolved(workbench_directory(session))),
          product(resolved(product_directory(session))) {}

    bool is_in_workbench(std::string const& path) const {
        bool const is_products =
            lies_in(path, product) && product != workbench && lies_in(product, workbench);
        return lies_in(path, workbench) && !is_products;
    }

  private:
    static fs::path resolved(fs::path const& name) {
        std::error_code unreachable;
        return fs::weakly_canonical(name, unreachable);
    }
};

/// Installs, uninstalls and judges.
class Check {
  public:
    Check(Session const& session, Sequence& sequence, Report& report)
        : places_(session), sequence_(sequence), report_(report) {}

    /// Returns whether nothing failed.
    bool run(ChangeReport const& changes) {
        bool has_succeeded = sequence_.install();
        changes.show("changed by the install");
        if (!sequence_.has_integrated())
            return has_succeeded && fail("nothing was checked, for nothing was integrated");
        has_succeeded = sequence_.call("perform_deintegration") && has_succeeded;
        for (std::string const& process : sandbox::left_running())
            has_succeeded = fail("still running after the uninstall: " + process);
        std::vector<Change> const left = changes.show("left by the uninstall");
        if (sequence_.has_integrated_again())
            return fail("the workbench holds an earlier integration already, so this cannot tell "
                        "whether one is undone; uninstall first, then check again");
        return judge(left) && has_succeeded;
    }

    Places const& places() const { return places_; }

  private:
    /// What is left in the product is by design.
    bool judge(std::vector<Change> const& left) {
        bool is_workbench_changed = false, is_other_changed = false;
        for (Change const& change : left) {
            bool const is_in_workbench = places_.is_in_workbench(change.path);
            is_workbench_changed |= is_in_workbench;
            is_other_changed |= !is_in_workbench && !lies_in(change.path, places_.product);
        }
        if (is_workbench_changed) fail("the uninstall leaves the workbench changed");
        else if (!places_.workbench.empty()) report_.success("The workbench is as it was.");
        if (is_other_changed)
            fail("the uninstall leaves changes beside the workbench and the product");
        return !is_workbench_changed && !is_other_changed;
    }

    bool fail(std::string const& sentence) {
        report_.failure("check", sentence);
        return false;
    }

    Places const places_; ///< as they are before a script can move them away
    Sequence& sequence_;
    Report& report_;
};

/// Copies of the workbench and the product as they were.
class Copies {
  public:
    /// Throws StartError where they cannot be made, or would not be the same.
    explicit Copies(Places const& places) {
        std::error_code absent;
        folder_ = fs::temp_directory_path(absent) / "wb-trial-XXXXXX";
        if (absent || !mkdtemp(folder_.data()))
            throw StartError("TMPDIR names no directory in which copies can be made");
        for (fs::path const& place : std::set<fs::path>{places.workbench, places.product})
            if (fs::is_directory(place, absent)) copy(place);
        if (sandbox::find_changes(directories_, "").empty()) return;
        remove();
        throw StartError("the workbench or the product cannot be copied as it is; run as root");
    }
    ~Copies() { remove(); }
    Copies(Copies const&) = delete;
    Copies& operator=(Copies const&) = delete;

    std::vector<sandbox::Watched> const& directories() const { return directories_; }

  private:
    void copy(fs::path const& place) {
        std::string const copy = folder_ + "/" + std::to_string(directories_.size());
        if (succeeds({"cp", "-a", "--", place.c_str(), copy.c_str(), nullptr}))
            return directories_.push_back(sandbox::watch(place, copy, ""));
        remove();
        throw StartError("cp: " + place.string() + " cannot be copied");
    }

    void remove() const {
        std::error_code is_left;
        succeeds({"chmod", "-R", "u+rwX", "--", folder_.c_str(), nullptr});
        fs::remove_all(folder_, is_left);
    }

    /// Runs a command whose words end with a null pointer.
    static bool succeeds(std::vector<char const*> const& command) {
        pid_t process = 0;
        int status = posix_spawnp(&process, command[0], nullptr, nullptr,
                                  const_cast<char* const*>(command.data()), environ);
        return status == 0 && waitpid(process, &status, 0) == process && status == 0;
    }

    std::string folder_;
    std::vector<sandbox::Watched> directories_;
};

} // namespace

ExitStatus check(Session const& session, Sequence& sequence, Report& report) {
    Check check(session, sequence, report);
    return run_in_sandbox(session, report,
                          [&](ChangeReport const& changes) { return check.run(changes); });
}

ExitStatus check_without_sandbox(Session const& session, Sequence& sequence, Report& report) {
    installer::HeldSignals const signals; // so that the copies are removed
    Check check(session, sequence, report);
    Copies const copies(check.places());
    std::cout << "The disk changes: this check really installs and uninstalls." << std::endl;
    auto const run_and_report = [&] {
        if (!fs::exists("/proc/self"))
            report.note("there is no /proc: what still runs after the uninstall is not seen");
        bool const has_succeeded = check.run(ChangeReport(copies.directories(), session, report));
        std::cout << "What the last list shows is left on the disk. Nothing beside the "
                     "workbench and the product was compared.\n";
        report.summary();
        return status_of(has_succeeded);
    };
    int const result = sandbox::run_in_child([&] { // in which no child is the caller's
        prctl(PR_SET_CHILD_SUBREAPER, 1);
        return sandbox::run_in_child([&] {
            signals.release();
            return status_or_error(run_and_report);
        });
    });
    if (result <= not_started) return ExitStatus(result);
    throw std::runtime_error("signal " + std::to_string(result - 128) + " ended the check");
}

} // namespace trial
