#pragma once

#include <string>

/// Writes, with mode 0755, the shell script that undoes an integration: it runs the uninstall
/// script of the configuration in `config_dir` and then removes `config_dir`. Replaces an earlier
/// script at `script_path`. Returns 0, or -1 where `script_path` cannot be opened; a write that
/// fails is not noticed. Logs the attempt and the failure to open.
int create_deintegration_script(std::string script_path, std::string config_dir);
