#include "trial/preview.h"

#include <cstdlib>
#include <iostream>
#include <sstream>

#include "installer/files.h"
#include "installer/show.h"
#include "sandbox/processes.h"
#include "sandbox/sandbox.h"

namespace fs = std::filesystem;
using installer::printable;
using installer::Session;
using sandbox::Change;

namespace trial {

namespace {

std::string environment(char const* name, std::string const& otherwise) {
    char const* const value = std::getenv(name);
    return value && *value ? value : otherwise;
}

/// The folder that a log makes a file in or changes one in; nothing where it is a device or a pipe.
fs::path log_folder(fs::path const& log) {
    std::error_code absent;
    bool const is_file = log.parent_path() != "/dev" && !fs::is_other(log, absent);
    return is_file ? log.parent_path() : fs::path();
}

/// Says what cannot change, and names the commands a temporary directory that can.
void adapt_to(sandbox::Inside const& inside, std::string const& temporary) {
    for (auto const& [directory, mount] : inside.obstacles)
        std::cout << "note: " << printable(directory.string())
                  << " cannot change as a whole here, because of the mount at "
                  << printable(mount.string()) << '\n';
    for (std::string const& name : {temporary, std::string("/tmp"), std::string("/var/tmp"),
                                    std::string("/dev/shm"), environment("HOME", "/")}) {
        std::error_code absent;
        if (!fs::is_directory(name, absent) || inside.obstacles.count(fs::canonical(name)) != 0)
            continue;
        setenv("TMPDIR", name.c_str(), 1);
        return;
    }
}

} // namespace

std::vector<Change> ChangeReport::show(std::string const& title) const {
    std::cout << title << ":\n";
    std::vector<Change> changes = sandbox::find_changes(directories_, log_);
    if (changes.empty()) std::cout << "  nothing\n";
    for (Change const& change : changes)
        for (std::string const& line : sandbox::described(change))
            std::cout << printable(line, "\t") << '\n';
    return changes;
}

fs::path workbench_directory(Session const& session) {
    std::string const choice = session.value("WB_INTEGRATION_PATH");
    if (!choice.empty()) return choice;
    std::istringstream search_path(session.value("DEFAULT_SEARCH_PATH"));
    std::error_code absent;
    for (std::string name; std::getline(search_path, name, ' ');)
        if (fs::is_regular_file(name + "/install.properties", absent)) return name;
    return "";
}

fs::path product_directory(Session const& session) {
    std::string const directory = session.value("VORN_INSTALL_DIR");
    bool const is_root = installer::normalised(directory).size() <= 1;
    return is_root ? directory + session.value("VORN_INSTALL_SUBDIR") : directory;
}

fs::path log_file(Session const& session) {
    std::string const name = session.value("log_file");
    if (name.empty()) return "";
    std::error_code unreachable;
    fs::path log = fs::absolute(name);
    for (int links = 0; links < 40 && fs::is_symlink(log, unreachable); ++links)
        log = log.parent_path() / fs::read_symlink(log);
    return fs::weakly_canonical(log, unreachable);
}

ExitStatus run_in_sandbox(Session const& session,
                          std::function<bool(ChangeReport const&)> const& work) {
    fs::path const log = log_file(session);
    std::string const temporary = environment("TMPDIR", "/tmp");
    sandbox::Directories const named = {
        {workbench_directory(session), product_directory(session), log_folder(log)},
        {environment("HOME", ""), temporary, "/tmp", "/var/tmp", "/dev/shm"}};
    auto const run_and_report = [&](sandbox::Inside const& inside) -> int {
        return status_or_error([&] {
            adapt_to(inside, temporary);
            bool const has_succeeded = work(ChangeReport(inside.directories, log));
            std::cout << "Nothing on the disk was changed.\n";
            return status_of(has_succeeded);
        });
    };
    std::cout.flush();
    return ExitStatus(sandbox::run(named, run_and_report));
}

ExitStatus preview(Session const& session, std::string const& title,
                   std::function<bool()> const& work) {
    return run_in_sandbox(session, [&](ChangeReport const& report) {
        bool const has_succeeded = work();
        report.show(title);
        for (std::string const& process : sandbox::left_running())
            std::cout << "note: still running: " << printable(process) << '\n';
        return has_succeeded;
    });
}

} // namespace trial
