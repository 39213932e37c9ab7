#include <sys/stat.h>

#include <filesystem>

#include "host/services.h"
#include "hostcheck/hostcheck.h"

namespace fs = std::filesystem;

static hostcheck::Fault wrong_mode(std::string const& name, unsigned int made) {
    struct stat status {};
    if (stat(name.c_str(), &status) != 0) return name + " is not there";
    char text[40];
    std::snprintf(text, sizeof text, "made %04o, found %04o in ", made, status.st_mode & 0777U);
    return (status.st_mode & 0777U) == made ? "" : text + name;
}

void hostcheck::check_files(Report& report, std::string const& folder) {
    std::string const source = folder + "/source", copy = folder + "/copy", deep = "/a b/deep";
    report.promise("folder_create", "it and those above it are there, with mode 0755", [&] {
        struct Mask {
            mode_t before = umask(077);
            ~Mask() { umask(before); }
        } const mask;
        folder_create(folder + "/new/inner", 0755U);
        return wrong_mode(folder + "/new/inner", 0755);
    });
    for (std::string const& name : {folder + "/kept", source + deep, copy + deep})
        fs::create_directories(name);
    report.promise("folder_create", "one that is there keeps its content", [&] {
        write_file(folder + "/kept/file", "kept");
        folder_create(folder + "/kept", 0755U);
        return difference("kept", read_file(folder + "/kept/file"));
    });

    write_file(source + deep + "/file", "new");
    write_file(source + "/empty", "");
    write_file(source + "/.hidden", "hidden");
    write_file(source + "/script.sh", "#!/bin/sh\n", 0750);
    fs::create_symlink("script.sh", source + "/link");
    write_file(copy + deep + "/file", "old");
    write_file(copy + "/older", "older");
    report.promise("dir_copy", "all is copied, into folders and over files that are there", [&] {
        dir_copy(source, copy);
        return difference("new", read_file(copy + deep + "/file")) +
               difference("hidden", read_file(copy + "/.hidden")) +
               (fs::exists(copy + "/empty") ? "" : "the empty file is not there");
    });
    report.promise("dir_copy", "a file's mode is kept",
                   [&] { return wrong_mode(copy + "/script.sh", 0750); });
    report.promise("dir_copy", "a link leads to the same content",
                   [&] { return difference("#!/bin/sh\n", read_file(copy + "/link")); });
    report.promise("dir_copy", "other files in the destination stay",
                   [&] { return difference("older", read_file(copy + "/older")); });
    report.promise("dir_copy", "it returns where there is no source", [&] {
        dir_copy(folder + "/absent", copy);
        return "";
    });
}
