#include <filesystem>
#include <fstream>
#include <iostream>
#include <utility>
#include <vector>

#include "hostcheck/hostcheck.h"

namespace fs = std::filesystem;

namespace hostcheck {

static std::ofstream report;
static std::vector<std::string> unlogged, faults;
static std::string skipped;       // why the promise is not tried
static int count = 0, broken = 0; // promises
static bool logs = false;         // each line, those before too

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
    skipped.clear();
    note(std::string("calling ") + operation);
    try {
        attempt();
    } catch (std::exception const& error) {
        fault(std::string("an exception came out: ") + error.what());
    } catch (...) {
        fault("something came out that is no std::exception");
    }
    std::string verdict = faults.empty() ? "ok " : "not ok ";
    verdict += std::to_string(++count) + " - " + operation + ": " + text;
    write(faults.empty() && !skipped.empty() ? verdict + " # SKIP " + skipped : verdict);
    for (std::string const& what : faults) write("  # " + what);
    broken += int(!faults.empty());
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

void skip(char const* reason) {
    skipped = reason;
}

void note(std::string const& text) {
    write("# " + text);
}

std::string read_file(std::string const& file) {
    std::ifstream stream(file);
    if (!stream) return "(cannot be read)";
    return {std::istreambuf_iterator<char>(stream), {}};
}

void write_file(std::string const& file, std::string const& text, unsigned int mode) {
    fs::create_directories(fs::path(file).parent_path());
    std::ofstream(file) << text;
    fs::permissions(file, fs::perms(mode));
}

/// Returns how many promises were broken.
static int check_installer(session_t* session) {
    std::error_code error;
    std::string folder = fs::temp_directory_path(error) / "hostcheck-XXXXXX";
    char const* const file = std::getenv("HOSTCHECK_REPORT");
    if (file) report.open(file);
    write("TAP version 13");
    if (file && !report) note(std::string("HOSTCHECK_REPORT cannot be written: ") + file);
    if (error || !mkdtemp(folder.data()))
        return write("Bail out! TMPDIR names no directory that can be written"), 1;
    variables(session, folder);
    log(session, folder);
    logs = true; // the installer's own is open
    for (Check* const check : {paths, files, commands, preferences, components})
        check(session, folder);
    write("1.." + std::to_string(count));
    fs::remove_all(folder, error);
    if (error) note(folder + " stays: " + error.message());
    return broken;
}

} // namespace hostcheck

// Whichever action the installer calls first tries it. All return the same.
extern "C" int find_wb_components(session_t* session) {
    static int const broken = hostcheck::check_installer(session);
    return broken;
}
extern "C" [[gnu::alias("find_wb_components")]] decltype(find_wb_components) validate_wb_path,
    detect_wb_in_default_path, perform_integration, perform_deintegration, init_wb_prefs;
