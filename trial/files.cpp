#include "trial/files.h"

#include <unistd.h>

namespace fs = std::filesystem;

namespace trial {

namespace {

/// A file that is gone again unless it was moved to its place.
struct FreshFile {
    fs::path path;

    ~FreshFile() {
        std::error_code ignored;
        fs::remove(path, ignored);
    }
};

[[noreturn]] void refuse(fs::path const& path, std::errc reason) {
    throw fs::filesystem_error("copy", path, std::make_error_code(reason));
}

void copy_contents(fs::path const& source, fs::path const& destination) {
    for (fs::directory_entry const& entry : fs::directory_iterator(source)) {
        fs::path const target = destination / entry.path().filename();
        if (entry.is_symlink()) {
            replace_file(target, [&](fs::path const& fresh) { fs::copy_symlink(entry, fresh); });
        } else if (entry.is_directory()) {
            if (fs::is_symlink(target)) refuse(target, std::errc::not_a_directory);
            fs::create_directory(target);
            fs::permissions(target, fs::perms::owner_all, fs::perm_options::add);
            copy_contents(entry, target);
            fs::permissions(target, entry.status().permissions());
        } else {
            replace_file(target, [&](fs::path const& fresh) { fs::copy_file(entry, fresh); });
        }
    }
}

} // namespace

std::string normalised(std::string const& path) {
    std::string result;
    for (char const character : path)
        if (character != '/' || result.empty() || result.back() != '/') result += character;
    if (result.size() > 1 && result.back() == '/') result.pop_back();
    return result;
}

void replace_file(fs::path const& file, std::function<void(fs::path const& fresh)> const& write) {
    FreshFile const fresh{file.parent_path() / (".wb-trial-" + std::to_string(getpid()))};
    write(fresh.path);
    std::error_code error;
    fs::rename(fresh.path, file, error);
    if (error) throw fs::filesystem_error("rename", file, error);
}

void copy_tree(fs::path const& source, fs::path const& destination) {
    if (!fs::is_directory(destination)) refuse(destination, std::errc::not_a_directory);
    fs::path const way = fs::canonical(destination).lexically_relative(fs::canonical(source));
    if (*way.begin() != "..") refuse(destination, std::errc::invalid_argument);
    copy_contents(source, destination);
}

} // namespace trial
