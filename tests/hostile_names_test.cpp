// Names that a shell could take for something else. Real trees, real shells.

#include "tests/site.h"
#include "workbench/shell_quote.h"

static void integrate_and_undo(std::string const& name, std::string const& configuration,
                               bool relative) {
    for (std::string const shell : {"/bin/sh", "/bin/bash"}) {
        SCOPED_TRACE(testing::PrintToString(name) + (relative ? " relative " : " ") + shell);
        Site site(name, configuration, relative);
        site.host.shell = shell;
        std::string const target = name + "/" + configuration;
        std::string decoy = target; // what the name would match if it were a pattern
        for (std::string const pattern : {"*", "?", "[x]"})
            for (std::size_t at = 0; (at = decoy.find(pattern)) != std::string::npos;)
                decoy.replace(at, pattern.size(), "x");
        if (decoy != target) write_file(decoy + "/wr-setup/uninst_wr_qev.sh", "");
        std::set<fs::path> expected = site.entries();
        expected.insert({site.root + "/record", fs::path(site.root) / site.script});

        EXPECT_EQ(site.run(workbench_int::perform_integration), 0);
        std::string const text = read_file(site.script).substr(sizeof "#!/bin/sh\n/bin/sh" - 1);
        write_file(site.script, "#!" + shell + "\n" + shell + text);
        EXPECT_EQ(site.run(workbench_int::perform_deintegration), 0);

        std::string called = site.integrated_dir + "/wr-setup/";
        if (std::string("-+%").find(called[0]) != std::string::npos) called.insert(0, "./");
        EXPECT_EQ(read_file(site.root + "/record"), "1 " + called + name + ".sh " + site.part +
                                                        "\n0 " + called + "uninst_wr_qev.sh \n");
        EXPECT_EQ(site.entries(), expected);
    }
}

TEST(HostileNames, GetThrough) {
    for (int byte = 1; byte < 256; ++byte) {
        std::string const name = std::string("a") + static_cast<char>(byte) + "b";
        // A backslash is a separator in listed paths.
        std::string const configuration = "wr-qev-1" + (byte == '\\' ? ".0a" : name);
        if (byte != '/') integrate_and_undo(name, configuration, false);
    }
    // clang-format off
    for (std::string const name : {
        " a ", "\t\r\v", "\n", "a\ntouch oops\n", "$(touch oops)", "`touch oops`", "$$", "${IFS}",
        "\\$(touch oops)", "\\`touch oops\\`", "\";touch oops; \"", "'; touch oops; '", "\\\"$HOME",
        "\\\\", "a\\", "\\'", "''\"\"", "a;touch oops", "a&&touch a", "{", "}", "[", "[x]", "if",
        "a=b", "PATH=x", "-rf", "--", "-", "+x", "%1", "~", "~root", "#a", "a #b", "@x", ":", "*",
        "?[a]*{b,c}", "%s%n", "caf\xc3\xa9 \xff", "a'b\"c`d$e\\f"}) {
        // clang-format on
        integrate_and_undo(name, "wr-qev-1.0a", false);
        integrate_and_undo(name, "wr-qev-1.0a", true);
    }
    EXPECT_EQ(workbench_int::shell_word(""), "''");
}
