#pragma once

// Tries whether an installer's operations keep what docs/host.md promises.

#include <functional>
#include <set>
#include <string>
#include <vector>

struct session_t;

namespace hostcheck {

/// A report in the Test Anything Protocol, on standard error or in the file that HOSTCHECK_REPORT
/// names. Each line is written at once, so that the last one says where a crash was.
struct Report {
    std::vector<std::string> lines;
    std::set<std::string> failed; ///< operations
    int count = 0;

    void write(std::string const& line);

    /// Tries one promise of an operation. `fault` returns what is wrong, or nothing; what it throws
    /// is wrong too.
    void promise(char const* operation, char const* text,
                 std::function<std::string()> const& fault);
};

/// What is wrong where the two are not the same, else nothing.
std::string difference(std::string const& expected, std::string const& found);

std::string read_file(std::string const& file);
void write_file(std::string const& file, std::string const& text, unsigned int mode = 0644);

// Each tries a group of operations, those on the disk in a folder that is there and empty.
void check_variables(Report& report, session_t* session);
void check_log(Report& report, std::string const& folder);
void check_paths(Report& report, std::string const& folder);
void check_files(Report& report, std::string const& folder);
void check_commands(Report& report, std::string const& folder);
void check_components(Report& report, session_t* session);
void check_preferences(Report& report, std::string const& folder);

} // namespace hostcheck
