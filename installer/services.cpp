#include "host/services.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdarg>
#include <cstring>
#include <filesystem>
#include <iostream>
#include <utility>

#include "installer/files.h"
#include "installer/host.h"
#include "installer/shell.h"

// The plug-in ignores most failures of these operations. Here they become failures of the outcome.

namespace fs = std::filesystem;
using namespace installer;

namespace {

/// The format with its arguments, which are all strings.
std::string log_line(std::string_view format, va_list arguments) {
    std::string line;
    for (std::size_t at = 0; (at = format.find("%s")) != std::string_view::npos;
         format.remove_prefix(at + 2)) {
        line += format.substr(0, at);
        line += va_arg(arguments, char const*);
    }
    return line += format;
}

/// Each action opens it again, so this is a failure of the first one alone.
void fail_log(std::string const& sentence) {
    Host& host = Host::current();
    if (!std::exchange(host.has_log_failed, true))
        host.outcome.fail(sentence + "; its lines go to standard error");
}

void write_log(std::string const& line) {
    Host& host = Host::current();
    if (host.log.is_open()) {
        if (host.log << line << std::endl) return;
        host.log.close();
        fail_log("the log cannot be written");
    }
    std::cerr << printable(line, "\t\n") << '\n';
}

void set_variable(session_t* session, std::string const& name, std::string const& value) {
    auto const set = [&] {
        static_cast<Session&>(*session).variables[name] = value;
        Host::current().outcome.written.push_back(name);
    };
    host_call(set, "env_set_string", name, value);
}

} // namespace

std::string env_get_string(session_t* session, char const* name) {
    auto const get = [&] {
        Host::current().outcome.read.insert(name);
        return static_cast<Session&>(*session).value(name);
    };
    return host_call(get, "env_get_string", name);
}

void env_set_string(session_t* session, char const* name, char const* value) {
    set_variable(session, name, value);
}

void env_set_string(session_t* session, std::string const& name, std::string const& value) {
    set_variable(session, name, value);
}

int log_init(char const* file, logging_state_t**) {
    auto const open_log = [&] {
        Host& host = Host::current();
        host.log = std::ofstream();
        if (*file) host.log.open(file, std::ios::app);
        if (*file && !host.log.is_open())
            fail_log("the log " + show(file) + " cannot be opened (" + std::strerror(errno) + ")");
        return 0;
    };
    return host_call(open_log, "log_init", file);
}

void print_log(char const* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    std::string const line = log_line(format, arguments);
    va_end(arguments);
    host_call([&] { write_log(line); }, "print_log", line);
}

std::string path(std::string joined) {
    return host_call([&] { return normalised(joined); }, "path", joined);
}

int is_dir(std::string const& name) {
    std::error_code unreadable;
    return host_call([&] { return int{fs::is_directory(name, unreadable)}; }, "is_dir", name);
}

int is_file(std::string const& name) {
    std::error_code unreadable;
    return host_call([&] { return int{fs::is_regular_file(name, unreadable)}; }, "is_file", name);
}

int is_writable(std::string name) {
    auto const ask = [&] { return int{faccessat(AT_FDCWD, name.c_str(), W_OK, AT_EACCESS) == 0}; };
    return host_call(ask, "is_writable", name);
}

void folder_create(std::string directory, unsigned int mode) {
    auto const create = [&](Outcome& outcome) { create_folder(directory, mode, outcome); };
    call_on_disk(create, "folder_create", directory, Mode{mode});
}

void dir_copy(std::string source, std::string destination) {
    auto const copy = [&](Outcome& outcome) {
        outcome.copy = destination;
        copy_tree(source, destination, outcome);
    };
    call_on_disk(copy, "dir_copy", source, destination);
}

std::string get_command_output(std::string command, int* status, bool flag, std::string text) {
    auto const run = [&] {
        Host& host = Host::current();
        if (!host.action.empty())
            std::cout << host.action << "\n  runs: " << printable(command) << std::endl;
        CommandOutcome ended = run_in_shell(host.shell, command, host.separates_commands);
        *status = ended.status;
        constexpr std::size_t kept = std::size_t{4} << 20;
        std::size_t const size = ended.output.size();
        host.outcome.output_size = size;
        host.outcome.output = ended.output.substr(size > kept ? size - kept : 0);
        if (ended.status != 0)
            host.outcome.fail("the command " + command + " ended with status " +
                              std::to_string(ended.status));
        return std::move(ended.output);
    };
    return host_call(run, "get_command_output", command, *status, flag, text);
}
