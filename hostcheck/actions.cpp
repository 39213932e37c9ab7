#include <sys/stat.h>

#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>

#include "host/services.h"
#include "hostcheck/hostcheck.h"

namespace fs = std::filesystem;

namespace hostcheck {

void Report::write(std::string const& line) {
    lines.push_back(line);
    char const* const file = std::getenv("HOSTCHECK_REPORT");
    auto const mode = lines.size() == 1 ? std::ios::out : std::ios::app;
    if (!file || !(std::ofstream(file, mode) << line << '\n')) std::cerr << line << std::endl;
}

void Report::promise(char const* operation, char const* text, std::function<Fault()> const& fault) {
    write(std::string("# calling ") + operation);
    Fault found; // on one line, whatever it quotes
    try {
        found = fault();
    } catch (std::exception const& error) {
        found = std::string("an exception came out: ") + error.what();
    } catch (...) {
        found = "something came out that is no std::exception";
    }
    write((found.empty() ? "ok " : "not ok ") + std::to_string(++count) + " - " + operation + ": " +
          text);
    if (found.empty()) return;
    for (char& character : found)
        if (static_cast<unsigned char>(character) < ' ') character = '?';
    write("  # " + found);
    failed.insert(operation);
}

static std::string shown(std::string text) {
    std::string const size = text.size() > 200 ? "... of " + std::to_string(text.size()) : "";
    text.resize(std::min(text.size(), std::size_t{200}));
    return '"' + text + '"' + size;
}

Fault difference(std::string const& expected, std::string const& found) {
    return expected == found ? "" : "expected " + shown(expected) + ", found " + shown(found) + " ";
}

std::string read_file(std::string const& file) {
    return {std::istreambuf_iterator<char>(std::ifstream(file).rdbuf()), {}};
}

void write_file(std::string const& file, std::string const& text, unsigned int mode) {
    std::ofstream(file) << text;
    chmod(file.c_str(), mode);
}

/// Sends the report to the installer's log too, as far as that works.
static void log_report(session_t* session, Report const& report) try {
    logging_state_t** const no_state = nullptr;
    log_init(env_get_string(session, "log_file").c_str(), no_state);
    for (std::string const& line : report.lines) print_log("hostcheck: %s", line.c_str());
} catch (...) {
    return; // the report has said so
}

/// Returns how many operations broke a promise.
static int check_installer(session_t* session) {
    std::error_code error;
    std::string folder = fs::temp_directory_path(error) / "hostcheck-XXXXXX";
    if (error || !mkdtemp(folder.data())) {
        std::cerr << "hostcheck: TMPDIR names no directory that can be written" << std::endl;
        return 1;
    }
    Report report;
    report.write("TAP version 13");
    check_variables(report, session);
    for (auto const check :
         {check_log, check_paths, check_files, check_commands, check_preferences}) {
        std::string const part = folder + "/" + std::to_string(report.count);
        fs::create_directory(part);
        check(report, part);
    }
    check_components(report, session);
    report.write("1.." + std::to_string(report.count));
    log_report(session, report);
    fs::remove_all(folder, error);
    return int(report.failed.size());
}

} // namespace hostcheck

// Whichever action the installer calls first tries it. All return the same.
extern "C" {
int find_wb_components(session_t* session) {
    static int const failed = hostcheck::check_installer(session);
    return failed;
}
[[gnu::alias("find_wb_components")]] int validate_wb_path(session_t*);
[[gnu::alias("find_wb_components")]] int detect_wb_in_default_path(session_t*);
[[gnu::alias("find_wb_components")]] int perform_integration(session_t*);
[[gnu::alias("find_wb_components")]] int perform_deintegration(session_t*);
[[gnu::alias("find_wb_components")]] int init_wb_prefs(session_t*);
}
