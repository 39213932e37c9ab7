#include "installer/files.h"

#include <acl/libacl.h>
#include <attr/libattr.h>
#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <iostream>
#include <vector>

#include "installer/show.h"
#include "installer/signals.h"

namespace fs = std::filesystem;

namespace installer {

namespace {

/// Throws where `succeeds` is false, with `error`, or with what is in errno.
void require(bool succeeds, fs::path const& path, int error = 0) {
    std::error_code const code(error != 0 ? error : errno, std::generic_category());
    if (!succeeds) throw fs::filesystem_error("", path, code);
}

/// Of a link, its own status.
struct stat status_of(fs::path const& path) {
    struct stat status {};
    require(lstat(path.c_str(), &status) == 0, path);
    return status;
}

/// The mode for a copy: set-user-ID and set-group-ID mean the same only with the same owner and
/// group.
mode_t copied_mode(struct stat const& source, struct stat const& copy) {
    bool const is_same = source.st_uid == copy.st_uid && source.st_gid == copy.st_gid;
    return source.st_mode & (is_same ? 07777 : 01777);
}

/// A set-group-ID bit stays: it is how a group shares a tree.
void set_folder_mode(fs::path const& folder, mode_t mode, Outcome& outcome) {
    mode_t const present = status_of(folder).st_mode & 07777;
    mode_t const wanted = (mode & 07777) | (present & S_ISGID);
    if (present == wanted || chmod(folder.c_str(), wanted) == 0) return;
    require(errno == EPERM, folder);
    outcome.notes.push_back("the mode of " + show(folder.string()) + " stays " +
                            show_mode(present) + ", for the folder is somebody else's");
}

struct File {
    int const descriptor;
    File(fs::path const& path, int flags) : descriptor(open(path.c_str(), flags | O_CLOEXEC)) {
        require(descriptor != -1, path);
    }
    ~File() { close(descriptor); }
    File(File const&) = delete;
};

/// The copying of one tree.
class TreeCopy {
  public:
    explicit TreeCopy(Outcome& outcome) : outcome_(outcome) {}
    ~TreeCopy() {
        if (has_shown_) std::cerr << "\r\x1b[K" << std::flush;
    }

    void copy_contents(fs::path const& source, fs::path const& destination) {
        for (fs::directory_entry const& entry : fs::directory_iterator(source)) {
            fs::path const target = destination / entry.path().filename();
            if (entry.is_symlink()) copy_link(entry, target);
            else if (entry.is_directory()) copy_folder(entry, target);
            else if (entry.is_regular_file()) copy_regular_file(entry, target);
            else
                outcome_.fail("not copied: " + show(entry.path().string()) +
                              " is a FIFO, a socket or a device; leave it out");
            copied_ += entry.is_symlink() || !entry.is_directory();
            show_progress();
        }
    }

  private:
    void copy_folder(fs::path const& source, fs::path const& target) {
        require(mkdir(target.c_str(), S_IRWXU) == 0 || errno == EEXIST, target);
        require(S_ISDIR(status_of(target).st_mode), target, ENOTDIR);
        set_folder_mode(target, status_of(target).st_mode | S_IRWXU, outcome_);
        copy_contents(source, target);
        set_folder_mode(target, copied_mode(status_of(source), status_of(target)), outcome_);
    }

    static void copy_link(fs::path const& source, fs::path const& target) {
        replace_file(target, [&](fs::path const& fresh) {
            fs::remove(fresh);
            fs::create_symlink(fs::read_symlink(source), fresh);
        });
    }

    void copy_regular_file(fs::path const& source, fs::path const& target) {
        replace_file(target, [&](fs::path const& fresh) {
            File const from(source, O_RDONLY), to(fresh, O_WRONLY);
            off_t end = 0;
            for (off_t at = 0; (at = copy_block(from, to, at)) != end; end = at) {
                require(at != -1, target);
                require(!HeldSignals::pending(), target, EINTR);
                show_progress();
            }
            end = std::max(end, lseek(from.descriptor, 0, SEEK_END)); // behind a last hole
            require(ftruncate(to.descriptor, end) == 0, target);
            mode_t const mode = copied_mode(status_of(source), status_of(fresh));
            require(chmod(fresh.c_str(), mode) == 0, target);
        });
    }

