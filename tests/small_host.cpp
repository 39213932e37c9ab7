// usage: small_host LIBRARY [PROMISE]
// An installer that does no more than it has to, for either set of headers. It loads the library,
// calls one action and prints its result. It breaks the promise that is given.

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
static bool breaks(char const* promise) {
    return broken.find(promise) != std::string::npos;
}

static std::map<std::string, std::string> variables;
static std::map<std::string, char const*> uncopied;

std::string env_get_string(session_t*, char const* name) {
    if (breaks("exception") && variables.count(name) == 0) throw std::runtime_error("no");
    if (breaks("as characters") && uncopied.count(name) != 0) return uncopied[name];
    if (breaks("not held") && variables.count(name) == 0) return "none";
    return variables[name];
}

using Set = decltype(env_set_string(nullptr, "", ""));
Set env_set_string(session_t*, char const* name, char const* value) {
    if (breaks("another variable stays")) variables.clear();
    uncopied[name] = value;
    variables[name] = value;
    return Set();
}
Set env_set_string(session_t*, std::string const& name, std::string const& value) {
    uncopied.erase(name);
    variables[name] = breaks("as strings") ? "" : value;
    return Set();
}

static std::ofstream log_stream;
static std::string log_file;
using Opened = decltype(log_init("", static_cast<logging_state_t**>(nullptr)));
Opened log_init(char const* file, logging_state_t**) {
    if (breaks("empty name") && !*file) throw std::runtime_error("no log");
    bool const is_first = log_file.empty(), is_open = log_file == file;
    log_stream = std::ofstream();
    if (!(breaks("go to the file") && is_first) && !(breaks("that is open") && is_open))
        log_stream.open(file, std::ios::app);
    log_file = file;
    return {};
}
decltype(print_log("")) print_log(char const* format, ...) {
    std::string line(2U << 20, '\0');
    va_list arguments;
    va_start(arguments, format);
    line.resize(std::size_t(std::vsnprintf(&line[0], line.size(), format, arguments)));
    va_end(arguments);
    line.resize(std::min(line.size(), std::size_t{breaks("value is written") ? 1000U : 2U << 20}));
    line += breaks("makes one line") ? " " : "\n";
    if (breaks("ended twice")) line += "\n";
    log_stream << line << std::flush;
    return decltype(print_log(""))();
}

std::string path(std::string joined) {
    if (breaks("same place")) return fs::path(joined).lexically_normal();
    if (breaks("stays relative")) return joined.empty() ? "" : fs::absolute(joined).string();
    return joined;
}
int is_dir(std::string const& name) {
    return fs::is_directory(breaks("is_dir") ? fs::symlink_status(name) : fs::status(name));
}
int is_file(std::string const& name) {
    return fs::exists(breaks("is_file") ? fs::symlink_status(name) : fs::status(name));
}
int is_writable(std::string name) {
    return breaks("is_writable") || access(name.c_str(), W_OK) == 0;
}

using Made = decltype(folder_create("", 0U));
Made folder_create(std::string directory, unsigned int mode) {
    if (breaks("keeps its content")) fs::remove_all(directory);
    fs::create_directories(directory);
    if (!breaks("mode 0755")) chmod(directory.c_str(), mode);
    return Made();
}
Made dir_copy(std::string source, std::string destination) {
    if (breaks("no source") && !fs::exists(source)) throw std::runtime_error("no source");
    std::string copy = "cp -a . $COPY";
    if (breaks("all is copied")) copy = "cp -a * $COPY";
    if (breaks("lost link")) copy += " && rm $COPY/link";
    if (breaks("mode is kept")) copy = "cp -rd --no-preserve=mode . $COPY";
    if (breaks("other files")) copy = "rm -rf $COPY && " + copy;
    setenv("COPY", destination.c_str(), 1);
    static_cast<void>(std::system(("cd " + source + " && " + copy).c_str()));
    return Made();
}

std::string get_command_output(std::string command, int* status, bool, std::string) {
    if (breaks("double quotes")) command.erase(0, command.find('\\') + 1);
    setenv("COMMAND", command.c_str(), 1);
    std::string shell = "exec sh -c \"$COMMAND\"";
    shell += breaks("standard input") ? " <>idle" : " </dev/null";
    shell += breaks("both streams") ? "" : " 2>&1";
    std::FILE* const stream = popen(shell.c_str(), "r");
    std::string text(9U << 20, '\0');
    text.resize(std::fread(&text[0], 1, text.size(), stream));
    bool const waits = command.rfind("exec", 0) != 0 || !breaks("has ended");
    int const ended = waits && !breaks("wait") ? pclose(stream) : 0;
    *status = breaks("signal") || !WIFSIGNALED(ended) ? WEXITSTATUS(ended) : 128;
    if (breaks("status is stored")) *status = ended;
    return breaks("8 MiB") ? text.substr(0, 1U << 20) : text;
}

class Provider final : public ComponentProvider {
  public:
    using Handle = decltype(std::declval<ComponentProvider&>().query("", "", ""));
    Handle query(std::string, std::string, std::string) override {
        return reinterpret_cast<Handle>(this);
    }
    Texts fileList(Handle) override {
        if (breaks("always the same")) files.push_back("more");
        return breaks("control character") ? Texts{"a\tb"} : files;
    }

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
    if (this == &other_component) return nullptr;
    return breaks("moved") ? reinterpret_cast<ComponentProvider*>(const_cast<void* const**>(&moved))
                           : &::provider;
}
std::vector<Component*> TSD::components() {
    ++component_calls;
    if (breaks("same components") && component_calls % 2 == 0) return {&component};
    if (breaks("names are intact") && component_calls == 5000) component.name += "s";
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
    ini_entry = key + " = " + value;
    return Kept();
}
Kept IniDb::save() {
    std::ifstream stream(ini_file);
    std::string kept;
    if (breaks("not there is added") && fs::path(ini_file).stem() == "without") return Kept();
    for (std::string line; std::getline(stream, line);)
        if (line.rfind("home", 0) == 0 ? breaks("key that is there") : !breaks("other keys"))
            kept += line + "\n";
    std::ofstream(ini_file) << kept << ini_entry << "\n";
    return Kept();
}

int main(int argc, char** argv) {
    if (argc > 2) broken = argv[2];
    component.name = "workbench";
    other_component.name = "other";
    variables["log_file"] = "log";
    void* const library = dlopen(argv[1], RTLD_NOW);
    if (!library) return std::cerr << dlerror() << '\n', 2;
    static session_t session;
    auto const action = reinterpret_cast<int (*)(session_t*)>(dlsym(library, "init_wb_prefs"));
    std::cout << "returned " << action(&session) << '\n';
}
