// usage: small_host LIBRARY BREAK ACTION...
// An installer that does no more than it has to. BREAK names the one thing that it does wrong.

#include <dlfcn.h>
#include <fcntl.h>
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
static bool breaks(char const* name) {
    return broken == name;
}

static std::map<std::string, std::string> variables;
static std::map<std::string, char const*> uncopied;

std::string env_get_string(session_t*, char const* name) {
    bool const is_held = variables.count(name) != 0;
    if (breaks("throws a number") && !is_held) throw 1;
    if (breaks("env_set_string: keeps addresses") && uncopied.count(name) != 0)
        return uncopied[name];
    if (breaks("env_get_string: reads more") && !is_held) return "no\nne";
    std::string const value = variables[name];
    return breaks("env_get_string: joins blanks") ? value.substr(0, value.find("  ")) : value;
}

using Set = decltype(env_set_string(nullptr, "", ""));
Set env_set_string(session_t*, char const* name, char const* value) {
    if (breaks("env_set_string: forgets other variables")) variables.clear();
    uncopied[name] = value;
    variables[name] = value;
    return Set();
}
Set env_set_string(session_t*, std::string const& name, std::string const& value) {
    uncopied.erase(name);
    variables[name] = breaks("env_set_string: loses strings") ? "" : value;
    return Set();
}

static std::ofstream log_stream;
static std::string log_file;
using Opened = decltype(log_init("", static_cast<logging_state_t**>(nullptr)));
Opened log_init(char const* file, logging_state_t**) {
    if (breaks("log_init: opens no nameless log") && !*file) throw std::runtime_error("no log");
    bool const is_first = log_file.empty(), is_open = log_file == file;
    log_stream = std::ofstream();
    if (!(breaks("log_init: opens no first log") && is_first) &&
        !(breaks("log_init: opens no open log") && is_open))
        log_stream.open(file,
                        breaks("log_init: empties the log") ? std::ios::trunc : std::ios::app);
    log_file = file;
    return {};
}
decltype(print_log("")) print_log(char const* format, ...) {
    std::string line(2U << 20, '\0');
    va_list arguments;
    va_start(arguments, format);
    line.resize(std::size_t(std::vsnprintf(&line[0], line.size(), format, arguments)));
    va_end(arguments);
    if (breaks("crashes with a format") && line.find("%n") != std::string::npos) std::abort();
    if (breaks("print_log: logs a value as a format"))
        for (std::size_t at = 0; (at = line.find("%%")) != std::string::npos;) line.erase(at, 1);
    if (breaks("print_log: cuts a line")) line.resize(std::min(line.size(), std::size_t{1000}));
    line += breaks("print_log: ends none") ? " " : breaks("print_log: ends twice") ? "\n\n" : "\n";
    log_stream << line << std::flush;
    return decltype(print_log(""))();
}

std::string path(std::string joined) {
    if (breaks("path: resolves .. without looking")) return fs::path(joined).lexically_normal();
    if (breaks("path: makes paths absolute") && fs::exists(joined)) return fs::canonical(joined);
    return breaks("path: makes . of an empty path") && joined.empty() ? "." : joined;
}
int is_dir(std::string const& name) {
    return fs::is_directory(breaks("is_dir: looks at links") ? fs::symlink_status(name)
                                                             : fs::status(name));
}
int is_file(std::string const& name) {
    return fs::exists(breaks("is_file: looks at links") ? fs::symlink_status(name)
                                                        : fs::status(name));
}
int is_writable(std::string name) {
    return breaks("is_writable: finds all writable") || access(name.c_str(), W_OK) == 0;
}

using Made = decltype(folder_create("", 0U));
Made folder_create(std::string directory, unsigned int mode) {
    if (breaks("folder_create: empties it")) fs::remove_all(directory);
    bool const is_new = !fs::exists(directory);
    std::string const parent = fs::path(directory).parent_path();
    if (is_new && !fs::exists(parent) && !breaks("folder_create: gives a parent no mode"))
        folder_create(parent, mode);
    fs::create_directories(directory);
    if (is_new || !breaks("folder_create: gives an old one no mode"))
        chmod(directory.c_str(), mode);
    return Made();
}
Made dir_copy(std::string source, std::string destination) {
    if (breaks("dir_copy: copies no absent source") && !fs::exists(source))
        throw std::runtime_error("no");
    std::string copy = "cp -a --remove-destination";
    if (breaks("dir_copy: copies no modes")) copy += " --no-preserve=mode";
    copy += breaks("dir_copy: copies no hidden files") ? " *" : " .";
    if (breaks("dir_copy: empties the destination"))
        copy = "rm -r \"$COPY\" && mkdir \"$COPY\" && " + copy;
    copy += " \"$COPY\"";
    if (breaks("dir_copy: copies no links")) copy += " && rm \"$COPY/link\"";
    if (breaks("dir_copy: moves")) copy += " && rm -r ./*";
    setenv("COPY", destination.c_str(), 1);
    setenv("SOURCE", source.c_str(), 1);
    static_cast<void>(std::system(("cd \"$SOURCE\" 2>/dev/null && " + copy).c_str()));
    return Made();
}

