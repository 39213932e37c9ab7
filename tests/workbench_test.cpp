#include <sys/stat.h>

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

TEST(CreateDeintegrationScript, ReplacesAFileAndLeavesAFolderAsItIs) {
    Site site;
    fs::permissions("workbench", fs::perms{0700});
    EXPECT_EQ(create_deintegration_script("workbench", "/opt/wb"), -1);
    EXPECT_EQ(site.calls, Texts({"print_log(\"workbench_int: trying to create workbench\")",
                                 "print_log(\"workbench_int: failed to open workbench\")"}));
    EXPECT_EQ(fs::status("workbench").permissions(), fs::perms{0700});

    std::locale const previous = std::locale::global({{}, new ForeignBytes});
    mode_t const mask = umask(077);
    EXPECT_EQ(create_deintegration_script("script", std::string(5000, 'x')), 0);
    EXPECT_EQ(create_deintegration_script("script", "/\xc3-_o+,:@%1//"), 0);
    umask(mask);
    std::locale::global(previous);
    EXPECT_EQ(read_file("script"),
              "#!/bin/sh\n/bin/sh -c \"/\xc3-_o+,:@%1/wr-setup/uninst_wr_qev.sh"
              "\"\nrm -rf \"/\xc3-_o+,:@%1\"\n");
    EXPECT_EQ(fs::status("script").permissions(), fs::perms{0755});
}
