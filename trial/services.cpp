#include "host/services.h"

#include <fcntl.h>
#include <unistd.h>

#include <cstdarg>
#include <cstdio>
#include <filesystem>
#include <system_error>

#include "trial/files.h"
#include "trial/session.h"
#include "trial/shell.h"

// What the plug-in passes over in silence is told here, as a failure of the action at work.

namespace fs = std::filesystem;
using trial::Session;
using trial::show;
using trial::show_call;

namespace {

void set_variable(session_t* handle, std::string const& name, std::string const& value) {
    auto& session = static_cast<Session&>(*handle);
    session.call(show_call("env_set_string", name, value), [&] {
        session.variables[name] = value;
        session.report.written.push_back(name);
    });
}

/// Does `work` on the disk, and reports the call as failed where it throws.
template <typename Work>
void call_on_disk(std::string const& text, Work work) {
    Session& session = Session::current();
    session.call(text, [&] {
        try {
            work();
        } catch (fs::filesystem_error const& error) {
            bool const is_disk_full = error.code() == std::errc::io_error;
            session.fail(text + " failed: " + error.code().message() +
                         (is_disk_full ? " (is the disk full?): " : ": ") +
                         show(error.path1().string()));
        }
    });
}

std::string formatted(char const* format, va_list arguments) {
    va_list measured;
    va_copy(measured, arguments);
    int const size = std::vsnprintf(nullptr, 0, format, measured);
    va_end(measured);
    std::string text(static_cast<std::size_t>(size) + 1, '\0');
    std::vsnprintf(text.data(), text.size(), format, arguments);
    text.pop_back();
    return text;
}

/// The log is the only place where the plug-in tells which script it writes, and that it could not.
void watch_deintegration_script(Session& session, std::string const& format,
                                std::string const& line) {
    auto const argument = [&] { return line.substr(format.rfind("%s")); };
    if (format == "workbench_int: trying to create %s")
        session.expect_deintegration_script(argument());
    if (format == "workbench_int: failed to open %s")
        session.fail("the de-integration script " + show(argument()) +
                     " cannot be written; is its folder there and writable?");
}

} // namespace

std::string env_get_string(session_t* handle, char const* name) {
    auto& session = static_cast<Session&>(*handle);
    return session.call(show_call("env_get_string", name), [&]() -> std::string {
        auto const variable = session.variables.find(name);
        if (variable != session.variables.end()) return variable->second;
        session.report.unset.insert(name);
        return "";
    });
}

void env_set_string(session_t* session, char const* name, char const* value) {
    set_variable(session, name, value);
}

void env_set_string(session_t* session, std::string const& name, std::string const& value) {
    set_variable(session, name, value);
}

int log_init(char const* file, logging_state_t**) {
    Session& session = Session::current();
    return session.call(show_call("log_init", file), [&] {
        session.open_log(file);
        return 0;
    });
}

void print_log(char const* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    std::string const line = formatted(format, arguments);
    va_end(arguments);

    Session& session = Session::current();
    session.call(show_call("print_log", line), [&] {
        watch_deintegration_script(session, format, line);
        session.write_log(line);
    });
}

std::string path(std::string joined) {
    return Session::current().call(show_call("path", joined),
                                   [&] { return trial::normalised(joined); });
}

int is_dir(std::string const& name) {
    return Session::current().call(show_call("is_dir", name), [&] {
        std::error_code unreadable;
        return int{fs::is_directory(name, unreadable)};
    });
}

int is_file(std::string const& name) {
    return Session::current().call(show_call("is_file", name), [&] {
        std::error_code unreadable;
        return int{fs::is_regular_file(name, unreadable)};
    });
}

int is_writable(std::string name) {
    return Session::current().call(show_call("is_writable", name), [&] {
        return int{faccessat(AT_FDCWD, name.c_str(), W_OK, AT_EACCESS) == 0};
    });
}

void folder_create(std::string directory, unsigned int mode) {
    call_on_disk(show_call("folder_create", directory, mode), [&] {
        fs::create_directories(directory);
        fs::permissions(directory, static_cast<fs::perms>(mode));
    });
}

void dir_copy(std::string source, std::string destination) {
    call_on_disk(show_call("dir_copy", source, destination),
                 [&] { trial::copy_tree(source, destination); });
}

std::string get_command_output(std::string command, int* status, bool flag, std::string text) {
    Session& session = Session::current();
    std::string const call = show_call("get_command_output", command, *status, flag, text);
    return session.call(call, [&]() -> std::string {
        trial::CommandOutcome const outcome = trial::run_command(session.shell, command);
        *status = outcome.status;
        session.report.output = outcome.output;
        if (outcome.status != 0)
            session.fail("the command " + command + " ended with status " +
                         std::to_string(outcome.status));
        return outcome.output;
    });
}
