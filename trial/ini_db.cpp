#include "host/ini_db.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <iterator>
#include <new>
#include <stdexcept>
#include <system_error>

#include "trial/files.h"
#include "trial/session.h"

namespace fs = std::filesystem;
using trial::Session;
using trial::show;
using trial::show_call;

struct IniDb::Contents {
    fs::path file;
    std::string separator;
    std::string key;
    std::string value;
};

namespace {

std::string trimmed(std::string const& text) {
    std::size_t const begin = text.find_first_not_of(" \t");
    if (begin == std::string::npos) return "";
    return text.substr(begin, text.find_last_not_of(" \t") - begin + 1);
}

bool sets_key(std::string const& line, std::string const& key, std::string const& separator) {
    std::size_t const key_end = line.find(separator);
    return key_end != std::string::npos && trimmed(line.substr(0, key_end)) == key;
}

/// `text` with `entry` in the place of each line that sets `key`, or behind the last line where
/// there is none. Line ends stay as they are.
std::string with_entry(std::string const& text, std::string const& key,
                       std::string const& separator, std::string const& entry) {
    std::string result;
    bool found = false;
    for (std::size_t begin = 0; begin < text.size();) {
        std::size_t const end = std::min(text.find('\n', begin), text.size() - 1) + 1;
        std::string const line = text.substr(begin, end - begin);
        begin = end;
        bool const is_entry = sets_key(line, key, separator);
        result += is_entry ? entry + line.substr(line.find_last_not_of("\r\n") + 1) : line;
        found = found || is_entry;
    }
    if (found) return result;
    std::string const line_end = text.find("\r\n") != std::string::npos ? "\r\n" : "\n";
    if (!result.empty() && result.back() != '\n') result += line_end;
    return result + entry + line_end;
}

std::string read_file(fs::path const& file) {
    std::ifstream stream(file);
    if (!stream.is_open()) throw std::runtime_error(std::strerror(errno));
    return {std::istreambuf_iterator<char>(stream), {}};
}

void write_file(fs::path const& file, std::string const& text) {
    std::ofstream stream(file);
    stream << text;
    stream.close();
    if (!stream) throw std::runtime_error(std::strerror(errno));
}

void copy_owner_and_mode(fs::path const& from, fs::path const& to) {
    struct stat status {};
    if (stat(from.c_str(), &status) != 0 || chown(to.c_str(), status.st_uid, status.st_gid) != 0 ||
        chmod(to.c_str(), status.st_mode) != 0)
        throw std::runtime_error(std::strerror(errno));
}

/// Throws std::runtime_error, and leaves the file as it was, where it cannot be done.
void save_entry(fs::path const& listed, std::string const& key, std::string const& separator,
                std::string const& value) {
    if (key.empty()) throw std::runtime_error("the key is empty; is WB_PREFS_INST_DIR set?");
    std::string const entry = key + separator + value;
    if (!sets_key(entry, key, separator) || entry.find_first_of("\r\n") != std::string::npos)
        throw std::runtime_error("the key or the value does not fit into a line of such a file");

    std::error_code error;
    fs::path const file = fs::canonical(listed, error);
    if (error) throw std::runtime_error(error.message());
    if (!fs::is_regular_file(file)) throw std::runtime_error("it is not a regular file");
    std::string const text = with_entry(read_file(file), key, separator, entry);
    trial::replace_file(file, [&](fs::path const& fresh) {
        write_file(fresh, text);
        copy_owner_and_mode(file, fresh);
    });
}

} // namespace

IniDb::IniDb(std::string root, std::string file, std::string separator) {
    Session& session = Session::current();
    session.call(show_call("IniDb", root, file, separator), [&] {
        std::replace(file.begin(), file.end(), '\\', '/');
        contents_ = std::make_unique<Contents>(Contents{root + "/" + file, separator, "", ""});
    });
    ++session.open_databases;
}

IniDb::~IniDb() {
    --Session::current().open_databases;
    try {
        Session::current().record("~IniDb()");
    } catch (std::bad_alloc const&) {
        // Not worth ending the process for: the count above is kept.
    }
}

void IniDb::setValue(std::string key, std::string value, bool flag) {
    Session::current().call(show_call("setValue", key, value, flag), [&] {
        contents_->key = key;
        contents_->value = value;
    });
}

void IniDb::save() {
    Session& session = Session::current();
    session.call(show_call("save"), [&] {
        auto const& [listed, separator, key, value] = *contents_;
        try {
            save_entry(listed, key, separator, value);
        } catch (std::runtime_error const& error) {
            session.fail("the preferences file " + show(listed.string()) +
                         " was not changed: " + error.what());
        }
    });
}
