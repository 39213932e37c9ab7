#include <unistd.h>

#include <filesystem>

#include "hostcheck/hostcheck.h"

namespace fs = std::filesystem;

void hostcheck::paths(session_t*, std::string const& folder) {
    std::string const odd = folder + "/a b'\"$`\\c", inner = odd + "/deep/inner";
    write_file(odd + "/deep/file", "");
    fs::create_directory(inner);
    fs::permissions(inner, fs::perms(0555));
    fs::create_symlink("deep/inner", odd + "/link");
    fs::create_symlink("deep/file", odd + "/link-to-file");
    fs::create_symlink("absent", odd + "/dangling");

    promise("path", "its form leads to the same place", [&] {
        std::error_code absent;
        for (std::string const& name : {std::string("/"), odd + "//deep", odd + "/deep///",
                                        odd + "/./deep/file", odd + "/link/../file"})
            if (!fs::equivalent(name, path(name), absent)) expect("a way to " + name, path(name));
    });
    promise("path", "a relative path stays relative, an empty one empty", [&] {
        expect("a/b/", fs::path(path("a//b/") + "/").lexically_normal());
        expect("", path(""));
    });

    // Whether is_dir, is_file and is_writable have to answer other than 0; "?" where it is open.
    std::string const closed = eaccess(inner.c_str(), W_OK) == 0 ? "1?1" : "1?0";
    std::pair<std::string, std::string> const answers[] = {
        {"/deep", "1?1"},         {"/deep/inner", closed}, {"/link", closed}, {"/deep/file", "01?"},
        {"/link-to-file", "01?"}, {"/dangling", "000"},    {"/absent", "000"}};
    auto const ask = [&](std::size_t column, auto const& question) {
        for (auto const& [name, right] : answers) {
            char const answer = question(odd + name) != 0 ? '1' : '0';
            if (right[column] != '?') expect(name + ": " + right[column], name + ": " + answer);
        }
    };
    promise("is_dir", "not 0 for a directory, behind a link too, and for nothing else",
            [&] { ask(0, [](std::string const& name) { return is_dir(name); }); });
    promise("is_file", "not 0 for a file, behind a link too, and 0 for nothing",
            [&] { ask(1, [](std::string const& name) { return is_file(name); }); });
    promise("is_writable", "not 0 where this process can write, and nowhere else",
            [&] { ask(2, [](std::string const& name) { return is_writable(name); }); });
}
