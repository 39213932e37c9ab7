#include "workbench/deintegration_script.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "host/services.h"
#include "workbench/shell_quote.h"

namespace workbench_int {

namespace {

std::string script_text(std::string const& config_dir) {
    std::string const uninstall_script = path(config_dir + "/wr-setup/uninst_wr_qev") + ".sh";
    std::string const removed = path(config_dir);
    // Two shells read the uninstall script's path: the one that runs the line, as an argument in
    // double quotes, and the one that the line starts, as its command.
    std::string const command = shell_word(unmistakable_path(uninstall_script));
    return "#!/bin/sh\n/bin/sh -c " + double_quoted(command) + "\nrm -rf " + quoted_path(removed) +
           "\n";
}

struct Descriptor {
    int const number; ///< negative where nothing is open
    ~Descriptor() { close(number); }
};

/// Opens the script, which is made where it is absent. Does not wait for the reader of a FIFO.
int open_script(char const* script_path) {
    constexpr int flags = O_WRONLY | O_CREAT | O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK;
    constexpr mode_t mode = 0666;
    int const script = open(script_path, flags, mode);
    if (script >= 0 || errno != ELOOP) return script;
    // Whoever may write into the product could lead root's writing anywhere by a link.
    return unlink(script_path) == 0 ? open(script_path, flags | O_EXCL, mode) : -1;
}

/// Whether nothing is left of an earlier script. What is no regular file has nothing to lose.
bool is_emptied(int script) {
    return ftruncate(script, 0) == 0 || errno == EINVAL;
}

void write_all(int script, std::string const& text) {
    ssize_t count = 0;
    for (std::size_t written = 0; written < text.size(); written += static_cast<std::size_t>(count))
        if ((count = write(script, &text[written], text.size() - written)) <= 0) return;
}

int report_unopened(std::string const& script_path) {
    print_log("workbench_int: failed to open %s", script_path.c_str());
    return -1;
}

} // namespace

} // namespace workbench_int

int create_deintegration_script(std::string script_path, std::string config_dir) {
    print_log("workbench_int: trying to create %s", script_path.c_str());
    workbench_int::Descriptor const script{workbench_int::open_script(script_path.c_str())};
    if (script.number < 0) return workbench_int::report_unopened(script_path);
    std::string const text = workbench_int::script_text(config_dir);

    // An earlier script is gone only from here on, where nothing is left that could throw.
    if (!workbench_int::is_emptied(script.number))
        return workbench_int::report_unopened(script_path);
    workbench_int::write_all(script.number, text);
    fchmod(script.number, 0755);
    return 0;
}
