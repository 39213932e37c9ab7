#include <filesystem>
#include <fstream>
#include <iostream>
#include <set>
#include <utility>
#include <vector>

#include "hostcheck/hostcheck.h"

namespace fs = std::filesystem;

namespace hostcheck {

static std::ofstream report;
static std::vector<std::string> unlogged, faults;
static std::set<std::string> failed; // operations
static int count = 0;
static bool logs = false; // each line, those before too

/// Writes one line at once, whatever it quotes, so that the last one says where a crash was.
static void write(std::string line) try {
    for (char& character : line)
        if (static_cast<unsigned char>(character) < ' ') character = '?';
    if (!(report << line << std::endl)) std::cerr << line << std::endl;
    unlogged.push_back(line);
    if (logs)
        for (std::string const& next : std::exchange(unlogged, {}))
            print_log("hostcheck: %s", next.c_str());
} catch (...) {
    logs = false; // where print_log is tried, the report says so
}

void promise(char const* operation, char const* text, std::function<void()> const& attempt) {
    faults.clear();
    write(std::string("# calling ") + operation);
    try {
        attempt();
    } catch (std::exception const& error) {
        fault(std::string("an exception came out: ") + error.what());
    } catch (...) {
        fault("something came out that is no std::exception");
    }
    char const* const verdict = faults.empty() ? "ok " : "not ok ";
    write(verdict + std::to_string(++count) + " - " + operation + ": " + text);
    for (std::string const& what : faults) write("  # " + what);
    if (!faults.empty()) failed.insert(operation);
}

void fault(std::string const& what) {
    faults.push_back(what);
}

void expect(std::string const& expected, std::string const& found) {
    auto const shown = [](std::string const& text) {
        return '"' + text.substr(0, 200) + "\" (size " + std::to_string(text.size()) + ")";
    };
    if (expected != found) fault("expected " + shown(expected) + ", found " + shown(found));
}

std::string read_file(std::string const& file) {
    std::string text = "(cannot be read)";
    std::getline(std::ifstream(file), text, '\0');
    return text;
}

void write_file(std::string const& file, std::string const& text, unsigned int mode) {
    fs::create_directories(fs::path(file).parent_path());
    std::ofstream(file) << text;
    fs::permissions(file, fs::perms(mode));
}

/// Returns how many operations broke a promise.
static int check_installer(session_t* session) {
    std::error_code error;
    std::string folder = fs::temp_directory_path(error) / "hostcheck-XXXXXX";
    char const* const file = std::getenv("HOSTCHECK_REPORT");
    if (file) report.open(file);
    write("TAP version 13");
    if (file && !report) write(std::string("# HOSTCHECK_REPORT cannot be written: ") + file);
    if (error || !mkdtemp(folder.data())) {
        write("Bail out! TMPDIR names no directory that can be written");
        return 1;
    }
    variables(session, folder);
    log(session, folder);
    logs = true; // the installer's own is open
    for (Check* const check : {paths, files, commands, preferences, components})
        check(session, folder);
    write("1.." + std::to_string(count));
    fs::remove_all(folder, error);
    return int(failed.size());
}

} // namespace hostcheck

// Whichever action the installer calls first tries it. All return the same.
extern "C" int find_wb_components(session_t* session) {
    static int const failed = hostcheck::check_installer(session);
    return failed;
}
using Action = int(session_t*);
extern "C" [[gnu::alias("find_wb_components")]] Action validate_wb_path, detect_wb_in_default_path,
    perform_integration, perform_deintegration, init_wb_prefs;
