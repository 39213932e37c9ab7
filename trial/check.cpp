#include "trial/check.h"

#include <spawn.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <iostream>
#include <set>

#include "installer/held_signals.h"
#include "installer/show.h"
#include "sandbox/processes.h"
#include "trial/preview.h"

namespace fs = std::filesystem;
using installer::printable;
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

/// Judges what an uninstall left. What it leaves in the product is by design.
bool is_undone(std::vector<Change> const& changes, Places const& places) {
    bool is_workbench_changed = false, is_other_changed = false;
    for (Change const& change : changes) {
        bool const is_in_workbench = places.is_in_workbench(change.path);
        is_workbench_changed |= is_in_workbench;
        is_other_changed |= !is_in_workbench && !lies_in(change.path, places.product);
    }
    if (is_workbench_changed) std::cout << "failed: the uninstall leaves the workbench changed\n";
    else if (!places.workbench.empty()) std::cout << "The workbench is as it was.\n";
    if (is_other_changed)
        std::cout << "failed: the uninstall leaves changes beside the workbench and the product\n";
    return !is_workbench_changed && !is_other_changed;
}

bool has_ended_all() {
    std::vector<std::string> const processes = sandbox::left_running();
    for (std::string const& process : processes)
        std::cout << "failed: still running after the uninstall: " << printable(process) << '\n';
    return processes.empty();
}

bool install_and_uninstall(Places const& places, Sequence& sequence, ChangeReport const& report) {
    bool has_succeeded = sequence.install();
    std::vector<Change> changes = report.show("changed by the install");
    if (sequence.has_integrated()) {
        has_succeeded = sequence.call("perform_deintegration") && has_succeeded;
        has_succeeded = has_ended_all() && has_succeeded;
        changes = report.show("left by the uninstall");
    } else {
        std::cout << "The uninstall was not tried, for nothing was integrated.\n";
    }
    if (!has_succeeded) std::cout << "failed: the install or the uninstall, as told above\n";
    if (!sequence.has_integrated_again()) return is_undone(changes, places) && has_succeeded;
    std::cout << "failed: the workbench holds an earlier integration already, so this cannot tell "
                 "whether one is undone; uninstall first, then check again\n";
    return false;
}

/// Copies of the workbench and the product as they were.
class Copies {
  public:
    /// Throws StartError where they cannot be made, or would not be the same.
    explicit Copies(Places const& places) {
        if (!mkdtemp(folder_.data())) throw StartError(folder_ + ": no copies can be made there");
        for (fs::path const& place : std::set<fs::path>{places.workbench, places.product})
            if (fs::is_directory(place)) copy(place);
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
        char const* const command[] = {"cp", "-a", "--", place.c_str(), copy.c_str(), nullptr};
        pid_t process = 0;
        int status = posix_spawnp(&process, "cp", nullptr, nullptr,
                                  const_cast<char* const*>(command), environ);
        if (status == 0) waitpid(process, &status, 0);
        if (status == 0) return directories_.push_back(sandbox::watch(place, copy, ""));
        remove();
        throw StartError("cp: " + place.string() + " cannot be copied");
    }

    void remove() const {
        std::error_code is_left;
        fs::remove_all(folder_, is_left);
    }

    std::string folder_ = fs::temp_directory_path() / "wb-trial-XXXXXX";
    std::vector<sandbox::Watched> directories_;
};

} // namespace

ExitStatus check(Session const& session, Sequence& sequence) {
    Places const places(session); // before a script can move them away
    return run_in_sandbox(session, [&](ChangeReport const& report) {
        return install_and_uninstall(places, sequence, report);
    });
}

ExitStatus check_without_sandbox(Session const& session, Sequence& sequence) {
    installer::HeldSignals const signals; // so that the copies are removed
    Places const places(session);
    Copies const copies(places);
    std::cout << "The disk changes: this check really installs and uninstalls." << std::endl;
    prctl(PR_SET_CHILD_SUBREAPER, 1);
    int const result = sandbox::run_in_child([&] {
        signals.release();
        return status_or_error([&] {
            ChangeReport const report(copies.directories(), log_file(session));
            bool const has_succeeded = install_and_uninstall(places, sequence, report);
            std::cout << "What the last list shows is left on the disk. Nothing beside the "
                         "workbench and the product was compared.\n";
            return status_of(has_succeeded);
        });
    });
    if (result <= not_started) return ExitStatus(result);
    throw std::runtime_error("signal " + std::to_string(result - 128) + " ended the check");
}

} // namespace trial