std::string get_command_output(std::string command, int* status, bool, std::string) {
    if (breaks("get_command_output: cuts a command"))
        command.resize(std::min(command.size(), std::size_t{4096}));
    std::size_t const blanks = command.find("  ");
    if (breaks("get_command_output: joins blanks") && blanks != std::string::npos)
        command.erase(blanks, 1);
    bool const waits = !breaks("get_command_output: waits for its output only") ||
                       command.rfind("done\"") == std::string::npos;
    if (!waits) command.insert(0, "exec ");
    if (!breaks("get_command_output: loses errors")) command += " 2>&1";
    if (!breaks("get_command_output: hands on its input")) command += " </dev/null";
    std::FILE* const stream = popen(command.c_str(), "r");
    std::string text(9U << 20, '\0');
    text.resize(std::fread(&text[0], 1, text.size(), stream));
    int const ended = waits ? pclose(stream) : 0;
    *status = WIFSIGNALED(ended) ? 128 + WTERMSIG(ended) : WEXITSTATUS(ended);
    if (breaks("get_command_output: stores a raw status")) *status = ended;
    if (breaks("get_command_output: stores -1") && *status > 125) *status = -1;
    return breaks("get_command_output: cuts an output") ? text.substr(0, 1U << 20) : text;
}

class Provider final : public ComponentProvider {
  public:
    using Handle = decltype(std::declval<ComponentProvider&>().query("", "", ""));
    Handle query(std::string first, std::string, std::string) override {
        return breaks("asks for a first word") && first.empty() ? nullptr
                                                                : reinterpret_cast<Handle>(this);
    }
    Texts fileList(Handle) override {
        if (breaks("provider: lists more each time")) files.push_back("more");
        return breaks("provider: lists control characters") ? Texts{"a\tb"} : files;
    }

  private:
    Texts files = {"", "share\\wr-qev-1.0a\\x", std::string(100, 'y')};
};

static Provider provider;
static Component component, other_component;
static int component_calls = 0;

bool Component::installCondition() {
    return true;
}
std::string Component::subdir() {
    return breaks("subdir: begins with no slash") ? "sub" : "/sub";
}
ComponentProvider* Component::provider() {
    if (this == &other_component) return nullptr;
    return &::provider;
}
std::vector<Component*> TSD::components() {
    ++component_calls;
    if (breaks("components: lists others") && component_calls == 2) return {&component};
    if (breaks("installCondition: spoils a name") && component_calls == 2000) component.name += "s";
    if (breaks("leaks descriptors"))
        while (open("/dev/null", O_RDONLY) >= 0) {
        }
    return {nullptr, &other_component, &component};
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
    ini_entry = key + " = " + (breaks("IniDb: cuts a value") ? value.substr(0, 250) : value);
    return Kept();
}
Kept IniDb::save() {
    std::ifstream stream(ini_file);
    std::string kept;
    bool is_there = false;
    for (std::string line; std::getline(stream, line);) {
        bool const is_home = line.rfind(breaks("IniDb: takes more") ? "home" : "home=", 0) == 0;
        is_there |= is_home;
        if (!is_home || (breaks("IniDb: keeps old values") && !kept.empty())) kept += line + "\n";
    }
    if (is_there || !breaks("IniDb: adds no key"))
        std::ofstream(ini_file) << kept << ini_entry << "\n";
    return Kept();
}

int main(int argc, char** argv) {
    if (argc < 3) return 2;
    broken = argv[2];
    component.name = "workbench";
    other_component.name = "other";
    variables["log_file"] = "log";
    void* const library = dlopen(argv[1], RTLD_NOW);
    if (!library) return std::cerr << dlerror() << '\n', 2;
    static session_t session;
    for (int at = 3; at < argc; ++at) {
        auto const action = reinterpret_cast<int (*)(session_t*)>(dlsym(library, argv[at]));
        std::cout << argv[at] << " returned " << action(&session) << '\n';
    }
    for (auto const& [name, value] : variables)
        if (name != "log_file" && !value.empty()) std::cout << name << " = " << value << '\n';
}
