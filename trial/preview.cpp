#include "trial/preview.h"

#include <unistd.h>

#include <cstdlib>
#include <iostream>
#include <map>
#include <sstream>

#include "installer/files.h"
#include "sandbox/changes.h"
#include "trial/exit_status.h"

namespace fs = std::filesystem;
using installer::normalised;
using installer::printable;
using installer::Session;
using installer::show;
using sandbox::Change;

namespace trial {

namespace {

std::string environment(char const* name, std::string const& otherwise) {
    char const* const value = std::getenv(name);
    return value && *value ? value : otherwise;
}

/// That of the product alone, also where it is installed below "/".
std::string product_directory(Session const& session) {
    std::string const directory = session.value("VORN_INSTALL_DIR");
    return normalised(directory).size() > 1 ? directory
                                            : directory + session.value("VORN_INSTALL_SUBDIR");
}

/// What an install or uninstall is expected to change.
std::vector<fs::path> changing_directories(Session const& session) {
    std::string const log = session.value("log_file");
    std::vector<fs::path> directories = {session.value("WB_INTEGRATION_PATH"),
                                         session.value("VORN_INSTALL_DIR"),
                                         product_directory(session),
                                         log.empty() ? ""
                                                     : (fs::current_path() / log).parent_path(),
                                         environment("HOME", ""),
                                         environment("TMPDIR", "/tmp"),
                                         "/var/tmp"};
    std::istringstream search_path(session.value("DEFAULT_SEARCH_PATH"));
    for (std::string name; std::getline(search_path, name, ' ');) directories.emplace_back(name);
    return directories;
}

/// Prints below a title what is not as it is on the disk, but for the log, and returns it.
using ShowChanges = std::function<std::vector<Change>(std::string const& title)>;

ExitStatus run_in_sandbox(Session const& session, std::vector<std::string> const& writable,
                          std::function<bool(ShowChanges const&)> const& work) {
    std::error_code unreachable;
    std::string const log = fs::weakly_canonical(session.value("log_file"), unreachable);
    auto const run_and_report = [&](std::vector<sandbox::Overlay> const& overlays) -> int {
        return status_or_error([&] {
            bool const has_succeeded = work([&](std::string const& title) {
                std::cout << title << ":\n";
                std::vector<Change> changes = sandbox::find_changes(overlays, log);
                if (changes.empty()) std::cout << "  nothing\n";
                for (Change const& change : changes)
                    for (std::string const& line : sandbox::described(change))
                        std::cout << printable(line, "\t") << '\n';
                return changes;
            });
            std::cout << "Nothing on the disk was changed.\n";
            return status_of(has_succeeded);
        });
    };
    try {
        std::vector<fs::path> directories = changing_directories(session);
        for (std::string const& name : writable) {
            directories.emplace_back(name);
            bool const can_be_covered = access((name + "/.").c_str(), R_OK | X_OK) == 0;
            if (!can_be_covered || fs::canonical(name) == "/")
                throw StartError("--writable " + show(name) + ": no directory that can be covered");
        }
        std::cout.flush();
        return ExitStatus(sandbox::run(directories, run_and_report));
    } catch (fs::filesystem_error const& error) {
        throw StartError(error.what());
    }
}

bool lies_in(std::string const& path, fs::path const& directory) {
    return !directory.empty() && (path + "/").rfind(directory / "", 0) == 0;
}

/// Judges what an uninstall left. What it leaves in the product is by design.
bool is_undone(std::vector<Change> const& changes, fs::path const& workbench,
               fs::path const& product) {
    bool is_workbench_changed = false, is_other_changed = false;
    for (Change const& change : changes) {
        bool const is_in_product = lies_in(change.path, product);
        bool const is_in_workbench =
            lies_in(change.path, workbench) &&
            !(is_in_product && product != workbench && lies_in(product, workbench));
        is_workbench_changed |= is_in_workbench;
        is_other_changed |= !is_in_workbench && !is_in_product;
    }
    if (is_workbench_changed) std::cout << "failed: the uninstall leaves the workbench changed\n";
    else if (!workbench.empty()) std::cout << "The workbench is as it was.\n";
    if (is_other_changed)
        std::cout << "failed: the uninstall leaves changes beside the workbench and the product\n";
    return !is_workbench_changed && !is_other_changed;
}

} // namespace

ExitStatus preview(Session const& session, std::vector<std::string> const& writable,
                   std::string const& title, std::function<bool()> const& work) {
    return run_in_sandbox(session, writable, [&](ShowChanges const& show_changes) {
        bool const has_succeeded = work();
        show_changes(title);
        return has_succeeded;
    });
}

ExitStatus check(Session const& session, std::vector<std::string> const& writable,
                 Sequence& sequence) {
    return run_in_sandbox(session, writable, [&](ShowChanges const& show_changes) {
        std::map<fs::path, fs::path> places; // before a script can move them away
        std::error_code unreachable;
        for (fs::path const& directory : changing_directories(session))
            places[directory] = fs::weakly_canonical(directory, unreachable);
        bool has_succeeded = sequence.install();
        std::vector<Change> changes = show_changes("changed by the install");
        if (sequence.has_integrated()) {
            has_succeeded = sequence.call("perform_deintegration") && has_succeeded;
            changes = show_changes("left by the uninstall");
        } else {
            std::cout << "The uninstall was not tried, for nothing was integrated.\n";
        }
        if (!has_succeeded) std::cout << "failed: the install or the uninstall, as told above\n";
        fs::path const& workbench = places[session.value("WB_INTEGRATION_PATH")];
        fs::path const& product = places[product_directory(session)];
        if (!sequence.has_integrated_again())
            return is_undone(changes, workbench, product) && has_succeeded;
        std::cout << "failed: the workbench holds an earlier integration already, so this cannot "
                     "tell whether one is undone; uninstall first, then check again\n";
        return false;
    });
}

} // namespace trial
