#include "host/ini_db.h"

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <system_error>

#include "installer/files.h"
#include "installer/host.h"

namespace fs = std::filesystem;
using namespace installer;

struct IniDb::Contents {
    std::string file, separator, key, value;
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

struct Edited {
    std::string text;
    int replaced; ///< lines
};

/// `text` with `entry` in the place of each line that sets `key`, or behind the last line where
/// there is none. Line ends and a byte order mark stay as they are.
Edited with_entry(std::string const& text, std::string const& key, std::string const& separator,
                  std::string const& entry) {
    std::size_t const mark = text.rfind("\xef\xbb\xbf", 0) == 0 ? 3 : 0;
    Edited edited{text.substr(0, mark), 0};
    for (std::size_t begin = mark; begin < text.size();) {
        std::size_t const end = std::min(text.find('\n', begin), text.size() - 1) + 1;
        std::string const line = text.substr(begin, end - begin);
        begin = end;
        bool const is_entry = sets_key(line, key, separator);
        edited.text += is_entry ? entry + line.substr(line.find_last_not_of("\r\n") + 1) : line;
        edited.replaced += is_entry;
    }
    if (edited.replaced != 0) return edited;
    std::string const line_end = text.find("\r\n") != std::string::npos ? "\r\n" : "\n";
    if (edited.text.size() > mark && edited.text.back() != '\n') edited.text += line_end;
    edited.text += entry + line_end;
    return edited;
}

/// Throws std::runtime_error where the file cannot be read, or its key could not be found: in
/// UTF-16 there are zero bytes between characters.
std::string read_text(fs::path const& file) {
    std::ifstream stream(file);
    if (!stream.is_open()) throw std::system_error(errno, std::generic_category());
    std::string text{std::istreambuf_iterator<char>(stream), {}};
    bool const has_mark = text.rfind("\xff\xfe", 0) == 0 || text.rfind("\xfe\xff", 0) == 0;
    if (has_mark || text.find('\0') != std::string::npos)
        throw std::runtime_error("it is in UTF-16, or no text; save it as UTF-8");
    return text;
}

/// Throws std::runtime_error, and leaves the file as it was, where it cannot be done.
void save_entry(fs::path const& listed, std::string const& key, std::string const& separator,
                std::string const& value, Outcome& outcome) {
    if (key.empty()) throw std::runtime_error("the key is empty; is WB_PREFS_INST_DIR set?");
    std::string const entry = key + separator + value;
    if (!sets_key(entry, key, separator) || entry.find_first_of("\r\n") != std::string::npos)
        throw std::runtime_error("the key or the value does not fit into a line of such a file");

    fs::path const file = fs::canonical(listed);
    if (!fs::is_regular_file(file)) throw std::runtime_error("it is not a regular file");
    std::string const before = read_text(file);
    auto const [text, replaced] = with_entry(before, key, separator, entry);
    replace_file(file, [&, &changed = text](fs::path const& fresh) {
        if (!(std::ofstream(fresh) << changed << std::flush))
            throw std::system_error(errno, std::generic_category());
        copy_attributes(file, fresh, outcome);
    });
    Host::current().saved_preferences.try_emplace(file, before, "").first->second.second = text;
    if (replaced == 1) return; // in other kinds of files the entry may break something
    outcome.notes.push_back("the preferences file " + show(listed.string()) + " had " +
                            (replaced == 0
                                 ? "no line that sets " + show(key) +
                                       ", so one was added at the end; is it a file of such lines?"
                                 : std::to_string(replaced) + " lines that set " + show(key) +
                                       ", and all were replaced"));
}

} // namespace

IniDb::IniDb(std::string root, std::string file, std::string separator) {
    auto const make = [&] {
        std::string listed = file; // its separators may be backslashes, the root's are not
        std::replace(listed.begin(), listed.end(), '\\', '/');
        contents_ = std::make_unique<Contents>(Contents{root + "/" + listed, separator, "", ""});
    };
    host_call(make, "IniDb", root, file, separator);
}

// Not a host_call: a listener may throw before one, and nothing may come out of a destructor.
IniDb::~IniDb() {
    if (Host::current().listener) Host::current().listener->ends("~IniDb()");
}

void IniDb::setValue(std::string key, std::string value, bool flag) {
    auto const set = [&] {
        contents_->key = key;
        contents_->value = value;
    };
    host_call(set, "setValue", key, value, flag);
}

void IniDb::save() {
    auto const save = [&contents = *contents_](Outcome& outcome) {
        std::string failure;
        try {
            return save_entry(contents.file, contents.key, contents.separator, contents.value,
                              outcome);
        } catch (std::system_error const& error) {
            failure = error.code().message();
        } catch (std::runtime_error const& error) {
            failure = error.what();
        }
        outcome.fail("the preferences file " + show(contents.file) +
                     " was not changed: " + failure);
    };
    call_on_disk(save, "save");
}
