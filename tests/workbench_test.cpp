// The shared operations, called as the library exports them.

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <locale>

#include "tests/site.h"
#include "workbench/configuration.h"
#include "workbench/deintegration_script.h"
#include "workbench/installation.h"
#include "workbench/split_by_delimiter.h"

namespace fs = std::filesystem;
using Texts = std::vector<std::string>;

namespace {

/// As global locale, one in which "," is white space and a file's bytes change on their way.
class HostileLocale {
  public:
    HostileLocale() : previous_(std::locale::global({{{}, new Comma}, new Shift})) {}
    ~HostileLocale() { std::locale::global(previous_); }
    HostileLocale(HostileLocale const&) = delete;
    HostileLocale& operator=(HostileLocale const&) = delete;

  private:
    struct Comma : std::ctype<char> {
        Comma() : std::ctype<char>(table()) {}
        static mask const* table() {
            static std::vector<mask> masks(classic_table(), classic_table() + table_size);
            masks[','] |= space;
            return masks.data();
        }
    };
    struct Shift : std::codecvt<char, char, std::mbstate_t> {
        bool do_always_noconv() const noexcept override { return false; }
        result do_in(std::mbstate_t&, char const* from, char const* end, char const*& from_next,
                     char* to, char* to_end, char*& to_next) const override {
            for (from_next = from, to_next = to; from_next != end && to_next != to_end;)
                *to_next++ = static_cast<char>(*from_next++ + 1);
            return ok;
        }
        result do_out(std::mbstate_t& state, char const* from, char const* end,
                      char const*& from_next, char* to, char* to_end,
                      char*& to_next) const override {
            return do_in(state, from, end, from_next, to, to_end, to_next);
        }
    };

    std::locale previous_;
};

} // namespace

TEST(SplitByDelimiter, KeepsEveryFieldButTheOneBehindALastDelimiter) {
    struct {
        std::string text;
        char delimiter;
        Texts fields;
    } const cases[] = {
        {"", ';', {}},
        {"A", ';', {"A"}},
        {"A;B", ';', {"A", "B"}},
        {";", ';', {""}},
        {"A;", ';', {"A"}},
        {"A;;B", ';', {"A", "", "B"}},
        {";;", ';', {"", ""}},
        {"A;;", ';', {"A", ""}},
        {";A", ';', {"", "A"}},
        {"a\tb", ' ', {"a\tb"}},
        {"a\n ", ' ', {"a\n"}},
        {"a  b", ' ', {"a", "", "b"}},
        {{0, 'a', 0}, 0, {"", "a"}},
    };
    for (auto const& [text, delimiter, fields] : cases)
        EXPECT_EQ(split_by_delimiter(text, delimiter), fields) << testing::PrintToString(text);
}

TEST(IsSupported, FindsTheKeyWithinAWord) {
    std::string const block(65536, 'x');
    std::string const words = "name=a b\tc\nd\re\vf\fg,h";
    struct {
        std::string content, key;
        bool found;
    } const cases[] = {
        {"name=3.1\n", "name=3.1", true},
        {"a=b\nname=3.1.2", "name=3", true},
        {"#hostname=3.1", "name=3.1", true},
        {"name=na name=name=3", "name=3", true},
        {"name = 3.1\n", "name=3.1", false},
        {"NAME=3.1\n", "name=3.1", false},
        {"name=3.1", "name=3.10", false},
        {"", "x", false},
        {"", "", true},
        {words, "g,h", true},
        {words, "a b", false},
        {words, "b\tc", false},
        {words, "c\nd", false},
        {words, "d\re", false},
        {words, "e\vf", false},
        {words, "f\fg", false},
        {block.substr(1) + "name=3.1", "name=3.1", true},
        {block.substr(7) + "name=3.1", "name=3.1", true},
        {block.substr(8) + "name=3.1", "name=3.1", true},
        {block + "name=3.1", "name=3.1", true},
        {block + block, block + "xx", true},
        {block.substr(4) + "name\n=3.1", "name=3.1", false},
    };
    Site site;
    for (auto const& [content, key, found] : cases) {
        write_file("properties", content);
        HostileLocale const locale;
        site.session.calls.clear();
        EXPECT_EQ(is_supported("properties", key), found)
            << testing::PrintToString(key) << " in "
            << testing::PrintToString(content).substr(0, 40);
        EXPECT_EQ(site.session.calls.size(), found ? 1U : 0U) << "a log line, and only when found";
    }
    site.session.calls.clear();
    EXPECT_FALSE(is_supported("absent", ""));
    EXPECT_FALSE(is_supported("workbench", "x")) << "a folder opens, but cannot be read";
    EXPECT_TRUE(site.session.calls.empty()) << site.calls();
}

TEST(GetWbIntegration, CutsTheNameFromTheFirstPathWithTheMarker) {
    struct {
        Texts files;
        std::string name;
    } const cases[] = {
        {{}, ""},
        {{"cfg/wr-qev-1.0/x"}, "wr-qev-1.0/"},
        {{"cfg/wr-qev-7"}, "wr-qev-7"},
        {{"wr-qev-"}, "wr-qev-"},
        {{"opt\\tools\\wr-qev-10.3.1\\setup"}, "wr-qev-10.3"},
        {{"x\\wr-qev-1\\y\\z"}, "wr-qev-1/y/"},
        {{"wr-wr-qev-1.0/wr-qev-2.0/x"}, "wr-qev-1.0/"},
        {{"a/WR-QEV-1.0/b", "a/wr-qev", "wr\\qev-1.0"}, ""},
        {{"", "a", "b/wr-qev-1.0a", "b/wr-qev-2.0a"}, "wr-qev-1.0a"},
    };
    for (auto const& [files, name] : cases) {
        Site site;
        site.session.components.clear();
        site.add_component("part", files);
        EXPECT_EQ(get_wb_integration(site.session.tsd.components()), name)
            << testing::PrintToString(files);
    }
}

TEST(CreateDeintegrationScript, WritesThreeLinesInPlaceOfWhatWasThere) {
    Site site;
    mode_t const mask = umask(077);
    for (std::string const config_dir : {"/opt/wb/wr-qev-4.2a", "/b\xc3\xbc-r_o+,:@%1/c"}) {
        fs::remove(site.script);
        {
            HostileLocale const locale;
            EXPECT_EQ(create_deintegration_script(site.script, std::string(5000, 'x')), 0);
            EXPECT_EQ(create_deintegration_script(site.script, config_dir + "//"), 0);
        }
        EXPECT_EQ(read_file(site.script), "#!/bin/sh\n/bin/sh -c \"" + config_dir +
                                              "/wr-setup/uninst_wr_qev.sh\"\nrm -rf \"" +
                                              config_dir + "\"\n");
        EXPECT_EQ(fs::status(site.script).permissions(), fs::perms{0755});
    }
    umask(mask);
}

TEST(CreateDeintegrationScript, AsksForNoPathWhereItCannotOpenItsFile) {
    Site site;
    EXPECT_EQ(create_deintegration_script("absent/script.sh", "/opt/wb"), -1);
    EXPECT_EQ(site.calls(), "print_log(\"workbench_int: trying to create absent/script.sh\")\n"
                            "print_log(\"workbench_int: failed to open absent/script.sh\")\n");
}
