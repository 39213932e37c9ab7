#include "installer/shell.h"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <new>
#include <system_error>
#include <vector>

#include "installer/signals.h"

namespace installer {

namespace {

[[noreturn]] void execute(char const* shell, char const* command, int output, bool in_own_group) {
    if (in_own_group) setpgid(0, 0);
    dup2(open("/dev/null", O_RDONLY), STDIN_FILENO);
    dup2(output, STDOUT_FILENO);
    dup2(output, STDERR_FILENO);
    close_range(STDERR_FILENO + 1, ~0U, 0);
    execl(shell, shell, "-c", command, nullptr);
    std::perror(shell);
    _exit(127);
}

/// Up to its end, or until one of the signals comes.
std::string read_all(int input, HeldSignals const& signals,
                     std::function<void(std::string_view)> const& hear) {
    std::string text;
    std::vector<char> block(std::size_t{1} << 16);
    while (!HeldSignals::pending()) {
        if (!signals.wait(input)) continue;
        ssize_t const size = read(input, block.data(), block.size());
        if (size <= 0) break;
        std::string_view const fresh(block.data(), static_cast<std::size_t>(size));
        text += fresh;
        hear(fresh);
    }
    return text;
}

} // namespace

CommandOutcome run_in_shell(std::string const& shell, std::string const& command, bool in_own_group,
                            std::function<void(std::string_view)> const& hear) {
    HeldSignals const signals; // they end the command too
    std::array<int, 2> ends = {-1, -1};
    pid_t const process = pipe2(ends.data(), O_CLOEXEC) == 0 ? fork() : -1;
    if (process == -1) throw std::system_error(errno, std::generic_category(), "start a command");
    if (process == 0) {
        signals.release();
        execute(shell.c_str(), command.c_str(), ends[1], in_own_group);
    }
    close(ends[1]);
    int status = 0;
    auto const finish = [&] {
        close(ends[0]);
        pid_t ended = 0;
        while ((ended = waitpid(process, &status, WNOHANG)) == 0 && !HeldSignals::pending())
            signals.wait();
        if (ended == 0) signals.pass_on(process);
    };
    std::string output;
    try {
        output = read_all(ends[0], signals, hear);
    } catch (std::bad_alloc const&) {
        finish();
        throw;
    }
    finish();
    return {WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status), std::move(output)};
}

} // namespace installer
