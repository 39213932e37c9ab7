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

/// A locale in which "," is white space and every byte of a file is changed on its way.
std::locale hostile_locale() {
    struct Comma : std::ctype<char> {
        Comma() : std::ctype<char>(table()) {}
        static mask const* table() {
            static std::vector<mask> masks(classic_table(), classic_table() + table_size);
            masks[','] |= space;
            masks['\t'] = print;
            return masks.data();
        }
    };
    struct Shift : std::codecvt<char, char, std::mbstate_t> {
        bool do_always_noconv() const noexcept override { return false; }
        result do_in(std::mbstate_t&, char const* from, char const* from_end,
                     char const*& from_next, char* to, char* to_end,
                     char*& to_next) const override {
            for (from_next = from, to_next = to; from_next != from_end && to_next != to_end;)
                *to_next++ = static_cast<char>(*from_next++ + 1);
            return ok;
        }
        result do_out(std::mbstate_t& state, char const* from, char const* from_end,
                      char const*& from_next, char* to, char* to_end,
                      char*& to_next) const override {
            return do_in(state, from, from_end, from_next, to, to_end, to_next);
        }
    };
    return std::locale(std::locale(std::locale::classic(), new Comma), new Shift);
}

struct GlobalLocale {
    std::locale previous;
    explicit GlobalLocale(std::locale const& now) : previous(std::locale::global(now)) {}
    ~GlobalLocale() { std::locale::global(previous); }
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
        {"A;;B", ';', {"A", "", "B"}},
        {";A", ';', {"", "A"}},
        {"A;", ';', {"A"}},
        {"A;;", ';', {"A", ""}},
        {";", ';', {""}},
        {";;", ';', {"", ""}},
        {"A; B\n", ';', {"A", " B\n"}},
        {"/a  /b ", ' ', {"/a", "", "/b"}},
        {"/a\t/b", ' ', {"/a\t/b"}},
        {std::string("a\0b\xff", 4), '\0', {"a", "b\xff"}},
    };
    for (auto const& [text, delimiter, fields] : cases)
        EXPECT_EQ(split_by_delimiter(text, delimiter), fields) << testing::PrintToString(text);
}

TEST(IsSupported, FindsTheKeyWithinAWord) {
    std::string const block(64 * 1024, 'x');
    struct {
        std::string content, key;
        bool found;
    } const cases[] = {
        {"name=3.1\n", "name=3.1", true},
        {"a=b\nname=3.1.2", "name=3", true},
        {"#hostname=3.1", "name=3.1", true},
        {"name = 3.1\n", "name=3.1", false},
        {"NAME=3.1\n", "name=3.1", false},
        {"name=3.1", "name=3.10", false},
        {"name=na name=name=3", "name=3", true},
        {"", "x", false},
        {" \n", "", true},
        {"", "", true},
        {"name=a b\tc\nd\re\vf\fg", "a b", false},
        {"name=a b\tc\nd\re\vf\fg", "b\tc", false},
        {"name=a b\tc\nd\re\vf\fg", "c\nd", false},
        {"name=a b\tc\nd\re\vf\fg", "d\re", false},
        {"name=a b\tc\nd\re\vf\fg", "e\vf", false},
        {"name=a b\tc\nd\re\vf\fg", "f\fg", false},
        {"name=a,\xa0z", "a,\xa0z", true},
        {std::string("na\0me=3", 7), "name=3", false},
        {block.substr(1) + "name=3.1", "name=3.1", true},
        {block.substr(4) + "name=3.1", "name=3.1", true},
        {block.substr(8) + "name=3.1", "name=3.1", true},
        {block + "name=3.1", "name=3.1", true},
        {block + block, block + "xx", true},
        {block.substr(4) + "name" + "\n=3.1", "name=3.1", false},
    };
    Site site;
    GlobalLocale const hostile(hostile_locale());
    for (auto const& [content, key, found] : cases) {
        {
            GlobalLocale const plain(std::locale::classic());
            write_file("properties", content);
        }
        site.session.calls.clear();
        EXPECT_EQ(is_supported("properties", key), found)
            << "key " << testing::PrintToString(key) << " in " << content.size() << " bytes "
            << testing::PrintToString(content.substr(0, 40));
        EXPECT_EQ(site.log(), found ? Texts{"workbench_int: " + key + " is found"} : Texts{});
    }
    EXPECT_FALSE(is_supported("absent", ""));
    EXPECT_FALSE(is_supported(site.workbench, "x")) << "a folder opens, and fails to be read";
}

