#pragma once

// With other result types and more operations.

#include <string>

#include "host/component_model.h"

class logging_state_t;
enum class [[nodiscard]] outcome{done, failed};

std::string env_get_string(session_t*, char const*);
outcome env_set_string(session_t*, char const*, char const*);
outcome env_set_string(session_t*, std::string const&, std::string const&);
outcome env_set_string(session_t*, char const*, bool);
bool log_init(char const*, logging_state_t**);
bool log_init(char const*, char const*);
long print_log(char const*, ...);
std::string path(std::string);
int is_dir(std::string const&);
int is_file(std::string const&);
int is_writable(std::string);
outcome folder_create(std::string, unsigned int);
outcome dir_copy(std::string, std::string);
std::string get_command_output(std::string, int*, bool, std::string);
bool run_command(std::string const&);
std::string double_quoted(std::string const&);
