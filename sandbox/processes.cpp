#include "sandbox/processes.h"

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <system_error>
#include <thread>

namespace fs = std::filesystem;

namespace sandbox {

namespace {

/// As much as can be read: its process may end meanwhile, and an iterator would throw.
std::string read_file(fs::path const& file) {
    std::ostringstream text;
    text << std::ifstream(file).rdbuf();
    return text.str();
}

struct Process {
    std::string number, name, parent;
    bool is_running = false;
};

/// Of a process that has ended by now nothing, or what is left of it.
Process read_process(fs::path const& directory) {
    std::string const status = read_file(directory / "stat"); // NUMBER (NAME) STATE PARENT ...
    std::size_t const open = status.find(" ("), close = status.rfind(')');
    if (close == std::string::npos) return {};
    std::istringstream rest(status.substr(close + 1));
    std::vector<std::string> const fields{std::istream_iterator<std::string>(rest), {}};
    // One whose main thread has ended looks like a zombie, but for its number of threads.
    bool const is_running = fields.at(0) != "Z" || fields.at(17) != "1";
    return {status.substr(0, open), status.substr(open + 2, close - open - 2), fields.at(1),
            is_running};
}

/// With the program's name where that is not in it.
std::string command_line(Process const& process) {
    std::string line = read_file("/proc/" + process.number + "/cmdline");
    std::replace(line.begin(), line.end(), '\0', ' ');
    if (line.find_first_not_of(' ') == std::string::npos || line[0] == ' ')
        line.insert(0, process.name);
    return line.substr(0, line.find_last_not_of(' ') + 1);
}

/// Those that have the same parent as this process.
std::vector<std::string> running_siblings() {
    std::vector<std::string> lines;
    std::error_code unreadable;
    Process const self = read_process("/proc/self");
    for (fs::directory_entry const& entry : fs::directory_iterator("/proc", unreadable)) {
        if (entry.path().filename().string().find_first_not_of("0123456789") != std::string::npos)
            continue;
        Process const process = read_process(entry);
        if (process.is_running && process.parent == self.parent && process.number != self.number)
            lines.push_back(command_line(process));
    }
    return lines;
}

} // namespace

std::vector<std::string> orphans() {
    std::vector<std::string> lines = running_siblings();
    for (int wait = 0; wait < 100 && !lines.empty(); ++wait, lines = running_siblings())
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    return lines;
}

} // namespace sandbox
