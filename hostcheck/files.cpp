#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <map>

#include "hostcheck/hostcheck.h"

namespace fs = std::filesystem;

static std::map<std::string, std::string> const contents = {
    {"/a b/$c/*/~/caf\xc3\xa9\xff", "new\n"},
    {"/empty", ""},
    {"/.hidden", "hidden"},
    {"/script.sh", "#!/bin/sh\n"},
    {"/link", "#!/bin/sh\n"}, // one to the script
    {"/large", std::string(100U << 10, '\0') + "end"}};
static std::pair<std::string, unsigned int> const modes[] = {
    {"/a b", 0750}, {"/nothing in it", 0711}, {"/.hidden", 0444}, {"/script.sh", 0750}};

static void expect_contents(std::string const& folder) {
    for (auto const& [name, content] : contents)
        hostcheck::expect(name + ": " + content, name + ": " + hostcheck::read_file(folder + name));
}

static void expect_mode(std::string const& name, unsigned int mode) {
    struct stat entry = {};
    if (stat(name.c_str(), &entry) != 0) return hostcheck::fault("nothing is there: " + name);
    char text[40];
    std::snprintf(text, sizeof text, "made %04o, found %04o: ", mode, entry.st_mode & 07777U);
    if ((entry.st_mode & 07777U) != mode) hostcheck::fault(text + name);
}

void hostcheck::files(session_t*, std::string const& folder) {
    std::string const source = folder + "/from $x", copy = folder + "/to  $y",
                      parent = folder + "/new $(x)", inner = parent + "/in ner";
    mode_t const before = umask(077);
    promise("folder_create", "it and those above it are there, with the mode", [&] {
        folder_create(inner, 0755U);
        for (std::string const& made : {parent, inner}) expect_mode(made, 0755);
    });
    promise("folder_create", "one that is there gets the mode and keeps its content", [&] {
        fs::permissions(inner, fs::perms(0700));
        write_file(inner + "/older", "older");
        folder_create(inner, 0755U);
        expect_mode(inner, 0755);
        expect("older", read_file(inner + "/older"));
    });

    fs::create_directories(source + "/nothing in it");
    fs::create_symlink("script.sh", source + "/link");
    for (auto const& [name, content] : contents) write_file(source + name, content);
    for (auto const& [name, mode] : modes) fs::permissions(source + name, fs::perms(mode));
    write_file(copy + "/older", "older");
    write_file(copy + "/script.sh", std::string(200U << 10, 'x'));
    write_file(copy + "/.hidden", "earlier", 0444);
    fs::create_symlink("older", copy + "/link");
    promise("dir_copy", "all is copied, links too, into folders, over files and links", [&] {
        for (int pass = 1; pass <= 2; ++pass) dir_copy(source, copy); // over its own copy too
        expect_contents(copy);
    });
    promise("dir_copy", "the modes of files and folders are kept", [&] {
        for (auto const& [name, mode] : modes) expect_mode(copy + name, mode);
    });
    promise("dir_copy", "other files there and the source stay as they are", [&] {
        expect("/older: older", "/older: " + read_file(copy + "/older"));
        expect_contents(source);
    });
    promise("dir_copy", "it returns where there is no source",
            [&] { dir_copy(folder + "/absent", copy); });
    umask(before);
}

void hostcheck::paths(session_t*, std::string const& folder) {
    std::string const odd = folder + "/A  b'\"$`\\c#d;e%f\tg~*caf\xc3\xa9\xff";
    std::string const inner = odd + "/deep/inner", part = "/" + std::string(200, 'x');
    std::string const far = odd + part + part + part + part + part + part;
    write_file(odd + "/deep/file", "");
    write_file(far, "");
    fs::create_directory(inner);
    fs::permissions(inner, fs::perms(0555));
    fs::create_symlink("deep/inner", odd + "/link");
    fs::create_symlink("deep/file", odd + "/link-to-file");
    fs::create_symlink("absent", odd + "/dangling");

    std::error_code error;
    promise("path", "its form leads to the same place", [&] {
        for (std::string const& name : {std::string("/"), odd + "//deep", odd + "/deep///",
                                        odd + "/./deep/file", odd + "/link/../file", far})
            if (!fs::equivalent(name, path(name), error)) expect("a way to " + name, path(name));
    });
    promise("path", "a relative path stays relative, an empty one empty", [&] {
        expect("a/b/", fs::path(path("a//b/") + "/").lexically_normal());
        expect("", path(""));
        std::string const there = fs::relative(odd + "/deep", error), found = path(there);
        if (fs::path(found).is_absolute()) expect("a relative path, as " + there, found);
    });

    // Whether is_dir, is_file and is_writable have to answer other than 0; "?" where it is open.
    std::string const closed = eaccess(inner.c_str(), W_OK) == 0 ? "1?1" : "1?0";
    std::pair<std::string, std::string> const answers[] = {
        {"/deep", "1?1"},         {"/link", closed},    {"/deep/file", "01?"},
        {"/link-to-file", "01?"}, {"/dangling", "000"}, {"/absent", "000"}};
    auto const ask = [&](std::size_t column, auto const& question) {
        for (auto const& [name, right] : answers) {
            char const answer = question(odd + name) != 0 ? '1' : '0';
            if (right[column] != '?') expect(name + ": " + right[column], name + ": " + answer);
        }
    };
    promise("is_dir", "not 0 for a directory, behind a link too, and 0 for all else",
            [&] { ask(0, [](std::string const& name) { return is_dir(name); }); });
    promise("is_file", "not 0 for a file, behind a link too, and 0 where nothing is",
            [&] { ask(1, [](std::string const& name) { return is_file(name); }); });
    promise("is_writable", "not 0 where this process can write, and 0 elsewhere",
            [&] { ask(2, [](std::string const& name) { return is_writable(name); }); });
}
