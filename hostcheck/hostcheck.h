#pragma once

// Tries whether an installer's operations keep what docs/host.md promises, and reports in the Test
// Anything Protocol: to standard error, or to the file that HOSTCHECK_REPORT names.

#include <functional>
#include <string>

#include "host/services.h"

namespace hostcheck {

/// Tries one promise of an operation. Whatever it throws is a fault too.
void promise(char const* operation, char const* text, std::function<void()> const& attempt);

/// Within a promise: notes a fault; one where the two are not the same; why it cannot be tried.
void fault(std::string const& what);
void expect(std::string const& expected, std::string const& found);
void skip(char const* reason);

/// Writes a comment into the report at once. "calling" and an operation names it if it crashes.
void note(std::string const& text);

std::string read_file(std::string const& file);
void write_file(std::string const& file, std::string const& text, unsigned int mode = 0644);

/// Tries a group of operations. All share the folder, each with names of its own.
using Check = void(session_t* session, std::string const& folder);
Check variables, log, paths, files, commands, preferences, components;

} // namespace hostcheck
