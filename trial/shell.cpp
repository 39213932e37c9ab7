#include "trial/shell.h"

#include <sys/wait.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>

namespace trial {

namespace {

std::string single_quoted(std::string const& text) {
    std::string quoted = "'";
    for (char const character : text)
        quoted += character == '\'' ? "'\\''" : std::string{character};
    return quoted + "'";
}

std::string read_all(std::FILE* stream) {
    std::string text;
    std::array<char, 4096> block;
    while (std::size_t const size = std::fread(block.data(), 1, block.size(), stream))
        text.append(block.data(), size);
    return text;
}

} // namespace

CommandOutcome run_command(std::string const& shell, std::string const& command) {
    std::string const line =
        "exec " + single_quoted(shell) + " -c " + single_quoted(command) + " </dev/null 2>&1";
    std::unique_ptr<std::FILE, int (*)(std::FILE*)> process(popen(line.c_str(), "re"), pclose);
    if (!process) return {127, std::strerror(errno)};

    std::string output = read_all(process.get());
    int const status = pclose(process.release());
    if (status == -1) return {127, std::strerror(errno)};
    return {WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status), output};
}

} // namespace trial
