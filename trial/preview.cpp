#include "trial/preview.h"

#include <cstdlib>
#include <iostream>
#include <set>

#include "installer/host.h"
#include "sandbox/processes.h"
#include "sandbox/sandbox.h"

namespace fs = std::filesystem;
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
void adapt_to(sandbox::Inside const& inside, std::string const& temporary, Report& report) {
    std::set<fs::path> told;
    for (auto const& [directory, mount] : inside.obstacles)
        if (told.insert(mount).second)
            report.note(directory.string() +
                        " cannot change as a whole here, because of the mount at " +
                        mount.string());
    for (std::string const& name : {temporary, std::string("/tmp"), std::string("/var/tmp"),
                                    std::string("/dev/shm"), environment("HOME", "/")}) {
        std::error_code absent;
        if (!fs::is_directory(name, absent) || inside.obstacles.count(fs::canonical(name)) != 0)
            continue;
        if (name != temporary) setenv("TMPDIR", name.c_str(), 1);
        return;
    }
}

} // namespace

void ChangeReport::show(std::string const& title, std::vector<Change> changes,
                        std::vector<std::string> const& remarks) const {
    for (Change& change : changes)
        if (!change.difference.empty() && is_secret(change.path)) {
            change.detail +=
                (change.detail.empty() ? "" : ", ") + std::string("text that others cannot read");
            change.difference.clear();
        }
    report_.changes(title, changes, remarks);
}

fs::path ChangeReport::before(fs::path const& file) const {
    fs::path original;
    for (sandbox::Watched const& watched : directories_) { // the innermost is the last one
        fs::path const inside = file.lexically_relative(watched.directory);
        if (*inside.begin() != "..") original = watched.before / inside;
    }
    return original;
}

bool ChangeReport::is_secret(std::string const& path) const {
    bool const is_sessions = places_.is_in_workbench(path) || places_.is_in_product(path);
    std::error_code unreachable;
    fs::perms const rights = fs::status(path, unreachable).permissions();
    return !is_sessions && (rights & fs::perms::others_read) == fs::perms::none;
}

ExitStatus run_in_sandbox(Session const& session, Report& report,
                          std::function<void(ChangeReport const&)> const& work) {
    std::string const temporary = environment("TMPDIR", "/tmp");
    fs::path const workbench = workbench_directory(session), product = product_directory(session);
    sandbox::Directories const named = {
        {workbench, product, log_folder(log_file(session))},
        {workbench, product},
        {environment("HOME", ""), temporary, "/tmp", "/var/tmp", "/dev/shm"}};
    auto const run_and_report = [&](sandbox::Inside const& inside) -> int {
        return status_or_error([&] {
            adapt_to(inside, temporary, report);
            installer::Host::current().separates_commands = true;
            work(ChangeReport(inside.directories, session, report));
            std::cout << "Nothing on the disk was changed.\n";
            return report.finish();
        });
    };
    return ExitStatus(sandbox::run(named, run_and_report));
}

ExitStatus preview(Session const& session, Report& report, std::string const& title,
                   std::function<void()> const& work) {
    return run_in_sandbox(session, report, [&](ChangeReport const& changes) {
        work();
        changes.show(title, changes.find());
        for (std::string const& process : sandbox::left_running())
            report.note("still running: " + process);
    });
}

} // namespace trial
