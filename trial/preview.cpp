#include "trial/preview.h"

#include <unistd.h>

#include <cstdlib>
#include <fstream>
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

/// Says what cannot change here and could outside, and names the commands a temporary directory
/// that can in the place of such a one.
void report_read_only(sandbox::Inside const& inside, fs::path const& temporary, Report& report) {
    std::set<std::string> told;
    for (auto const& [directory, why] : inside.read_only)
        if (told.insert(why).second)
            report.note(directory.string() + " cannot change as a whole here, because " + why);
    std::error_code absent;
    if (inside.read_only.count(fs::canonical(temporary, absent)) == 0) return;
    for (std::string const& name : {std::string("/tmp"), std::string("/var/tmp"),
                                    std::string("/dev/shm"), environment("HOME", "/")})
        if (fs::is_directory(name, absent) && access(name.c_str(), W_OK) == 0) {
            setenv("TMPDIR", name.c_str(), 1);
            return;
        }
}

bool is_writable_log(fs::path const& log) {
    std::error_code absent;
    if (!fs::exists(log, absent)) return access(log.parent_path().c_str(), W_OK | X_OK) == 0;
    return !fs::is_directory(log) && access(log.c_str(), W_OK) == 0;
}

/// Also whether it can be opened: in the place of a FIFO there is one without the reader outside.
bool can_open_log(fs::path const& log) {
    return !fs::is_fifo(log) && std::ofstream(log, std::ios::app);
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

ExitStatus run_in_sandbox(Session& session, Report& report,
                          std::function<void(ChangeReport const&)> const& work) {
    std::string const temporary = environment("TMPDIR", "/tmp");
    fs::path const log = log_file(session);
    bool const is_log_writable = is_writable_log(log);
    sandbox::Directories const named = {
        {workbench_directory(session), product_directory(session)},
        {environment("HOME", ""), temporary, "/tmp", "/var/tmp", "/dev/shm", log.parent_path()}};
    auto const run_and_report = [&](sandbox::Inside const& inside) -> int {
        return status_or_error([&] {
            installer::Host::current().separates_commands = true;
            report_read_only(inside, temporary, report);
            if (is_log_writable && !can_open_log(log)) {
                report.note("the log " + log.string() +
                            " cannot be written here; its lines go to standard error");
                session.variables["log_file"].clear(); // it is lost anyway, and so no failure
            }
            work(ChangeReport(inside.directories, session, report));
            for (fs::path const& file : sandbox::copied_up_hard_links(inside.directories))
                report.warning(file.string() +
                               " has several hard links; here only this name changed, and outside "
                               "of a sandbox all of them do");
            std::cout << "Nothing on the disk was changed.\n";
            return report.finish();
        });
    };
    return ExitStatus(sandbox::run(named, run_and_report));
}

ExitStatus preview(Session& session, Report& report, std::string const& title,
                   std::function<void()> const& work) {
    return run_in_sandbox(session, report, [&](ChangeReport const& changes) {
        work();
        changes.show(title, changes.find());
        for (std::string const& process : sandbox::orphans())
            report.note("still running: " + process);
    });
}

} // namespace trial