    /// Copies a block at or behind `at`, but for holes. Returns where the next one begins: `at`
    /// where there is none, -1 where it failed.
    off_t copy_block(File const& from, File const& to, off_t at) {
        off_t const data = lseek(from.descriptor, at, SEEK_DATA);
        if (data == -1 && errno == ENXIO) return at;
        off_t const begin = std::max(at, data); // where a file system knows no holes, data is -1
        off_t const hole = lseek(from.descriptor, begin, SEEK_HOLE);
        std::size_t size = block_.size();
        if (hole > begin) size = std::min(size, std::size_t(hole - begin));
        ssize_t const count = pread(from.descriptor, block_.data(), size, begin);
        if (count <= 0) return count == 0 ? at : -1;
        ssize_t const written = pwrite(to.descriptor, block_.data(), std::size_t(count), begin);
        return written == -1 ? -1 : begin + written;
    }

    void show_progress() {
        auto const now = std::chrono::steady_clock::now();
        if (now - shown_ < std::chrono::seconds(1) || !isatty(STDERR_FILENO)) return;
        std::cerr << "\rcopied " << copied_ << " files" << std::flush;
        has_shown_ = true;
        shown_ = now;
    }

    Outcome& outcome_;
    std::vector<char> block_ = std::vector<char>(std::size_t{1} << 20);
    int copied_ = 0;
    bool has_shown_ = false;
    std::chrono::steady_clock::time_point shown_ = std::chrono::steady_clock::now();
};

} // namespace

std::string normalised(std::string const& path) {
    std::string result;
    for (char const character : path)
        if (character != '/' || result.empty() || result.back() != '/') result += character;
    if (result.size() > 1 && result.back() == '/') result.pop_back();
    return result;
}

void replace_file(fs::path const& target, std::function<void(fs::path const& fresh)> const& fill) {
    HeldSignals const signals;
    std::string fresh = target.parent_path() / ".wb-trial-XXXXXX";
    int const file = mkostemp(fresh.data(), O_CLOEXEC);
    require(file != -1, target);
    close(file);
    try {
        fill(fresh);
        require(rename(fresh.c_str(), target.c_str()) == 0, target);
    } catch (...) {
        unlink(fresh.c_str());
        throw;
    }
}

void copy_attributes(fs::path const& model, fs::path const& file, Outcome& outcome) {
    struct stat const original = status_of(model);
    struct stat const copy = status_of(file);
    require(copy.st_uid == original.st_uid || chown(file.c_str(), original.st_uid, -1U) == 0,
            model);
    bool const has_group =
        copy.st_gid == original.st_gid || chown(file.c_str(), -1U, original.st_gid) == 0;
    require(perm_copy_file(model.c_str(), file.c_str(), nullptr) == 0, model);
    if (attr_copy_file(model.c_str(), file.c_str(), nullptr, nullptr) != 0)
        outcome.notes.push_back("not all attributes of " + show(model.string()) + " could be kept");
    if (has_group) return;
    mode_t const rights_of_all = (original.st_mode & S_IRWXO) << 3;
    mode_t const withheld = S_ISGID | (S_IRWXG & ~rights_of_all);
    require(chmod(file.c_str(), original.st_mode & 07777 & ~withheld) == 0, model);
    outcome.notes.push_back("the group of " + show(model.string()) + " could not be kept");
}

void create_folder(fs::path const& directory, mode_t mode, Outcome& outcome) {
    require(!fs::is_symlink(directory), directory, ENOTDIR);
    fs::path const parent = directory.parent_path();
    if (!parent.empty() && !fs::exists(parent)) create_folder(parent, mode, outcome);
    fs::create_directory(directory);
    set_folder_mode(directory, mode, outcome);
}

void copy_tree(fs::path const& source, fs::path const& destination, Outcome& outcome) {
    require(S_ISDIR(status_of(destination).st_mode), destination, ENOTDIR);
    fs::path const from_source =
        fs::canonical(destination).lexically_relative(fs::canonical(source));
    require(*from_source.begin() == "..", destination, EINVAL);
    TreeCopy(outcome).copy_contents(source, destination);
}

} // namespace installer
