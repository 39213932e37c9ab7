#include "sandbox/changes.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <fstream>
#include <iomanip>
#include <iterator>
#include <optional>
#include <set>
#include <sstream>

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

/// The number of files below the directory, and their size.
std::string summary(fs::path const& directory) {
    std::size_t count = 0;
    std::uintmax_t size = 0;
    for (fs::directory_entry const& entry : fs::recursive_directory_iterator(directory)) {
        fs::file_type const type = entry.symlink_status().type();
        if (type != fs::file_type::directory) ++count;
        if (type == fs::file_type::regular) size += entry.file_size();
    }
    return std::to_string(count) + (count == 1 ? " file, " : " files, ") + in_units(size);
}

bool has_same_content(fs::path const& one, fs::path const& other) {
    using Bytes = std::istreambuf_iterator<char>;
    std::ifstream first(one);
    std::ifstream second(other);
    if (first && second) return std::equal(Bytes(first), Bytes(), Bytes(second), Bytes());
    return fs::last_write_time(one) == fs::last_write_time(other); // they cannot be read
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

/// Compares the lower layer of one overlay with the directory as it is seen. Only what is in the
/// upper layer can differ. Paths are relative to the directory; an empty one is itself.
class Comparison {
  public:
    Comparison(Overlay const& overlay, std::vector<Change>& changes)
        : overlay_(overlay), changes_(changes) {}

    void compare(fs::path const& path) {
        try {
            auto const before = path.empty() ? overlay_.start : status_of(lower(path));
            std::optional<Status> const now = status_of(merged(path));
            if (before && now) compare_both(path, *before, *now);
            else if (before) remove(path, *before);
            else if (now) add('A', path, *now);
        } catch (std::system_error const& error) {
            changes_.push_back({'M', merged(path), "not known: " + error.code().message(), ""});
        }
    }

  private:
    fs::path lower(fs::path const& path) const { return overlay_.lower / path; }
    fs::path merged(fs::path const& path) const {
        return path.empty() ? overlay_.directory : overlay_.directory / path;
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
        std::set<std::string> names = names_in(overlay_.upper / directory);
        // A directory that was removed and made again hides all of the lower one, any other hides
        // nothing: so one name that is not in the upper layer tells.
        for (fs::directory_entry const& entry : fs::directory_iterator(lower(directory))) {
            fs::path const name = entry.path().filename();
            if (names.count(name) != 0) continue;
            if (!status_of(merged(directory) / name)) names.merge(names_in(lower(directory)));
            break;
        }
        for (std::string const& name : names) compare(directory / name);
    }

    void compare_itself(fs::path const& path, Status const& before, Status const& now) {
        std::string detail;
        auto const add_detail = [&detail](std::string const& what, std::string const& old_value,
                                          std::string const& new_value) {
            detail += (detail.empty() ? "" : ", ") + what + " " + old_value + " -> " + new_value;
        };
        if (before.st_mode != now.st_mode)
            add_detail("mode", octal(before.st_mode), octal(now.st_mode));
        if (before.st_uid != now.st_uid)
            add_detail("owner", std::to_string(before.st_uid), std::to_string(now.st_uid));
        if (before.st_gid != now.st_gid)
            add_detail("group", std::to_string(before.st_gid), std::to_string(now.st_gid));
        std::string difference;
        if (S_ISLNK(now.st_mode) && fs::read_symlink(lower(path)) != fs::read_symlink(merged(path)))
            add_detail("link", fs::read_symlink(lower(path)), fs::read_symlink(merged(path)));
        bool const is_changed =
            S_ISREG(now.st_mode) &&
            (before.st_size != now.st_size || !has_same_content(lower(path), merged(path)));
        if (is_changed) {
            constexpr off_t most = off_t{4} << 20; // of what diff takes long for
            if (before.st_size < most && now.st_size < most)
                difference = text_difference(lower(path), merged(path));
            if (difference.empty())
                add_detail("content", in_units(std::uintmax_t(before.st_size)),
                           in_units(std::uintmax_t(now.st_size)));
        }
        if (!detail.empty() || !difference.empty()) report('M', path, now, detail, difference);
    }

    void add(char letter, fs::path const& path, Status const& now) {
        report(letter, path, now, S_ISDIR(now.st_mode) ? summary(merged(path)) : "");
    }

    void remove(fs::path const& path, Status const& before) {
        report('D', path, before);
        if (S_ISDIR(before.st_mode)) remove_contents(path);
    }

    void remove_contents(fs::path const& directory) {
        for (std::string const& name : names_in(lower(directory)))
            remove(directory / name, *status_of(lower(directory / name)));
    }

    void report(char letter, fs::path const& path, Status const& status,
                std::string const& detail = "", std::string const& difference = "") {
        std::string const suffix = S_ISDIR(status.st_mode) ? "/" : "";
        changes_.push_back({letter, merged(path).string() + suffix, detail, difference});
    }

    Overlay const& overlay_;
    std::vector<Change>& changes_;
};

} // namespace

std::vector<Change> find_changes(std::vector<Overlay> const& overlays, fs::path const& left_out) {
    std::vector<Change> changes;
    for (Overlay const& overlay : overlays) Comparison(overlay, changes).compare("");
    auto const is_left_out = [&](Change const& change) { return change.path == left_out; };
    changes.erase(std::remove_if(changes.begin(), changes.end(), is_left_out), changes.end());
    std::sort(changes.begin(), changes.end(),
              [](Change const& one, Change const& other) { return one.path < other.path; });
    return changes;
}

std::vector<std::string> described(Change const& change) {
    constexpr std::size_t most_lines = 20;
    constexpr std::size_t longest = 300;
    std::string const detail = change.detail.empty() ? "" : " (" + change.detail + ")";
    std::vector<std::string> lines = {std::string("  ") + change.letter + " " + change.path +
                                      detail};
    std::istringstream difference(change.difference);
    std::size_t number = 0;
    for (std::string line; std::getline(difference, line); ++number)
        if (number < most_lines) lines.push_back("      " + line.substr(0, longest));
    if (number > most_lines)
        lines.push_back("      " + std::to_string(number - most_lines) + " more lines");
    return lines;
}

} // namespace sandbox
