// Names that a shell could take for something else. Real trees, real shells.

#include <gtest/gtest.h>

#include <cstring>

#include "tests/site.h"

namespace fs = std::filesystem;

namespace {

/// What is below the site's folder, but for what lies in the integrated configuration directory.
std::set<std::string> tree_beside(Site const& site, fs::path const& directory) {
    std::string const inside = (site.root / directory).lexically_relative(site.root).string();
    std::set<std::string> beside;
    for (std::string const& entry : site.entries())
        if (entry != inside && entry.rfind(inside + "/", 0) != 0) beside.insert(entry);
    return beside;
}

/// Has the de-integration script itself, and the shell that it starts, run by another shell.
void replace_shell(fs::path const& script, std::string const& shell) {
    std::string text = read_file(script);
    for (std::size_t at = 0; (at = text.find("/bin/sh", at)) != std::string::npos;
         at += shell.size())
        text.replace(at, std::string("/bin/sh").size(), shell);
    write_file(script, text, 0755);
}

void integrate_and_undo(Names const& names, std::string const& shell) {
    SCOPED_TRACE(testing::PrintToString(names.workbench + " | " + names.configuration + " | " +
                                        names.script) +
                 (names.relative ? " relative " : " ") + shell);
    Site site(names);
    site.session.shell = shell;
    std::set<std::string> expected = site.entries();

    EXPECT_EQ(site.run("perform_integration"), 0);
    EXPECT_TRUE(site.session.report.failures.empty())
        << testing::PrintToString(site.session.report.failures);
    std::string record = "1 setup " + site.part.string() + "\n";
    EXPECT_EQ(read_file(site.root / "record"), record);
    expected.insert({"record", (site.root / site.script).lexically_relative(site.root).string()});
    EXPECT_EQ(tree_beside(site, site.integrated_dir), expected);
    EXPECT_TRUE(fs::exists(site.integrated_dir / "wr-setup/uninst_wr_qev.sh"));

    replace_shell(site.script, shell);
    EXPECT_EQ(site.run("perform_deintegration"), 0);
    EXPECT_TRUE(site.session.report.failures.empty())
        << testing::PrintToString(site.session.report.failures);
    fs::path const uninstall_script = site.integrated_dir / "wr-setup/uninst_wr_qev.sh";
    bool const is_mistakable = std::strchr("-+%", uninstall_script.string().front());
    record +=
        (is_mistakable ? "0 uninstall ./" : "0 uninstall ") + uninstall_script.string() + "\n";
    EXPECT_EQ(read_file(site.root / "record"), record);
    EXPECT_EQ(site.entries(), expected);
}

class HostileNames : public testing::TestWithParam<char const*> {};

} // namespace

TEST_P(HostileNames, OfEveryByteGetThrough) {
    for (int byte = 1; byte < 256; ++byte) {
        if (byte == '/') continue;
        std::string const name = std::string("a") + static_cast<char>(byte) + "b";
        Names names = {name, name + "p", "wr-qev-1" + name, name, false};
        if (byte == '\\') names.configuration = "wr-qev-1.0a"; // a separator in listed paths
        integrate_and_undo(names, GetParam());
    }
}

TEST_P(HostileNames, ComposedToDeceiveGetThrough) {
    // clang-format off
    char const* const names[] = {
        "my tools", " a ", "\t\r\v", "\n", "a\ntouch oops\n",
        "$(touch oops)", "`touch oops`", "$$", "${IFS}", "\\$(touch oops)", "\\`touch oops\\`",
        "\"; touch oops; \"", "'; touch oops; '", "\\\"$HOME", "\\\\", "a\\", "\\'", "''\"\"",
        "a;touch oops", "a&&touch oops", "a||b|c", "<a>b", "(a)", "{", "}", "[", "!!", "^", "if",
        "a=b", "PATH=x", "-rf", "--", "-", "+x", "%1", "~", "~root", "#a", "a #b", "@x", ":", ",",
        "*", "?[a]*{b,c}", "%s%n", "caf\xc3\xa9 \xff", "a'b\"c`d$e\\f",
    };
    // clang-format on
    for (std::string const name : names)
        for (bool const relative : {false, true})
            integrate_and_undo({name, name + "p", "wr-qev-1.0a", name, relative}, GetParam());
    integrate_and_undo({"workbench", "product", "wr-qev-$(a)", "", false}, GetParam());
}

TEST_P(HostileNames, NeverTakeMoreAlongWhereTheScriptIsCutShort) {
    Names const names = {"a b/c d", "product", "wr-qev-1.0a", "setup", false};
    Site site(names);
    site.session.shell = GetParam();
    fs::create_directory(site.root / "a");
    site.run("perform_integration");
    replace_shell(site.script, GetParam());
    std::string const whole = read_file(site.script);
    std::set<std::string> const before = site.entries();
    for (std::size_t size = 0; size + 2 < whole.size(); ++size) {
        write_file(site.script, whole.substr(0, size), 0755);
        site.run("perform_deintegration");
        EXPECT_EQ(site.entries(), before) << whole.substr(0, size);
    }
}

INSTANTIATE_TEST_SUITE_P(Shells, HostileNames, testing::Values("/bin/sh", "/bin/bash"));
