#include "sandbox/changes.h"

#include <fcntl.h>
#include <linux/limits.h>
#include <sys/sysmacros.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <iomanip>
#include <iterator>
#include <optional>
#include <set>
#include <sstream>
#include <string_view>
#include <thread>
#include <tuple>

#include "sandbox/capabilities.h"

namespace fs = std::filesystem;

namespace sandbox {

namespace {

using Status = struct stat;

std::set<std::string> names_in(fs::path const& directory) {
    std::set<std::string> names;
    for (fs::directory_entry const& entry : fs::directory_iterator(directory))
        names.insert(entry.path().filename());
    return names;
}

/// Without those that an overlay keeps its own records in. None where they cannot be read.
Attributes attributes_of(fs::path const& path) {
    if (llistxattr(path.c_str(), nullptr, 0) <= 0) return {};
    std::vector<char> names(XATTR_LIST_MAX);
    std::vector<char> value(XATTR_SIZE_MAX);
    ssize_t const size = llistxattr(path.c_str(), names.data(), names.size());
    Attributes attributes;
    for (char const* name = names.data(); name < names.data() + size;
         name += std::strlen(name) + 1) {
        std::string_view const own(name);
        if (own.rfind("trusted.overlay.", 0) == 0 || own.rfind("user.overlay.", 0) == 0) continue;
        ssize_t const length = lgetxattr(path.c_str(), name, value.data(), value.size());
        if (length >= 0) attributes[name].assign(value.data(), std::size_t(length));
    }
    return attributes;
}

/// The status of what lies there, of a link its own, or nothing.
std::optional<Status> status_of(fs::path const& path) {
    Status status{};
    if (lstat(path.c_str(), &status) == 0) return status;
    if (errno == ENOENT || errno == ENOTDIR) return std::nullopt;
    throw fs::filesystem_error("status", path, std::error_code(errno, std::generic_category()));
}

std::optional<Record> record_of(fs::path const& path) {
    std::optional<Status> const status = status_of(path);
    if (!status) return std::nullopt;
    return Record{*status, attributes_of(path)};
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

std::string grouped(std::uintmax_t number) {
    std::string digits = std::to_string(number);
    for (std::size_t at = digits.size(); at > 3; digits.insert(at, ",")) at -= 3;
    return digits;
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
    return grouped(count) + (count == 1 ? " file, " : " files, ") + grouped(size) + " B";
}

/// A file that is open for reading, and for a command to inherit.
struct File {
    int const descriptor;
    explicit File(fs::path const& path) : descriptor(open(path.c_str(), O_RDONLY)) {}
    ~File() { close(descriptor); }
    File(File const&) = delete;
};

/// Where the file holds data at or behind `at`, or `end` where only a hole follows.
off_t next_data(File const& file, off_t at, off_t end) {
    off_t const data = lseek(file.descriptor, at, SEEK_DATA);
    if (data == -1) return errno == ENXIO ? end : at;
    return data;
}

/// For two files of that size. One that cannot be read is not the same.
bool has_same_content(fs::path const& one, fs::path const& other, off_t size) {
    File const first(one), second(other);
    std::vector<char> block(std::size_t{1} << 17), other_block(block.size());
    ssize_t count = 0;
    for (off_t at = 0;; at += count) {
        at = std::min(next_data(first, at, size), next_data(second, at, size));
        if (at >= size) return true;
        count = pread(first.descriptor, block.data(), block.size(), at);
        if (count <= 0 || pread(second.descriptor, other_block.data(), block.size(), at) != count ||
            std::memcmp(block.data(), other_block.data(), std::size_t(count)) != 0)
            return false;
    }
}

/// What `diff` says of two text files, but for their names; nothing where they hold other bytes.
std::string text_difference(fs::path const& old_file, fs::path const& new_file) {
    File const old_text(old_file), new_text(new_file);
    std::string const command = "exec diff -u /proc/self/fd/" +
                                std::to_string(old_text.descriptor) + " /proc/self/fd/" +
                                std::to_string(new_text.descriptor) + " 2>/dev/null";
    std::FILE* const diff = popen(command.c_str(), "re");
    std::string output;
    for (int byte = 0; diff && (byte = std::getc(diff)) != EOF;) output += static_cast<char>(byte);
    if (diff) pclose(diff);
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

/// Whether it is what it was, for a change would have another time. One in whole seconds says
/// nothing: the change may have come in the same second.
bool is_untouched(Status const& before, Status const& now) {
    auto const traits = [](Status const& status) {
        return std::tuple(status.st_dev, status.st_ino, status.st_size, status.st_mode,
                          status.st_ctim.tv_sec, status.st_ctim.tv_nsec);
    };
    return now.st_ctim.tv_nsec != 0 && traits(before) == traits(now);
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
            std::optional<Record> const before = old_record(path);
            std::optional<Status> const now = status_of(present(path));
            if (before && now) compare_both(path, *before, *now);
            else if (before && !(path.empty() && is_removed_outside()))
                report_whole('D', path, before->status, old(path));
            else if (now) report_whole('A', path, *now, present(path));
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

    /// An overlay does not show what lies below it and is a whiteout itself.
    std::optional<Record> old_record(fs::path const& path) const {
        auto const known = watched_.records.find(path);
        if (known != watched_.records.end()) return known->second;
        std::optional<Record> const record = record_of(old(path));
        bool const is_whiteout =
            record && S_ISCHR(record->status.st_mode) && record->status.st_rdev == 0;
        return is_whiteout && !watched_.upper.empty() ? std::nullopt : record;
    }

    /// Whether somebody else removed the directory on the disk, and so took away what covers it.
    bool is_removed_outside() const {
        Status status{};
        return stat(watched_.before.c_str(), &status) == 0 && status.st_nlink == 0;
    }

    void compare_both(fs::path const& path, Record const& record, Status const& now) {
        Status const& before = record.status;
        if ((before.st_mode & S_IFMT) != (now.st_mode & S_IFMT)) {
            if (!S_ISDIR(before.st_mode)) return report_whole('T', path, now, present(path));
            return report('T', path, now, "was a directory: " + summary(old(path)));
        }
        if (!is_untouched(before, now)) compare_itself(path, record, now);
        if (!S_ISDIR(now.st_mode)) return;
        for (std::string const& name : names_that_can_differ(path)) compare(path / name);
    }

    std::set<std::string> names_that_can_differ(fs::path const& directory) {
        std::set<std::string> names =
            names_in(watched_.upper.empty() ? present(directory) : watched_.upper / directory);
        // A directory that was removed and made again hides all of the lower one, any other hides
        // nothing: so one name that is not in the upper layer shows which.
        for (fs::directory_entry const& entry : fs::directory_iterator(old(directory))) {
            fs::path const name = entry.path().filename();
            if (names.count(name) != 0 || !old_record(directory / name)) continue;
            if (!status_of(present(directory) / name)) names.merge(names_in(old(directory)));
            break;
        }
        return names;
    }

    void compare_itself(fs::path const& path, Record const& before, Status const& now) {
        std::vector<std::string> details = differences(before.status, now);
        for (std::string const& name : different(before.attributes, attributes_of(present(path))))
            details.push_back("attribute " + name);
        if (S_ISLNK(now.st_mode) && fs::read_symlink(old(path)) != fs::read_symlink(present(path)))
            details.push_back("link " + fs::read_symlink(old(path)).string() + " -> " +
                              fs::read_symlink(present(path)).string());
        std::string const text =
            S_ISREG(now.st_mode) ? compare_content(path, before.status, now, details) : "";
        if (!details.empty() || !text.empty()) report('M', path, now, joined(details), text);
    }

    /// Returns a difference in text. Any other one becomes a detail.
    std::string compare_content(fs::path const& path, Status const& before, Status const& now,
                                std::vector<std::string>& details) {
        bool const is_same = before.st_size == now.st_size &&
                             has_same_content(old(path), present(path), now.st_size);
        if (is_same) return "";
        constexpr off_t most = off_t{4} << 20; // of what diff takes long for
        std::string text;
        if (before.st_size < most && now.st_size < most)
            text = text_difference(old(path), present(path));
        if (text.empty())
            details.push_back("content " + grouped(std::uintmax_t(before.st_size)) + " B -> " +
                              grouped(std::uintmax_t(now.st_size)) + " B");
        return text;
    }

    /// Of a directory, with what it holds at `place`.
    void report_whole(char letter, fs::path const& path, Status const& status,
                      fs::path const& place) {
        report(letter, path, status, S_ISDIR(status.st_mode) ? summary(place) : "");
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
    Watched watched = {directory, before, upper, {}};
    watched.records[""] = record_of(directory).value();
    if (!upper.empty()) return watched;
    std::size_t const begin = (directory / "").string().size();
    auto const options = fs::directory_options::skip_permission_denied;
    for (fs::path const& path : fs::recursive_directory_iterator(directory, options))
        if (std::optional<Record> const record = record_of(path))
            watched.records[path.string().substr(begin)] = *record;
    // Until the file system's clock has gone on, so that a change from now on has another time.
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
    return watched;
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

std::set<fs::path> copied_up_hard_links(std::vector<Watched> const& directories) {
    ReadingRights const rights;
    std::set<fs::path> found;
    for (Watched const& watched : directories)
        for (fs::directory_entry const& entry : fs::recursive_directory_iterator(watched.upper)) {
            fs::path const path =
                entry.path().string().substr((watched.upper / "").string().size());
            Status before{};
            if (fs::is_regular_file(entry.symlink_status()) &&
                lstat((watched.before / path).c_str(), &before) == 0 && S_ISREG(before.st_mode) &&
                before.st_nlink > 1)
                found.insert(watched.directory / path);
        }
    return found;
}

} // namespace sandbox
