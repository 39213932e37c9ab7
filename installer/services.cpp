#include "host/services.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
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

/// The number of the open stream that the name stands for, or -1.
int stream_number(std::string const& name) {
    if (name == "/dev/stdout") return STDOUT_FILENO;
    if (name == "/dev/stderr") return STDERR_FILENO;
    std::size_t const digits = name.find_last_not_of("0123456789") + 1;
    std::string const folder = name.substr(0, digits);
    bool const is_stream = folder == "/dev/fd/" || folder == "/proc/self/fd/";
    return is_stream && digits < name.size() ? std::atoi(&name[digits]) : -1;
}

/// To open a stream's file once more would give it a second position, so that what is written to
/// one overwrites what was written to the other.
std::FILE* open_log(std::string const& name) {
    int const stream = stream_number(name);
    if (stream == -1) return std::fopen(name.c_str(), "ae");
    return fdopen(fcntl(stream, F_DUPFD_CLOEXEC, 0), "w");
}

void fail_log(std::string const& sentence) {
    Host::current().outcome.fail(sentence + "; its lines go to standard error");
}

void write_log(std::string const& line) {
    auto& log = Host::current().log;
    if (log) {
        std::string const text = isatty(fileno(log.get())) == 1 ? printable(line, "\t\n") : line;
        std::cout.flush(); // which may lead to the same place
        if (std::fputs((text + '\n').c_str(), log.get()) != EOF && std::fflush(log.get()) == 0)
            return;
        log.reset();
        fail_log("the log cannot be written");
    }
    std::cerr << printable(line, "\t\n") << '\n';
}

/// Where a signal ends its command, a shell adds 128.
std::string how_it_ended(int status) {
    char const* const signal = sigdescr_np(status - 128);
    return signal ? " ended by signal " + std::to_string(status - 128) + " (" + signal + ")"
                  : " ended with status " + std::to_string(status);
}

/// Runs the command, and prints below its line what it says, line by line.
CommandOutcome run_and_print(Host const& host, std::string const& command) {
    constexpr std::size_t longest = std::size_t{1} << 20; // of a line that does not end
    bool const is_reported = !host.action.empty();
    std::string line;
    auto const end_line = [&] {
        if (is_reported) std::cout << "    " << printable(line, "\t") << '\n';
        line.clear();
    };
    if (is_reported) std::cout << host.action << "\n  runs: " << printable(command) << std::endl;
    CommandOutcome outcome =
        run_in_shell(host.shell, command, host.separates_commands, [&](std::string_view said) {
            for (char const character : said) {
                if (character != '\n') line += character;
                if (character == '\n' || line.size() == longest) end_line();
            }
            std::cout.flush();
        });
    if (!line.empty()) end_line();
    return outcome;
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
    auto const open = [&] {
        auto& log = Host::current().log;
        log.reset(*file ? open_log(file) : nullptr);
        if (*file && !log)
            fail_log("the log " + show(file) + " cannot be opened (" + std::strerror(errno) + ")");
        return 0;
    };
    return host_call(open, "log_init", file);
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
        CommandOutcome ended = run_and_print(host, command);
        *status = ended.status;
        if (ended.status != 0)
            host.outcome.fail("the command " + command + how_it_ended(ended.status));
        return std::move(ended.output);
    };
    return host_call(run, "get_command_output", command, *status, flag, text);
}
