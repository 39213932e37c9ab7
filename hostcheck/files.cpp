#include <sys/stat.h>

#include <filesystem>

#include "host/services.h"
#include "hostcheck/hostcheck.h"

namespace fs = std::filesystem;

namespace hostcheck {

namespace {

std::string mode_of(std::string const& name) {
    struct stat status {};
    char text[] = "nothing";
    if (stat(name.c_str(), &status) == 0)
        std::snprintf(text, sizeof text, "%04o", status.st_mode & 07777U);
    return text;
}

std::string wrong_mode(std::string const& name, std::string const& made) {
    std::string const found = mode_of(name);
    return made == found ? "" : "made " + made + ", found " + found + " in " + name;
}

} // namespace

void check_files(Report& report, std::string const& folder) {
    std::string const source = folder + "/source", copy = folder + "/copy";
    std::string const created = folder + "/new/inner";
    report.promise("folder_create", "it and those above it are there, with mode 0755", [&] {
        mode_t const mask = umask(077);
        folder_create(created, 0755U);
        umask(mask);
        return wrong_mode(created, "0755");
    });
    report.promise("folder_create", "one that is there keeps its content", [&] {
        fs::create_directories(created);
        write_file(created + "/file", "kept");
        folder_create(created, 0755U);
        return difference("kept", read_file(created + "/file"));
    });

    fs::create_directories(source + "/a b/deep");
    fs::create_directories(copy + "/a b/deep");
    write_file(source + "/a b/deep/file", "new");
    write_file(source + "/empty", "");
    write_file(source + "/.hidden", "hidden");
    write_file(source + "/script.sh", "#!/bin/sh\n", 0750);
    fs::create_symlink("script.sh", source + "/link");
    write_file(copy + "/a b/deep/file", "old");
    write_file(copy + "/older", "older");
    report.promise("dir_copy", "all is copied, into folders and over files that are there", [&] {
        dir_copy(source, copy);
        return difference("new", read_file(copy + "/a b/deep/file")) +
               difference("hidden", read_file(copy + "/.hidden")) +
               (fs::exists(copy + "/empty") ? "" : "the empty file is not there");
    });
    report.promise("dir_copy", "a file's mode is kept",
                   [&] { return wrong_mode(copy + "/script.sh", "0750"); });
    report.promise("dir_copy", "a link leads to the same content",
                   [&] { return difference("#!/bin/sh\n", read_file(copy + "/link")); });
    report.promise("dir_copy", "other files in the destination stay",
                   [&] { return difference("older", read_file(copy + "/older")); });
    report.promise("dir_copy", "it returns where there is no source", [&] {
        dir_copy(folder + "/absent", copy);
        return "";
    });
}

} // namespace hostcheck
