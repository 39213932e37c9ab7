#include "installer/files.h"

#include <acl/libacl.h>
#include <attr/libattr.h>
#include <fcntl.h>
#include <sys/sendfile.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <climits>
#include <csignal>
#include <iostream>

#include "installer/show.h"

namespace fs = std::filesystem;

namespace installer {

namespace {

/// The name of the file that is to be removed when a signal ends the program. An array, because a
/// signal handler may neither allocate nor lock.
std::array<char, PATH_MAX> unfinished = {};

void remove_unfinished_and_end(int signal_number) {
    unlink(unfinished.data());
    signal(signal_number, SIG_DFL);
    raise(signal_number);
    _exit(128 + signal_number); // the first process of a sandbox survives the signal
}

void watch_signals() {
    for (int const number : {SIGINT, SIGTERM, SIGHUP}) {
        struct sigaction present {};
        sigaction(number, nullptr, &present);
        if (present.sa_handler != SIG_IGN) signal(number, remove_unfinished_and_end);
    }
}

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

/// An open file, which it closes.
class Descriptor {
  public:
    explicit Descriptor(int number) : number_(number) {}
    ~Descriptor() { close(number_); }
    Descriptor(Descriptor const&) = delete;
    Descriptor& operator=(Descriptor const&) = delete;
    operator int() const { return number_; }

  private:
    int number_;
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
        replace_file(target, [&](int, char const* name) {
            require(unlink(name) == 0, target);
            fs::create_symlink(fs::read_symlink(source), name);
        });
    }

    void copy_regular_file(fs::path const& source, fs::path const& target) {
        Descriptor const from(open(source.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK));
        require(from != -1, source);
        replace_file(target, [&](int file, char const*) {
            ssize_t size = 0;
            while ((size = sendfile(file, from, nullptr, std::size_t{64} << 20)) > 0)
                show_progress();
            struct stat original {};
            struct stat copy {};
            require(size == 0 && fstat(from, &original) == 0 && fstat(file, &copy) == 0, target);
            require(fchmod(file, copied_mode(original, copy)) == 0, target);
        });
    }

    void show_progress() {
        auto const now = std::chrono::steady_clock::now();
        if (now - shown_ < std::chrono::seconds(1) || !isatty(STDERR_FILENO)) return;
        std::cerr << "\rcopied " << copied_ << " files" << std::flush;
        has_shown_ = true;
        shown_ = now;
    }

    Outcome& outcome_;
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

void replace_file(fs::path const& target,
                  std::function<void(int file, char const* name)> const& fill) {
    std::string const pattern = target.parent_path() / ".wb-trial-XXXXXX";
    require(pattern.size() < unfinished.size(), target, ENAMETOOLONG);
    watch_signals();
    unfinished[pattern.copy(unfinished.data(), pattern.size())] = '\0';
    struct NewFile {
        int file = mkostemp(unfinished.data(), O_CLOEXEC);
        ~NewFile() {
            close(file);
            unlink(unfinished.data()); // there is none of that name once it is in its place
            unfinished[0] = '\0';
        }
    } const created;
    require(created.file != -1, target);
    fill(created.file, unfinished.data());
    require(rename(unfinished.data(), target.c_str()) == 0, target);
}

void copy_attributes(fs::path const& model, int file, Outcome& outcome) {
    Descriptor const from(open(model.c_str(), O_RDONLY | O_CLOEXEC));
    struct stat original {};
    struct stat copy {};
    require(fstat(from, &original) == 0 && fstat(file, &copy) == 0, model);
    require(copy.st_uid == original.st_uid || fchown(file, original.st_uid, -1U) == 0, model);
    bool const has_group =
        copy.st_gid == original.st_gid || fchown(file, -1U, original.st_gid) == 0;
    require(perm_copy_fd(model.c_str(), from, model.c_str(), file, nullptr) == 0, model);
    if (attr_copy_fd(model.c_str(), from, model.c_str(), file, nullptr, nullptr) != 0)
        outcome.notes.push_back("not all attributes of " + show(model.string()) + " could be kept");
    if (has_group) return;
    mode_t const rights_of_all = (original.st_mode & S_IRWXO) << 3;
    mode_t const withheld = S_ISGID | (S_IRWXG & ~rights_of_all);
    require(fchmod(file, original.st_mode & 07777 & ~withheld) == 0, model);
    outcome.notes.push_back("the group of " + show(model.string()) + " could not be kept");
}

void create_folder(fs::path const& directory, mode_t mode, Outcome& outcome) {
    require(!fs::is_symlink(directory), directory, ENOTDIR);
    fs::create_directories(directory);
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
