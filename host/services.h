#pragma once

// The installer's services, as the plug-in calls them. The installer exports them; the plug-in
// leaves them unresolved and finds them in the process that loads it.

#include <string>

struct session_t;
struct logging_state_t;

/// The variable's value, or the empty string where the session does not hold it.
std::string env_get_string(session_t* session, char const* name);

/// Stores a copy of the value.
void env_set_string(session_t* session, char const* name, char const* value);
void env_set_string(session_t* session, std::string const& name, std::string const& value);

/// Sends the lines of `print_log` to `file`. The plug-in passes a null `state` and ignores the
/// result.
int log_init(char const* file, logging_state_t** state);

/// Writes one line to the log. The format holds no line end, and no conversion but "%s".
[[gnu::format(printf, 1, 2)]] void print_log(char const* format, ...);

/// The installer's normal form of a path joined from pieces.
std::string path(std::string joined);

/// Not 0 where a directory of that name exists, where a file does, and where the installation can
/// write.
int is_dir(std::string const& name);
int is_file(std::string const& name);
int is_writable(std::string name);

/// Makes the directory, with that mode. Reports no failure.
void folder_create(std::string directory, unsigned int mode);

/// Copies the contents of the directory `source` into the directory `destination`. Reports no
/// failure.
void dir_copy(std::string source, std::string destination);

/// Has a shell run `command`, waits for it, stores its status and returns its output. The plug-in
/// passes `true` and the empty string for the last two arguments, which are the installer's own.
std::string get_command_output(std::string command, int* status, bool flag, std::string text);
