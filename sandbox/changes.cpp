#include "sandbox/changes.h"

#include <fcntl.h>
#include <linux/limits.h>
#include <sys/sysmacros.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <iomanip>
#include <iterator>
#include <optional>
#include <set>
#include <sstream>

#include "sandbox/capabilities.h"

namespace fs = std::filesystem;

namespace sandbox {

namespace {

using Status = struct stat;

/// The status of what lies there, of a link its own, or nothing.
std::optional<Status> status_of(fs::path const& path) {
    Status status{};
    if (lstat(path.c_str(), &status) == 0) return status;
    if (errno == ENOENT || errno == ENOTDIR) return std::nullopt;
    throw fs::filesystem_error("status", path, std::error_code(errno, std::generic_category()));
}

std::set<std::string> names_in(fs::path const& directory) {
    std::set<std::string> names;
    for (fs::directory_entry const& entry : fs::directory_iterator(directory))
        names.insert(entry.path().filename());
    return names;
}

/// Without those that an overlay keeps its own records in. None where they cannot be read.
Attributes attributes_of(fs::path const& path) {
    std::vector<char> names(XATTR_LIST_MAX);
    std::vector<char> value(XATTR_SIZE_MAX);
    ssize_t const size = llistxattr(path.c_str(), names.data(), names.size());
    Attributes attributes;
    for (char const* name = names.data(); name < names.data() + size;
         name += std::strlen(name) + 1) {
        if (std::string(name).find(".overlay.") != std::string::npos) continue;
        ssize_t const length = lgetxattr(path.c_str(), name, value.data(), value.size());
        if (length >= 0) attributes[name].assign(value.data(), std::size_t(length));
    }
    return attributes;
}

/// Those that are not the same, or not in both.
std::set<std::string> different(Attributes const& before, Attributes const& now) {
    std::vector<Attributes::value_type> attributes;
    std::set_symmetric_difference(before.begin(), before.end(), now.begin(), now.end(),
                                  std::back_inserter(attributes));
    std::set<std::string> names;
    for (auto const& attribute : attributes) names.insert(attribute.first);
    return names;
}

std::string in_units(std::uintmax_t bytes) {
    if (bytes < 1024) return std::to_string(bytes) + " B";
    auto amount = static_cast<double>(bytes);
    char const* unit = "BKMGTPE";
    while (amount >= 1024) {
        amount /= 1024;
        ++unit;
    }
    std::ostringstream text;
    text << std::fixed << std::setprecision(1) << amount << " " << *unit << "iB";
    return text.str();
}

/// The number of files below the directory, and their size, as far as it can be looked into.
std::string summary(fs::path const& directory) {
    std::size_t count = 0;
    std::uintmax_t size = 0;
    std::error_code unreachable;
    auto const options = fs::directory_options::skip_permission_denied;
    for (fs::directory_entry const& entry : fs::recursive_directory_iterator(directory, options)) {
        fs::file_type const type = entry.symlink_status(unreachable).type();
        if (type != fs::file_type::directory) ++count;
        if (type == fs::file_type::regular) size += entry.file_size(unreachable);
    }
    return std::to_string(count) + (count == 1 ? " file, " : " files, ") + in_units(size);
}

bool has_same_content(fs::path const& one, fs::path const& other) {
    using Bytes = std::istreambuf_iterator<char>;
    std::ifstream first(one);
    std::ifstream second(other);
    return first && second && std::equal(Bytes(first), Bytes(), Bytes(second), Bytes());
}

/// What `diff` says of two text files, but for their names; nothing where they hold other bytes.
std::string text_difference(fs::path const& old_file, fs::path const& new_file) {
    int const old_text = open(old_file.c_str(), O_RDONLY); // for diff to inherit
    int const new_text = open(new_file.c_str(), O_RDONLY);
    std::string const command = "exec diff -u /proc/self/fd/" + std::to_string(old_text) +
                                " /proc/self/fd/" + std::to_string(new_text) + " 2>/dev/null";
    std::FILE* const diff = popen(command.c_str(), "re");
    std::string output;
    for (int byte = 0; diff && (byte = std::getc(diff)) != EOF;) output += static_cast<char>(byte);
    if (diff) pclose(diff);
    close(old_text);
    close(new_text);
    std::size_t const begin = output.find("\n@@");
    return begin == std::string::npos ? "" : output.substr(begin + 1);
}

std::string octal(mode_t mode) {
    std::ostringstream text;
    text << std::oct << std::setw(4) << std::setfill('0') << (mode & 07777);
    return text.str();
}

std::string device(dev_t number) {
    return std::to_string(major(number)) + ":" + std::to_string(minor(number));
}

/// What changed in a status, each as "what old -> new".
std::vector<std::string> differences(Status const& before, Status const& now) {
    std::vector<std::string> found;
    auto const compare = [&found](char const* what, auto old_value, auto value, auto in_words) {
        if (old_value == value) return;
        found.push_back(what + (" " + in_words(old_value)) + " -> " + in_words(value));
    };
    auto const number = [](unsigned id) { return std::to_string(id); };
    compare("mode", before.st_mode, now.st_mode, octal);
    compare("owner", before.st_uid, now.st_uid, number);
    compare("group", before.st_gid, now.st_gid, number);
    if (S_ISBLK(now.st_mode) || S_ISCHR(now.st_mode))
        compare("device", before.st_rdev, now.st_rdev, device);
    return found;
}

std::string joined(std::vector<std::string> const& texts) {
    std::string list;
    for (std::string const& text : texts) list += (list.empty() ? "" : ", ") + text;
    return list;
}

using Changes = std::map<std::string, Change>; // by path

/// Compares one directory with what it was. Only what is in the upper layer can differ, if there is
/// one. Paths are relative to the directory; an empty one is itself.
class Comparison {
  public:
    Comparison(Watched const& watched, Changes& changes) : watched_(watched), changes_(changes) {}

