#pragma once

// Tries whether an installer's operations keep what docs/host.md promises.

#include <functional>
#include <set>
#include <string>
#include <vector>

struct session_t;

namespace hostcheck {

/// What is wrong, or nothing.
using Fault = std::string;

/// A report in the Test Anything Protocol. Each line is written at once, to standard error or to
/// the file that HOSTCHECK_REPORT names, so that the last one says where a crash was.
struct Report {
    std::vector<std::string> lines;
    std::set<std::string> failed; ///< operations
    int count = 0;

    void write(std::string const& line);
    /// Tries one promise of an operation. What `fault` throws is a fault too.
    void promise(char const* operation, char const* text, std::function<Fault()> const& fault);
};

Fault difference(std::string const& expected, std::string const& found);
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
