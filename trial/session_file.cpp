#include "trial/session_file.h"

#include <toml++/toml.h>

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>

#include "installer/show.h"
#include "trial/exit_status.h"
#include "trial/unknown_name.h"

namespace fs = std::filesystem;
using installer::ProductComponent;
using installer::Session;
using installer::show;
using Texts = std::vector<std::string>;

namespace trial {

namespace {

/// What the plug-in reads or writes.
auto const known_variables = Texts({"DEFAULT_SEARCH_PATH", "PATH_STATUS", "SUPPORTED_VERSION",
                                    "VORN_INSTALL_DIR", "VORN_INSTALL_SUBDIR", "WB_INSTALL_SUBDIR",
                                    "WB_INTEGRATION_PATH", "WB_INTEGRATION_SUPPORTED", "WB_PREFS",
                                    "WB_PREFS_INST_DIR", "WORKBENCH_SCRIPT_NAME", "log_file"});

/// What to do where the text is no TOML because of a usual slip in that line, or nothing.
std::string remedy(std::string const& text, toml::parse_error const& error) {
    std::istringstream lines(text);
    std::string line;
    for (auto number = error.source().begin.line; number != 0; --number) std::getline(lines, line);
    auto const holds = [&](char const* part) { return line.find(part) != std::string::npos; };
    if (text.find('\0') != std::string::npos ||
        error.description().find("utf-8") != std::string::npos)
        return "; save it as UTF-8";
    if (line.rfind("[component", 0) == 0) return "; begin each component with [[component]]";
    if (holds("=") && (holds("\\") || line.find_first_of("'\"") == std::string::npos))
        return "; a string needs quotes, and single quotes where it holds a backslash";
    return "";
}

class Reader {
  public:
    Reader(fs::path const& file, Session& session)
        : file_(file), folder_(fs::canonical(fs::absolute(file).parent_path())), session_(session) {
    }

    void read(toml::table const& document) {
        if (document.empty()) throw StartError(file_ + ": the file is empty; " + parts);
        check_keys(document, {"ignore", "variables", "component"}, parts);
        if (toml::node const* const patterns = document.get("ignore")) {
            ignored_ = texts("ignore", *patterns);
            for (std::string const& pattern : ignored_)
                if (pattern[0] != '/')
                    refuse(*patterns, "ignore: write " + show(pattern) + " from the root");
        }
        if (toml::node const* const variables = document.get("variables")) {
            if (!variables->is_table())
                refuse(*variables, "variables has to be a table: [variables]");
            require_no_patterns(*variables->as_table());
            for (auto const& [key, value] : *variables->as_table())
                set_variable(place(value), std::string(key), text(key, value));
        }
        if (toml::node const* const list = document.get("component")) {
            if (!list->is_array_of_tables() && !(list->is_array() && list->as_array()->empty()))
                refuse(*list, "component has to be a list of tables: [[component]]");
            for (toml::node const& component : *list->as_array())
                read_component(*component.as_table());
        }
    }

    void set(std::string const& setting) {
        std::size_t const size = setting.find('=');
        if (size == 0 || size == std::string::npos)
            throw StartError("--set " + show(setting) + ": write NAME=VALUE");
        set_variable("--set: ", setting.substr(0, size),
                     replaced("--set: ", setting.substr(size + 1)));
    }

    Texts const& ignored() const { return ignored_; }

  private:
    void set_variable(std::string const& place, std::string const& name, std::string const& value) {
        if (std::count(known_variables.begin(), known_variables.end(), name) == 0)
            throw StartError(place + unknown_name("variable", name, known_variables));
        session_.variables[name] = value;
    }

    /// What stands below a table's name belongs to it.
    void require_no_patterns(toml::table const& table) const {
        if (toml::node const* const patterns = table.get("ignore"))
            refuse(*patterns, "ignore has to stand above [variables] and [[component]]");
    }