    void compare(fs::path const& path) {
        try {
            auto const before = path.empty() ? watched_.status : status_of(old(path));
            std::optional<Status> const now = status_of(present(path));
            if (before && now) compare_both(path, *before, *now);
            else if (before && !(path.empty() && is_removed_outside())) remove(path, *before);
            else if (now) add('A', path, *now);
        } catch (std::system_error const& error) {
            std::string const name = present(path);
            changes_.insert({name, {'M', name, "not known: " + error.code().message(), ""}});
        }
    }

  private:
    fs::path old(fs::path const& path) const { return watched_.before / path; }
    fs::path present(fs::path const& path) const {
        return path.empty() ? watched_.directory : watched_.directory / path;
    }

    /// Whether somebody else removed the directory on the disk, and so took away what covers it.
    bool is_removed_outside() const {
        Status status{};
        return stat(watched_.before.c_str(), &status) == 0 && status.st_nlink == 0;
    }

    void compare_both(fs::path const& path, Status const& before, Status const& now) {
        bool const was_directory = S_ISDIR(before.st_mode);
        if ((before.st_mode & S_IFMT) != (now.st_mode & S_IFMT)) {
            if (was_directory) remove_contents(path);
            add('T', path, now);
            return;
        }
        compare_itself(path, before, now);
        if (was_directory) compare_contents(path);
    }

    void compare_contents(fs::path const& directory) {
        for (std::string const& name : names_that_can_differ(directory)) compare(directory / name);
    }

    std::set<std::string> names_that_can_differ(fs::path const& directory) {
        std::set<std::string> names =
            names_in(watched_.upper.empty() ? present(directory) : watched_.upper / directory);
        // A directory that was removed and made again hides all of the lower one, any other hides
        // nothing: so one name that is not in the upper layer shows which.
        for (fs::directory_entry const& entry : fs::directory_iterator(old(directory))) {
            fs::path const name = entry.path().filename();
            if (names.count(name) != 0) continue;
            if (!status_of(present(directory) / name)) names.merge(names_in(old(directory)));
            break;
        }
        return names;
    }

    void compare_itself(fs::path const& path, Status const& before, Status const& now) {
        std::vector<std::string> details = differences(before, now);
        Attributes const attributes = path.empty() ? watched_.attributes : attributes_of(old(path));
        for (std::string const& name : different(attributes, attributes_of(present(path))))
            details.push_back("attribute " + name);
        if (S_ISLNK(now.st_mode) && fs::read_symlink(old(path)) != fs::read_symlink(present(path)))
            details.push_back("link " + fs::read_symlink(old(path)).string() + " -> " +
                              fs::read_symlink(present(path)).string());
        std::string const text =
            S_ISREG(now.st_mode) ? compare_content(path, before, now, details) : "";
        if (!details.empty() || !text.empty()) report('M', path, now, joined(details), text);
    }

    /// Returns a difference in text. Any other one becomes a detail.
    std::string compare_content(fs::path const& path, Status const& before, Status const& now,
                                std::vector<std::string>& details) {
        bool const is_same =
            before.st_size == now.st_size && has_same_content(old(path), present(path));
        if (is_same) return "";
        constexpr off_t most = off_t{4} << 20; // of what diff takes long for
        std::string text;
        if (before.st_size < most && now.st_size < most)
            text = text_difference(old(path), present(path));
        if (text.empty())
            details.push_back("content " + in_units(std::uintmax_t(before.st_size)) + " -> " +
                              in_units(std::uintmax_t(now.st_size)));
        return text;
    }

    void add(char letter, fs::path const& path, Status const& now) {
        report(letter, path, now, S_ISDIR(now.st_mode) ? summary(present(path)) : "");
    }

    void remove(fs::path const& path, Status const& before) {
        report('D', path, before);
        if (S_ISDIR(before.st_mode)) remove_contents(path);
    }

    void remove_contents(fs::path const& directory) {
        for (std::string const& name : names_in(old(directory)))
            remove(directory / name, *status_of(old(directory / name)));
    }

    void report(char letter, fs::path const& path, Status const& status,
                std::string const& detail = "", std::string const& difference = "") {
        std::string const name = present(path).string() + (S_ISDIR(status.st_mode) ? "/" : "");
        changes_.insert({name, {letter, name, detail, difference}});
    }

    Watched const& watched_;
    Changes& changes_;
};

} // namespace

Watched watch(fs::path const& directory, fs::path const& before, fs::path const& upper) {
    return {directory, before, upper, status_of(directory).value(), attributes_of(directory)};
}

std::vector<Change> find_changes(std::vector<Watched> const& directories,
                                 fs::path const& left_out) {
    ReadingRights const rights;
    Changes found;
    for (Watched const& watched : directories) Comparison(watched, found).compare("");
    found.erase(left_out);
    std::vector<Change> changes;
    for (auto& change : found) changes.push_back(std::move(change.second));
    return changes;
}

} // namespace sandbox
