#include "trial/session_file.h"

#include <toml++/toml.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <iterator>
#include <sstream>

#include "trial/start_error.h"

namespace fs = std::filesystem;

namespace trial {

namespace {

StartError error_at(std::string const& file, std::size_t line, std::string const& what) {
    return StartError{file + ":" + std::to_string(line) + ": " + what};
}

std::string read_text(fs::path const& file) {
    std::ifstream stream(file);
    if (!stream.is_open()) throw StartError(file.string() + ": " + std::strerror(errno));
    try {
        return {std::istreambuf_iterator<char>(stream), {}};
    } catch (std::ios_base::failure const& error) {
        throw StartError(file.string() + ": " + error.code().message());
    }
}

/// The parser calls itself for each part of a dotted key. A key stands on one line, so a limit for
/// the dots of a line keeps it from running out of stack.
void check_dots(fs::path const& file, std::string const& text) {
    constexpr std::ptrdiff_t most = 1000;
    std::istringstream lines(text);
    std::size_t number = 1;
    for (std::string line; std::getline(lines, line); ++number)
        if (std::count(line.begin(), line.end(), '.') > most)
            throw error_at(file.string(), number, "too many dots in a line; break the line");
}

/// The regular files below the folder, by their paths in it, sorted by bytes.
std::vector<std::string> files_below(fs::path const& folder) {
    std::vector<std::string> files;
    for (fs::directory_entry const& entry : fs::recursive_directory_iterator(folder))
        if (fs::is_regular_file(entry.symlink_status()))
            files.push_back(entry.path().lexically_relative(folder).string());
    std::sort(files.begin(), files.end());
    return files;
}

class Reader {
  public:
    Reader(fs::path const& file, Session& session)
        : file_(file.string()), folder_(fs::canonical(fs::absolute(file).parent_path()).string()),
          session_(session) {}

    void read(toml::table const& document) {
        for (auto const& [key, value] : document) {
            if (key == "variables") read_variables(value);
            else if (key == "component") read_components(value);
            else
                throw error(value, "unknown key " + show(key.data()) +
                                       "; a session has [variables] and [[component]]");
        }
    }

  private:
    void read_variables(toml::node const& node) {
        if (!node.is_table()) throw error(node, "\"variables\" has to be a table: [variables]");
        for (auto const& [name, value] : *node.as_table())
            session_.variables[std::string(name)] = text(name, value);
    }

    void read_components(toml::node const& node) {
        bool const is_list =
            node.is_array() && (node.as_array()->empty() || node.is_array_of_tables());
        if (!is_list) throw error(node, "\"component\" has to be a list of tables: [[component]]");
        for (toml::node const& entry : *node.as_array()) read_component(*entry.as_table());
    }

    void read_component(toml::table const& table) {
        auto component = std::make_unique<Component>();
        for (auto const& [key, value] : table) {
            if (key == "name") component->name = text(key, value);
            else if (key == "install_condition") component->install_condition = boolean(key, value);
            else if (key == "subdir") component->subdirectory = text(key, value);
            else if (key != "files" && key != "files_from")
                throw error(value, "unknown key " + show(key.data()) +
                                       "; a component has name, install_condition, subdir, files "
                                       "and files_from");
        }
        if (!table.contains("name")) throw error(table, "a component needs a \"name\"");
        component->file_provider->files = files(table);
        session_.components.push_back(std::move(component));
    }

    std::vector<std::string> files(toml::table const& component) {
        std::vector<std::string> files;
        if (toml::node const* const listed = component.get("files")) {
            if (!listed->is_array()) throw error(*listed, "\"files\" has to be a list of strings");
            for (toml::node const& file : *listed->as_array()) files.push_back(text("files", file));
        }
        if (toml::node const* const folder = component.get("files_from")) {
            std::vector<std::string> const found = files_in(text("files_from", *folder), *folder);
            files.insert(files.end(), found.begin(), found.end());
        }
        return files;
    }

    std::vector<std::string> files_in(std::string const& folder, toml::node const& node) {
        try {
            return files_below(folder);
        } catch (fs::filesystem_error const& failure) {
            throw error(node, "\"files_from\": " + failure.code().message() + ": " + show(folder));
        }
    }

    std::string text(std::string_view key, toml::node const& node) {
        std::optional<std::string> text = node.value_exact<std::string>();
        if (!text) throw error(node, show(std::string(key)) + " has to be a string");
        std::string const placeholder = "${SESSION_DIR}";
        for (std::size_t at = 0; (at = text->find(placeholder, at)) != std::string::npos;
             at += folder_.size())
            text->replace(at, placeholder.size(), folder_);
        return *text;
    }

    bool boolean(std::string_view key, toml::node const& node) {
        std::optional<bool> const value = node.value_exact<bool>();
        if (!value) throw error(node, show(std::string(key)) + " has to be true or false");
        return *value;
    }

    StartError error(toml::node const& at, std::string const& what) {
        return error_at(file_, at.source().begin.line, what);
    }

    std::string file_;
    std::string folder_;
    Session& session_;
};

} // namespace

void read_session_file(fs::path const& file, Session& session) {
    std::string const text = read_text(file);
    check_dots(file, text);
    try {
        Reader(file, session).read(toml::parse(text, file.string()));
    } catch (toml::parse_error const& error) {
        throw error_at(file.string(), error.source().begin.line, std::string(error.description()));
    }
}

} // namespace trial
