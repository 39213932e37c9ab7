#include <fcntl.h>
#include <unistd.h>

#include <filesystem>

#include "host/services.h"
#include "hostcheck/hostcheck.h"

namespace fs = std::filesystem;

namespace hostcheck {

void check_paths(Report& report, std::string const& folder) {
    std::string const odd = folder + "/a b'\"$`\\c";
    std::string const closed = folder + "/read-only";
    fs::create_directories(odd + "/deep");
    fs::create_directories(folder + "/elsewhere/deep");
    fs::create_directory(closed);
    fs::permissions(closed, fs::perms(0555));
    write_file(folder + "/file", "");
    write_file(folder + "/elsewhere/file", "");
    fs::create_directory_symlink("elsewhere/deep", folder + "/link");
    fs::create_symlink("file", folder + "/link-to-file");
    fs::create_symlink("absent", folder + "/dangling");

    report.promise("path", "its form leads to the same place", [&] {
        std::string fault;
        for (std::string const& name :
             {odd + "//deep", odd + "/deep///", folder + "/./file", folder + "/link/../file"}) {
            std::string const formed = path(name);
            std::error_code absent;
            if (!fs::equivalent(name, formed, absent)) fault += difference(name, formed);
        }
        return fault;
    });
    report.promise("path", "a relative path stays relative, an empty one empty", [&] {
        std::string const relative = path("a//b/");
        bool const is_relative = !relative.empty() && relative[0] != '/';
        return (is_relative ? "" : difference("a/b", relative)) + difference("", path(""));
    });
    auto const wrong = [](std::string const& name, int answer, bool expected) {
        return (answer != 0) == expected ? ""
                                         : name + ": the answer is " + std::to_string(answer) + " ";
    };
    report.promise("is_dir", "not 0 for a directory, behind a link too, and for nothing else", [&] {
        return wrong("a directory", is_dir(odd), true) +
               wrong("a link", is_dir(folder + "/link"), true) +
               wrong("a file", is_dir(folder + "/file"), false) +
               wrong("a dangling link", is_dir(folder + "/dangling"), false) +
               wrong("nothing", is_dir(folder + "/absent"), false);
    });
    report.promise("is_file", "not 0 for a file, behind a link too, and 0 for nothing", [&] {
        return wrong("a file", is_file(folder + "/file"), true) +
               wrong("a link", is_file(folder + "/link-to-file"), true) +
               wrong("a dangling link", is_file(folder + "/dangling"), false) +
               wrong("nothing", is_file(folder + "/absent"), false);
    });
    report.promise("is_writable", "not 0 where this process can write, and nowhere else", [&] {
        bool const can_write = faccessat(AT_FDCWD, closed.c_str(), W_OK, AT_EACCESS) == 0;
        return wrong("a directory", is_writable(odd), true) +
               wrong("a read-only directory", is_writable(closed), can_write) +
               wrong("nothing", is_writable(folder + "/absent"), false);
    });
}

} // namespace hostcheck
