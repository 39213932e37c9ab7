#include "trial/session_file.h"

#include <toml++/toml.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "installer/show.h"
#include "trial/exit_status.h"
#include "trial/names.h"

namespace fs = std::filesystem;
using installer::printable;
using installer::ProductComponent;
using installer::Session;
using Texts = std::vector<std::string>;

namespace trial {

namespace {

/// Adds the regular files below `folder`, which lies at `place` in the folder that was named.
void add_files(fs::path const& folder, fs::path const& place, Texts& files) {
    for (fs::directory_entry const& entry : fs::directory_iterator(folder)) {
        fs::path const path = place / entry.path().filename();
        if (entry.is_symlink()) continue;
        if (entry.is_directory()) add_files(entry, path, files);
        if (entry.is_regular_file()) files.push_back(path);
    }
}

class Reader {
  public:
    Reader(fs::path const& file, Session& session)
        : file_(file), folder_(fs::canonical(fs::absolute(file).parent_path())), session_(session) {
    }

    void read(toml::table const& document) {
        check_keys(document, {"variables", "component"},
                   "a session has [variables] and [[component]]");
        if (toml::node const* const variables = document.get("variables")) {
            require(variables->is_table(), *variables, "variables has to be a table: [variables]");
            for (auto const& [key, value] : *variables->as_table()) {
                std::string const name(key);
                require(is_known_variable(name), value,
                        printable(unknown_name("variable", name, known_variables)));
                session_.variables[name] = text(name, value);
            }
        }
        if (toml::node const* const list = document.get("component")) {
            require(list->is_array_of_tables() || (list->is_array() && list->as_array()->empty()),
                    *list, "component has to be a list of tables: [[component]]");
            for (toml::node const& component : *list->as_array())
                read_component(*component.as_table());
        }
    }

  private:
    void read_component(toml::table const& table) {
        check_keys(table, {"name", "install_condition", "subdir", "files", "files_from"},
                   "a component has name, install_condition, subdir, files and files_from");
        require(table.contains("name"), table, "a component needs a name");
        auto component = std::make_unique<ProductComponent>();
        Texts& files = component->file_provider->files;
        for (auto const& [key, value] : table) {
            if (key == "name") component->name = text(key, value);
            if (key == "subdir") component->subdirectory = text(key, value);
            if (key == "install_condition") {
                require(value.is_boolean(), value, "install_condition has to be true or false");
                component->install_condition = value.ref<bool>();
            }
            if (key == "files") {
                require(value.is_array(), value, "files has to be a list of strings");
                for (toml::node const& file : *value.as_array()) files.push_back(text(key, file));
            }
        }
        if (toml::node const* const folder = table.get("files_from"))
            add_files_from(*folder, files);
        session_.components.push_back(std::move(component));
    }

    /// Adds them sorted.
    void add_files_from(toml::node const& folder, Texts& files) {
        auto const listed = static_cast<std::ptrdiff_t>(files.size());
        try {
            add_files(text("files_from", folder), "", files);
        } catch (fs::filesystem_error const& error) {
            require(false, folder,
                    "files_from: " + error.code().message() + ": " + error.path1().string());
        }
        std::sort(files.begin() + listed, files.end());
    }

    void check_keys(toml::table const& table, Texts const& known, char const* hint) {
        for (auto const& [key, value] : table)
            require(std::find(known.begin(), known.end(), key) != known.end(), value,
                    "unknown key " + printable(key) + "; " + hint);
    }

    std::string text(std::string_view key, toml::node const& node) {
        require(node.is_string(), node, printable(key) + " has to be a string");
        std::string text = node.ref<std::string>();
        std::string const placeholder = "${SESSION_DIR}";
        for (std::size_t at = 0; (at = text.find(placeholder, at)) != std::string::npos;
             at += folder_.size())
            text.replace(at, placeholder.size(), folder_);
        return text;
    }

    void require(bool is_so, toml::node const& at, std::string const& otherwise) {
        std::string const line = std::to_string(at.source().begin.line);
        if (!is_so) throw StartError(file_ + ":" + line + ": " + otherwise);
    }

    std::string file_;
    std::string folder_;
    Session& session_;
};

} // namespace

void read_session_file(std::string const& file, Session& session) {
    std::ifstream stream(file);
    if (!stream.is_open()) throw StartError(file + ": " + std::strerror(errno));
    try {
        std::string const text{std::istreambuf_iterator<char>(stream), {}};
        Reader(file, session).read(toml::parse(text, file));
    } catch (std::system_error const& error) {
        throw StartError(file + ": " + error.code().message());
    } catch (toml::parse_error const& error) {
        throw StartError(file + ":" + std::to_string(error.source().begin.line) + ": " +
                         std::string(error.description()));
    }
}

} // namespace trial