TEST(GetWbIntegration, CutsTheNameFromTheFirstPathWithTheMarker) {
    struct {
        Texts files;
        std::string name;
    } const cases[] = {
        {{"cfg/wr-qev-1.0/x"}, "wr-qev-1.0/"},
        {{"cfg/wr-qev-7"}, "wr-qev-7"},
        {{"wr-qev-"}, "wr-qev-"},
        {{"opt\\tools\\wr-qev-10.3.1\\setup"}, "wr-qev-10.3"},
        {{"wr-qev-1.0/wr-qev-2.0/x"}, "wr-qev-1.0/"},
        {{"wr-wr-qev-1.0a"}, "wr-qev-1.0a"},
        {{"x\\wr-qev-1.0\\y"}, "wr-qev-1.0/"},
        {{"a/WR-QEV-1.0/b", "a/wr-qev", "wr\\qev-1.0"}, ""},
        {{"", "a", "b/wr-qev-1.0a", "b/wr-qev-2.0a"}, "wr-qev-1.0a"},
        {{}, ""},
    };
    for (auto const& [files, name] : cases) {
        Site site;
        site.session.components.clear();
        site.add_component("part", files);
        EXPECT_EQ(get_wb_integration(site.session.tsd.components()), name)
            << testing::PrintToString(files);
    }
}

TEST(GetWbIntegration, AsksNothingBeyondItsFirstMatch) {
    Site site;
    site.session.components.clear();
    site.session.components.push_back(nullptr);
    site.add_component("", {"wr-qev-0.0a"});
    site.add_component("off", {"wr-qev-0.0b"}).install_condition = false;
    site.add_component("none", {"x"}).file_provider = nullptr;
    site.add_component("docs", {});
    site.add_component("files", {"", "share\\readme.txt", "wb\\wr-qev-4.2a\\x.ini", "wr-qev-9.9z"});
    site.add_component("later", {"wr-qev-9.9z"});
    std::vector<Component*> const components = site.session.tsd.components();
    site.session.calls.clear();

    EXPECT_EQ(get_wb_integration(components), "wr-qev-4.2a");
    EXPECT_EQ(
        site.calls(),
        (Texts{
            R"("off".installCondition() = 0)",
            R"("none".installCondition() = 1)",
            R"("none".provider() = null)",
            R"("docs".installCondition() = 1)",
            R"("docs".provider() = set)",
            R"(query("", "docs", "") = null)",
            R"("files".installCondition() = 1)",
            R"("files".provider() = set)",
            R"(query("", "files", "") = set)",
            R"("files".provider() = set)",
            R"(fileList(set) = {"", "share\\readme.txt", "wb\\wr-qev-4.2a\\x.ini", "wr-qev-9.9z"})",
            R"(print_log("workbench_int: current_file: share\\readme.txt"))",
            R"(print_log("workbench_int: current_file: wb\\wr-qev-4.2a\\x.ini"))",
            R"(print_log("workbench_int: found workbench configuration: wb/wr-qev-4.2a/x.ini"))",
        }));
}

TEST(CreateDeintegrationScript, WritesThreeLinesInPlaceOfWhatWasThere) {
    struct {
        std::string config_dir, uninstall_script, removed;
    } const cases[] = {
        {"/opt/wb//wr-qev-4.2a/", "/opt/wb/wr-qev-4.2a", "/opt/wb/wr-qev-4.2a"},
        {"/opt/b\xc3\xbc-r_o+,:@%1/c", "/opt/b\xc3\xbc-r_o+,:@%1/c", "/opt/b\xc3\xbc-r_o+,:@%1/c"},
    };
    Site site;
    GlobalLocale const hostile(hostile_locale());
    mode_t const mask = umask(077);
    for (auto const& [config_dir, uninstall_script, removed] : cases) {
        fs::remove(site.script);
        EXPECT_EQ(create_deintegration_script(site.script, "/" + std::string(5000, 'x')), 0);
        EXPECT_EQ(create_deintegration_script(site.script, config_dir), 0);
        GlobalLocale const plain(std::locale::classic());
        EXPECT_EQ(read_file(site.script), "#!/bin/sh\n/bin/sh -c \"" + uninstall_script +
                                              "/wr-setup/uninst_wr_qev.sh\"\nrm -rf \"" + removed +
                                              "\"\n");
        EXPECT_EQ(fs::status(site.script).permissions(), fs::perms{0755});
    }
    umask(mask);
}

TEST(CreateDeintegrationScript, AsksForNoPathWhereItCannotOpenItsFile) {
    Site site;
    std::set<std::string> const before = site.tree();
    EXPECT_EQ(create_deintegration_script("absent/script.sh", "/opt/wb"), -1);
    EXPECT_EQ(site.calls(), (Texts{
                                R"(print_log("workbench_int: trying to create absent/script.sh"))",
                                R"(print_log("workbench_int: failed to open absent/script.sh"))",
                            }));
    EXPECT_EQ(site.tree(), before);
}
