#include "bench/host.h"

#include <unistd.h>

#include <cstdarg>
#include <cstdio>

#include "host/ini_db.h"
#include "host/services.h"

namespace {

bench::Session* current = nullptr;

} // namespace

bench::Session::Session(std::size_t file_count) {
    current = this;
    component.name = "product-workbench";
    for (std::size_t number = 0; number < file_count; ++number)
        provider.files.push_back("share\\chapter-" + std::to_string(number) + "\\page.html");
}

std::vector<Component*> TSD::components() {
    return {&current->component};
}
bool Component::installCondition() {
    return true;
}
std::string Component::subdir() {
    return "/workbench";
}
ComponentProvider* Component::provider() {
    return &current->provider;
}

std::string env_get_string(session_t*, char const* name) {
    auto const variable = current->variables.find(name);
    return variable == current->variables.end() ? "" : variable->second;
}
void env_set_string(session_t*, char const* name, char const* value) {
    current->variables[name] = value;
}
void env_set_string(session_t*, std::string const& name, std::string const& value) {
    current->variables[name] = value;
}
int log_init(char const*, logging_state_t**) {
    return 0;
}
void print_log(char const* format, ...) {
    char line[1024];
    va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(line, sizeof line, format, arguments);
    va_end(arguments);
}
std::string path(std::string joined) {
    return joined;
}
int is_dir(std::string const&) {
    return 1;
}
int is_file(std::string const& name) {
    return access(name.c_str(), F_OK) == 0;
}
int is_writable(std::string name) {
    return access(name.c_str(), W_OK) == 0;
}
void folder_create(std::string, unsigned int) {}
void dir_copy(std::string, std::string) {}
std::string get_command_output(std::string, int*, bool, std::string) {
    return "";
}

struct IniDb::Contents {};
IniDb::IniDb(std::string, std::string, std::string) {}
IniDb::~IniDb() = default;
void IniDb::setValue(std::string, std::string, bool) {}
void IniDb::save() {}
