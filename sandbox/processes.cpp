#include "sandbox/processes.h"

#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <system_error>
#include <thread>

namespace fs = std::filesystem;

namespace sandbox {

namespace {

/// The parent's number as /proc has it, which may be of an outer namespace.
std::string parent() {
    std::ifstream status("/proc/self/status");
    std::string word;
    while (status >> word && word != "PPid:") continue;
    status >> word;
    return word;
}

std::string command_line(std::string const& process) {
    std::ifstream stream("/proc/" + process + "/cmdline");
    std::string line{std::istreambuf_iterator<char>(stream), {}};
    std::replace(line.begin(), line.end(), '\0', ' ');
    return line.substr(0, line.find_last_not_of(' ') + 1);
}

std::vector<std::string> siblings() {
    std::error_code unreadable;
    std::string const self = fs::read_symlink("/proc/self", unreadable);
    std::vector<std::string> lines;
    std::ifstream children("/proc/" + parent() + "/task/" + parent() + "/children");
    for (std::string process; children >> process;)
        if (std::string const line = command_line(process); process != self && !line.empty())
            lines.push_back(line);
    return lines;
}

} // namespace

int run_in_child(std::function<int()> const& work) {
    pid_t const child = fork();
    if (child == -1) throw std::system_error(errno, std::generic_category(), "start a process");
    if (child == 0) _exit(work());
    int status = 0;
    for (pid_t ended = 0; ended != child;) ended = wait(&status);
    return WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
}

std::vector<std::string> left_running() {
    std::vector<std::string> lines = siblings();
    for (int wait = 0; wait < 100 && !lines.empty(); ++wait, lines = siblings())
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    return lines;
}

} // namespace sandbox
