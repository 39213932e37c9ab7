#include "workbench/deintegration_script.h"

#include <sys/stat.h>

#include <array>
#include <fstream>
#include <locale>

#include "host/services.h"
#include "workbench/shell_quote.h"

namespace {

/// The uninstall script's path is read by two shells: by the one that runs the line, as an argument
/// in double quotes, and by the one that the line starts, as its command.
std::string run_uninstall_script(std::string const& config_dir) {
    std::string const uninstall_script = path(config_dir + "/wr-setup/uninst_wr_qev") + ".sh";
    using workbench_int::command_word;
    return "/bin/sh -c " + workbench_int::double_quoted(command_word(uninstall_script)) + "\n";
}

std::string remove_directory(std::string const& config_dir) {
    std::string directory = path(config_dir);
    if (directory.rfind('-', 0) == 0) directory = "./" + directory; // or `rm` would see options
    return "rm -rf " + workbench_int::double_quoted(directory) + "\n";
}

} // namespace

int create_deintegration_script(std::string script_path, std::string config_dir) {
    print_log("workbench_int: trying to create %s", script_path.c_str());
    std::array<char, 4096> buffer;
    std::ofstream script;
    script.imbue(std::locale::classic());
    script.rdbuf()->pubsetbuf(buffer.data(), buffer.size());
    script.open(script_path, std::ios::app);
    if (!script.is_open()) {
        print_log("workbench_int: failed to open %s", script_path.c_str());
        return -1;
    }
    std::string text = "#!/bin/sh\n";
    text += run_uninstall_script(config_dir);
    text += remove_directory(config_dir);
    script.close();

    // An earlier script is truncated only here, where nothing is left that could throw.
    script.open(script_path);
    script << text;
    script.close();
    chmod(script_path.c_str(), 0755);
    return 0;
}
