#include "workbench/deintegration_script.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <fstream>
#include <locale>

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

int report_unopened(std::string const& script_path) {
    print_log("workbench_int: failed to open %s", script_path.c_str());
    return -1;
}

} // namespace

} // namespace workbench_int

int create_deintegration_script(std::string script_path, std::string config_dir) {
    print_log("workbench_int: trying to create %s", script_path.c_str());
    std::ofstream script;
    script.imbue(std::locale::classic());
    script.open(script_path, std::ios::app);
    if (!script.is_open()) return workbench_int::report_unopened(script_path);
    std::string const text = workbench_int::script_text(config_dir);

    // An earlier script is gone only from here on, where nothing is left that could throw. What is
    // no regular file has nothing to lose.
    bool const is_emptied = truncate(script_path.c_str(), 0) == 0 || errno == EINVAL;
    if (!is_emptied) return workbench_int::report_unopened(script_path);
    script << text;
    script.close();
    chmod(script_path.c_str(), 0755);
    return 0;
}
