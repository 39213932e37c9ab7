#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <locale>

#include "tests/site.h"
#include "workbench/deintegration_script.h"
#include "workbench/installation.h"
#include "workbench/split_by_delimiter.h"

/// Bytes of a locale that no file of the plug-in's may be read or written in.
struct ForeignBytes : std::codecvt<char, char, std::mbstate_t> {
    bool do_always_noconv() const noexcept override { std::abort(); }
};

TEST(SplitByDelimiter, KeepsEveryFieldButTheOneBehindALastDelimiter) {
    EXPECT_EQ(split_by_delimiter("", ';'), Texts());
    EXPECT_EQ(split_by_delimiter(";A;;\tB \n ;;", ';'), Texts({"", "A", "", "\tB \n ", ""}));
    EXPECT_EQ(split_by_delimiter({0, 'a', 0}, 0), Texts({"", "a"}));
}

TEST(IsSupported, FindsTheKeyWithinAWord) {
    Site site;
    auto const finds = [](std::string const& content, std::string const& key) {
        write_file("properties", content);
        std::locale const previous = std::locale::global({{}, new ForeignBytes});
        bool const is_found = is_supported("properties", key);
        std::locale::global(previous);
        return is_found;
    };
    EXPECT_TRUE(finds("a=b\n#hostname=na name=name=3.1.2\n", "name=3"));
    EXPECT_FALSE(finds("name = 3.1 NAME=3.1\n", "name=3.1"));
    EXPECT_TRUE(finds("", ""));
    std::string const block(65536, 'x');
    EXPECT_TRUE(finds(block.substr(7) + "name=3.1", "name=3.1"));
    EXPECT_TRUE(finds(block + block, block + "xx"));
    EXPECT_FALSE(finds(block + "y", "yx")) << "what an earlier block left behind the end";
    for (char const space : {' ', '\t', '\n', '\r', '\v', '\f'})
        EXPECT_FALSE(finds({'a', space, 'b'}, {'a', space, 'b'})) << int{space};
    EXPECT_FALSE(is_supported("absent", ""));
    EXPECT_FALSE(is_supported("workbench", "x")) << "a folder opens, but cannot be read";
    EXPECT_EQ(site.calls.size(), 4U) << "a log line for each that is found";
}

static bool can_truncate = true;
extern "C" int ftruncate(int file, off_t size) noexcept {
    if (can_truncate) return int(syscall(SYS_ftruncate, file, size));
    errno = EIO;
    return -1;
}

TEST(CreateDeintegrationScript, ReplacesAFileInItsPlace) {
    Site site;
    std::locale const previous = std::locale::global({{}, new ForeignBytes});
    mode_t const mask = umask(077);
    EXPECT_EQ(create_deintegration_script("script", std::string(5000, 'x')), 0);
    fs::create_hard_link("script", "same");
    EXPECT_EQ(create_deintegration_script("script", "/\xc3-_o+,:@%1//"), 0);
    umask(mask);
    std::locale::global(previous);
    EXPECT_EQ(read_file("same"), "#!/bin/sh\n/bin/sh -c \"/\xc3-_o+,:@%1/wr-setup/uninst_wr_qev.sh"
                                 "\"\nrm -rf \"/\xc3-_o+,:@%1\"\n");
    EXPECT_EQ(fs::status("same").permissions(), fs::perms{0755});
}

TEST(CreateDeintegrationScript, LeavesWhatItCannotWriteAsItIs) {
    Site site;
    write_file("script", "earlier");
    mkfifo("fifo", 0600); // nobody reads it
    for (std::string const name : {"workbench", "fifo", "script"}) {
        can_truncate = name != "script";
        fs::permissions(name, fs::perms{0700});
        EXPECT_EQ(create_deintegration_script(name, "/opt/wb"), -1);
        EXPECT_EQ(site.calls.front(),
                  "print_log(\"workbench_int: trying to create " + name + "\")");
        EXPECT_EQ(site.calls.back(), "print_log(\"workbench_int: failed to open " + name + "\")");
        EXPECT_EQ(fs::status(name).permissions(), fs::perms{0700});
        site.calls.clear();
    }
    can_truncate = true;
    EXPECT_EQ(read_file("script"), "earlier");
}

TEST(CreateDeintegrationScript, FollowsNoLink) {
    Site site;
    for (std::string const target : {"other", "absent", "workbench", "script"}) {
        write_file("other", "other's own");
        fs::permissions("other", fs::perms{0600});
        fs::remove("script");
        fs::create_symlink(target, "script");
        EXPECT_EQ(create_deintegration_script("script", "/opt/wb"), 0) << target;
        EXPECT_TRUE(fs::is_regular_file(fs::symlink_status("script")));
        EXPECT_EQ(fs::status("script").permissions(), fs::perms{0755});
        EXPECT_EQ(read_file("script").rfind("#!/bin/sh\n", 0), 0U);
        EXPECT_EQ(read_file("other"), "other's own");
        EXPECT_EQ(fs::status("other").permissions(), fs::perms{0600});
        EXPECT_FALSE(fs::exists("absent"));
    }
}
