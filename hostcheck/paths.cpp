#include <fcntl.h>
#include <unistd.h>

#include <filesystem>

#include "host/services.h"
#include "hostcheck/hostcheck.h"

namespace fs = std::filesystem;

static hostcheck::Fault wrong(std::string const& name, int answer, bool expected) {
    return (answer != 0) == expected ? ""
                                     : name + ": the answer is " + std::to_string(answer) + " ";
}

void hostcheck::check_paths(Report& report, std::string const& folder) {
    std::string const odd = folder + "/a b'\"$`\\c", closed = folder + "/read-only";
    for (std::string const& name : {odd + "/deep", folder + "/elsewhere/deep", closed})
        fs::create_directories(name);
    fs::permissions(closed, fs::perms(0555));
    for (char const* const file : {"/file", "/elsewhere/file"}) write_file(folder + file, "");
    for (auto const& [target, link] :
         {std::pair("elsewhere/deep", "/link"), {"file", "/link-to-file"}, {"absent", "/dangling"}})
        fs::create_symlink(target, folder + link);

    report.promise("path", "its form leads to the same place", [&] {
        Fault fault;
        std::error_code absent;
        for (std::string const& name : {std::string("/"), odd + "//deep", odd + "/deep///",
                                        folder + "/./file", folder + "/link/../file"})
            if (!fs::equivalent(name, path(name), absent)) fault += difference(name, path(name));
        return fault;
    });
    report.promise("path", "a relative path stays relative, an empty one empty", [&] {
        std::string const relative = path("a//b/");
        bool const is_relative = !relative.empty() && relative[0] != '/';
        return (is_relative ? "" : difference("a/b", relative)) + difference("", path(""));
    });
    report.promise("is_dir", "not 0 for a directory, behind a link too, and for nothing else", [&] {
        Fault fault;
        for (char const* const name : {"/elsewhere", "/link"})
            fault += wrong(name, is_dir(folder + name), true);
        for (char const* const name : {"/file", "/dangling", "/absent"})
            fault += wrong(name, is_dir(folder + name), false);
        return fault;
    });
    report.promise("is_file", "not 0 for a file, behind a link too, and 0 for nothing", [&] {
        Fault fault;
        for (char const* const name : {"/file", "/link-to-file"})
            fault += wrong(name, is_file(folder + name), true);
        for (char const* const name : {"/dangling", "/absent"})
            fault += wrong(name, is_file(folder + name), false);
        return fault;
    });
    report.promise("is_writable", "not 0 where this process can write, and nowhere else", [&] {
        bool const can_write = faccessat(AT_FDCWD, closed.c_str(), W_OK, AT_EACCESS) == 0;
        return wrong("a directory", is_writable(odd), true) +
               wrong("a read-only directory", is_writable(closed), can_write) +
               wrong("nothing", is_writable(folder + "/absent"), false);
    });
}
