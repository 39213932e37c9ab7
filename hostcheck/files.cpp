#include <sys/stat.h>

#include <filesystem>

#include "hostcheck/hostcheck.h"

namespace fs = std::filesystem;

static void expect_mode(std::string const& name, fs::perms mode) {
    auto const made = unsigned(mode), found = unsigned(fs::status(name).permissions()) & 0777U;
    char text[40];
    std::snprintf(text, sizeof text, "made %04o, found %04o in ", made, found);
    if (found != made) hostcheck::fault(text + name);
}

void hostcheck::files(session_t*, std::string const& folder) {
    std::string const source = folder + "/source", copy = folder + "/copy";
    write_file(source + "/a b/deep/file", "new");
    write_file(source + "/empty", "", 0600);
    write_file(source + "/.hidden", "hidden", 0444);
    write_file(source + "/script.sh", "#!/bin/sh\n", 0750);
    fs::create_symlink("script.sh", source + "/link");
    write_file(copy + "/a b/deep/file", "old");

    mode_t const before = umask(077);
    promise("folder_create", "it and those above it are there, with mode 0755", [&] {
        folder_create(folder + "/new/inner", 0755U);
        expect_mode(folder + "/new/inner", fs::perms(0755));
    });
    umask(before);
    promise("folder_create", "one that is there keeps its content", [&] {
        folder_create(copy, 0755U);
        expect("old", read_file(copy + "/a b/deep/file"));
    });

    write_file(copy + "/older", "older");
    auto const names = {"/a b/deep/file", "/empty", "/.hidden", "/script.sh", "/link"};
    promise("dir_copy", "all is copied, links too, into folders and over files", [&] {
        dir_copy(source, copy);
        for (auto const* name : names) expect(read_file(source + name), read_file(copy + name));
    });
    promise("dir_copy", "a file's mode is kept", [&] {
        for (auto const* name : names)
            if (fs::exists(copy + name))
                expect_mode(copy + name, fs::status(source + name).permissions());
    });
    promise("dir_copy", "other files in the destination stay",
            [&] { expect("older", read_file(copy + "/older")); });
    promise("dir_copy", "it returns where there is no source",
            [&] { dir_copy(folder + "/absent", copy); });
}
