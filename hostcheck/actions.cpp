#include <sys/stat.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>

#include "host/services.h"
#include "hostcheck/hostcheck.h"

namespace fs = std::filesystem;

namespace hostcheck {

void Report::write(std::string const& line) {
    char const* const file = std::getenv("HOSTCHECK_REPORT");
    if (!file ||
        !(std::ofstream(file, lines.empty() ? std::ios::out : std::ios::app) << line << '\n'))
        std::cerr << line << std::endl;
    lines.push_back(line);
}

void Report::promise(char const* operation, char const* text,
                     std::function<std::string()> const& fault) {
    write(std::string("# calling ") + operation);
    std::string found;
    try {
        found = fault();
    } catch (std::exception const& error) {
        found = std::string("an exception came out: ") + error.what();
    } catch (...) {
        found = "something came out that is no std::exception";
    }
    std::string const number = std::to_string(++count);
    write((found.empty() ? "ok " : "not ok ") + number + " - " + operation + ": " + text);
    if (found.empty()) return;
    write("  # " + found);
    failed.insert(operation);
}

std::string difference(std::string const& expected, std::string const& found) {
    auto const shown = [](std::string text) {
        std::string const size = text.size() > 200 ? "... of " + std::to_string(text.size()) : "";
        text.resize(std::min(text.size(), std::size_t{200}));
        for (char& character : text)
            if (static_cast<unsigned char>(character) < ' ') character = '?';
        return '"' + text + '"' + size;
    };
    return expected == found ? "" : "expected " + shown(expected) + ", found " + shown(found) + " ";
}

std::string read_file(std::string const& file) {
    return {std::istreambuf_iterator<char>(std::ifstream(file).rdbuf()), {}};
}

void write_file(std::string const& file, std::string const& text, unsigned int mode) {
    std::ofstream(file) << text;
    chmod(file.c_str(), mode);
}

namespace {

/// Sends the report to the installer's log too, as far as that works.
void log_report(session_t* session, Report const& report) try {
    logging_state_t** const no_state = nullptr;
    log_init(env_get_string(session, "log_file").c_str(), no_state);
    for (std::string const& line : report.lines) print_log("hostcheck: %s", line.c_str());
} catch (...) {
    return; // the report has said so
}

/// Returns how many operations broke a promise.
int check_installer(session_t* session) {
    std::string folder = fs::temp_directory_path() / "hostcheck-XXXXXX";
    if (!mkdtemp(folder.data())) return std::perror(folder.c_str()), 1;
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
    std::error_code is_left;
    fs::remove_all(folder, is_left);
    return int(report.failed.size());
}

} // namespace

} // namespace hostcheck

// Whichever action the installer calls first tries it; all return the same.
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
