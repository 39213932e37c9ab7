// usage: small_host LIBRARY [PROMISE]
// An installer that does no more than it has to, for either set of headers. It loads the library,
// calls one action and prints its result. It breaks the promise that is named.

#include <dlfcn.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdarg>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <map>
#include <stdexcept>
#include <utility>

#include "host/component_model.h"
#include "host/ini_db.h"
#include "host/services.h"

namespace fs = std::filesystem;
using Texts = std::vector<std::string>;

static std::string broken;
static bool breaks(std::string const& promise) {
    return broken == promise;
}

static std::map<std::string, std::string> variables;
static std::map<std::string, char const*> uncopied;

std::string env_get_string(session_t*, char const* name) {
    if (breaks("throw") && name == std::string("HOSTCHECK_NOT_HELD"))
        throw std::runtime_error("no");
    if (breaks("copy") && uncopied.count(name) != 0) return uncopied[name];
    if (breaks("not held") && variables.count(name) == 0) return "none";
    return variables[name];
}

using Set = decltype(env_set_string(nullptr, "", ""));
Set env_set_string(session_t*, char const* name, char const* value) {
    uncopied[name] = value;
    variables[name] = value;
    return Set();
}
Set env_set_string(session_t*, std::string const& name, std::string const& value) {
    uncopied.erase(name);
    variables[name] = value;
    return Set();
}

static std::ofstream log_stream;
decltype(log_init("", static_cast<logging_state_t**>(nullptr))) log_init(char const* file,
                                                                         logging_state_t**) {
    bool const is_open = log_stream.is_open();
    log_stream = std::ofstream();
    if (!breaks("log again") || !is_open) log_stream.open(file, std::ios::app);
    return {};
}
decltype(print_log("")) print_log(char const* format, ...) {
    std::string line(2U << 20, '\0');
    va_list arguments;
    va_start(arguments, format);
    line.resize(std::size_t(std::vsnprintf(&line[0], line.size(), format, arguments)));
    va_end(arguments);
    log_stream << line.substr(0, breaks("long line") ? 1000 : line.size()) << std::endl;
    return decltype(print_log(""))();
}

std::string path(std::string joined) {
    if (breaks("link")) return fs::path(joined).lexically_normal();
    if (breaks("relative")) return joined.empty() ? "" : fs::absolute(joined).string();
    return joined;
}
int is_dir(std::string const& name) {
    return fs::is_directory(breaks("linked folder") ? fs::symlink_status(name) : fs::status(name));
}
int is_file(std::string const& name) {
    return fs::is_regular_file(name);
}
int is_writable(std::string name) {
    return breaks("writable") || access(name.c_str(), W_OK) == 0;
}

using Made = decltype(folder_create("", 0U));
Made folder_create(std::string directory, unsigned int mode) {
    if (breaks("kept content")) fs::remove_all(directory);
    fs::create_directories(directory);
    if (!breaks("umask")) chmod(directory.c_str(), mode);
    return Made();
}
Made dir_copy(std::string source, std::string destination) {
    setenv("SOURCE", source.c_str(), 1);
    setenv("COPY", destination.c_str(), 1);
    char const* const command =
        breaks("mode") ? "cp -rd --no-preserve=mode $SOURCE/. $COPY" : "cp -a $SOURCE/. $COPY";
    static_cast<void>(std::system(command));
    return Made();
}

std::string get_command_output(std::string command, int* status, bool, std::string) {
    if (breaks("quotes")) command.erase(0, command.find('\\') + 1);
    if (breaks("wait") && command.rfind("sleep", 0) == 0)
        command = "(" + command + ") >/dev/null 2>&1 &";
    static int idle[2];
    static bool const has_idle = pipe(idle) == 0;
    setenv("COMMAND", command.c_str(), has_idle);
    std::string const input = breaks("input") ? "&" + std::to_string(idle[0]) : "/dev/null";
    std::FILE* const stream = popen(("sh -c \"$COMMAND\" 2>&1 <" + input).c_str(), "r");
    std::string text(9U << 20, '\0');
    text.resize(std::fread(&text[0], 1, text.size(), stream));
    int const ended = pclose(stream);
    if (!breaks("status")) *status = WEXITSTATUS(ended);
    return breaks("much output") ? text.substr(0, 1U << 20) : text;
}

class Provider final : public ComponentProvider {
  public:
    using Handle = decltype(std::declval<ComponentProvider&>().query("", "", ""));
    Handle query(std::string, std::string, std::string) override {
        return reinterpret_cast<Handle>(this);
    }
    Texts fileList(Handle) override { return breaks("path") ? Texts{"a\tb"} : files; }

  private:
    Texts files = {"", "share\\wr-qev-1.0a\\x", std::string(100, 'y')};
};

static Provider provider;
/// Its operations, as an installer has them that declares one before `query`.
static void* const* const moved = *reinterpret_cast<void* const* const*>(&provider) - 1;
static Component component, other_component;
static int component_calls = 0;

bool Component::installCondition() {
    return true;
}
std::string Component::subdir() {
    return "/sub";
}
ComponentProvider* Component::provider() {
    return breaks("slot") ? reinterpret_cast<ComponentProvider*>(const_cast<void* const**>(&moved))
                          : &::provider;
}
std::vector<Component*> TSD::components() {
    ++component_calls;
    if (breaks("components") && component_calls % 2 == 0) return {nullptr, &other_component};
    return {nullptr, &component};
}

static std::string ini_file, ini_entry;
#ifdef OTHER_HOST
Component::~Component() = default;
TSD::~TSD() = default;
#else
struct IniDb::Contents {};
#endif
IniDb::IniDb(std::string root, std::string file, std::string) {
    ini_file = root + "/" + file;
}
IniDb::~IniDb() = default;
using Kept = decltype(std::declval<IniDb&>().setValue("", "", true));
Kept IniDb::setValue(std::string key, std::string value, bool) {
    ini_entry = key + " = " + value;
    return Kept();
}
Kept IniDb::save() {
    std::ifstream stream(ini_file);
    std::string kept;
    for (std::string line; std::getline(stream, line);)
        if (line.rfind("home", 0) != 0 && !breaks("other keys")) kept += line + "\n";
    std::ofstream(ini_file) << kept << ini_entry << "\n";
    return Kept();
}

int main(int argc, char** argv) {
    if (argc > 2) broken = argv[2];
    component.name = other_component.name = "workbench";
    void* const library = dlopen(argv[1], RTLD_NOW);
    if (!library) return std::cerr << dlerror() << '\n', 2;
    static session_t session;
    auto const action = reinterpret_cast<int (*)(session_t*)>(dlsym(library, "init_wb_prefs"));
    int const result = action(&session);
    std::cout << "returned " << result << '\n';
}