    void read_component(toml::table const& table) {
        require_no_patterns(table);
        check_keys(table, {"name", "install_condition", "subdir", "files", "files_from"},
                   "a component has name, install_condition, subdir, files and files_from");
        if (!table.contains("name")) refuse(table, "a component needs a name");
        auto component = std::make_unique<ProductComponent>();
        Texts& files = component->file_provider->files;
        for (auto const& [key, value] : table) {
            if (key == "name") component->name = text(key, value);
            if (key == "subdir") component->subdirectory = text(key, value);
            if (key == "install_condition") {
                if (!value.is_boolean()) refuse(value, "install_condition has to be true or false");
                component->install_condition = value.ref<bool>();
            }
            if (key == "files") files = texts(key, value);
        }
        if (toml::node const* const folder = table.get("files_from"))
            add_files_from(*folder, files);
        session_.components.push_back(std::move(component));
    }

    /// Adds the regular files below it, sorted, by their paths in it.
    void add_files_from(toml::node const& node, Texts& files) const {
        auto const listed = static_cast<std::ptrdiff_t>(files.size());
        fs::path const folder = folder_ / text("files_from", node);
        try {
            for (fs::directory_entry const& entry : fs::recursive_directory_iterator(folder))
                if (!entry.is_symlink() && entry.is_regular_file())
                    files.push_back(entry.path().lexically_relative(folder));
        } catch (fs::filesystem_error const& error) {
            refuse(node, "files_from: cannot list all of " + folder.string() + ": " +
                             error.code().message());
        }
        std::sort(files.begin() + listed, files.end());
    }

    void check_keys(toml::table const& table, Texts const& known, std::string const& hint) const {
        for (auto const& [key, value] : table)
            if (std::find(known.begin(), known.end(), key) == known.end())
                refuse(value, "unknown key " + std::string(key) + "; " + hint);
    }

    Texts texts(std::string_view key, toml::node const& list) const {
        if (!list.is_array()) refuse(list, std::string(key) + " has to be a list of strings");
        Texts texts;
        for (toml::node const& node : *list.as_array()) texts.push_back(text(key, node));
        return texts;
    }

    std::string text(std::string_view key, toml::node const& node) const {
        if (!node.is_string()) refuse(node, std::string(key) + " has to be a string");
        std::string const& text = node.ref<std::string>();
        if (std::any_of(text.begin(), text.end(),
                        [](unsigned char byte) { return std::iscntrl(byte) != 0; }))
            refuse(node, std::string(key) + " holds a control character: in double quotes a "
                                            "backslash begins one; write it in single quotes");
        return replaced(place(node), text);
    }

    /// The text with the folder's path in the place of its name.
    std::string replaced(std::string const& place, std::string text) const {
        if (text.find("$SESSION_DIR") != std::string::npos)
            throw StartError(place + "write ${SESSION_DIR}, with braces");
        std::string const name = "${SESSION_DIR}", folder = folder_;
        for (std::size_t at = 0; (at = text.find(name, at)) != std::string::npos;
             at += folder.size()) {
            text.replace(at, name.size(), folder);
            std::size_t const end = at + folder.size();
            if (end < text.size() && std::isalnum(static_cast<unsigned char>(text[end])) != 0 &&
                !fs::exists(text.substr(at, text.find_first_of("/ ", end) - at)))
                throw StartError(place + "write a slash after ${SESSION_DIR}");
        }
        return text;
    }

    std::string place(toml::node const& node) const {
        return file_ + ":" + std::to_string(node.source().begin.line) + ": ";
    }

    [[noreturn]] void refuse(toml::node const& node, std::string const& sentence) const {
        throw StartError(place(node) + sentence);
    }

    static constexpr char const* parts = "a session has [variables] and [[component]]";
    std::string file_;
    fs::path folder_;
    Session& session_;
    Texts ignored_;
};

} // namespace

Texts read_session(std::string const& file, Texts const& settings, Session& session) {
    std::ifstream stream(file);
    if (!stream.is_open()) throw StartError(file + ": " + std::strerror(errno));
    std::string text;
    try {
        text.assign(std::istreambuf_iterator<char>(stream), {});
        Reader reader(file, session);
        reader.read(toml::parse(text, file));
        for (std::string const& setting : settings) reader.set(setting);
        return reader.ignored();
    } catch (std::system_error const& error) {
        throw StartError(file + ": " + error.code().message());
    } catch (toml::parse_error const& error) {
        throw StartError(file + ":" + std::to_string(error.source().begin.line) + ": " +
                         std::string(error.description()) + remedy(text, error));
    }
}

} // namespace trial
