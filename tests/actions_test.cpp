// Each action's outcomes, and the host calls that it makes on the way: these and no others.

#include <gtest/gtest.h>

#include "tests/site.h"

namespace fs = std::filesystem;
using Texts = std::vector<std::string>;

TEST(ValidateWbPath, JudgesInstallationThenListThenVersionsThenWriting) {
    struct {
        std::string properties, versions, status;
        std::size_t tried;
    } const cases[] = {
        {"name=3.1\n", "3.1;", "ok", 1},
        {"name=3.1\n", "3.1", "unsupported", 0},
        {"name=3.1\n", "2.0;3.1", "unsupported", 1},
        {"name=3.1\n", "2.0;3.1;4.0;", "ok", 2},
        {"name=3.1\n", ";", "ok", 1},
        {"title=x\n", ";;", "unsupported", 2},
        {"name=3.1\n", " 3.1;", "unsupported", 1},
        {"name=3.1\n", "3;", "ok", 1},
        {"", "3.1;", "unsupported", 1},
        {"name=3.1\n", "", "undefined", 0},
        {"absent", "", "undefined", 0},
        {"absent", "3.1;", "undefined", 0},
    };
    for (auto const& [properties, versions, status, tried] : cases) {
        SCOPED_TRACE(properties + " against " + versions);
        Site site;
        write_file("workbench/install.properties", properties);
        if (properties == "absent") fs::remove("workbench/install.properties");
        site.session.variables["SUPPORTED_VERSION"] = versions;
        for (int round = 0; round < 2; ++round) {
            EXPECT_EQ(site.run("validate_wb_path"), 0);
            EXPECT_EQ(site.session.variables["PATH_STATUS"], status);
            EXPECT_EQ(site.session.report.written, Texts{"PATH_STATUS"});
            EXPECT_EQ(site.calls("path(\"/workbench/install.properties").size(), 1 + tried);
            EXPECT_EQ(site.calls("is_writable").size(), status == "ok" ? 1U : 0U);
        }
    }
}

TEST(DetectWbInDefaultPath, TakesTheFirstCandidateAsItIsListed) {
    struct {
        std::string search_path, proposed;
        std::size_t tested;
    } const cases[] = {
        {"", "", 0},
        {"absent", "", 1},
        {"workbench", "workbench", 1},
        {"workbench// absent", "workbench//", 1},
        {" absent  ./workbench workbench ", "./workbench", 4},
        {"absent ", "", 1},
        {"absent\tworkbench", "", 1},
        {"absent\nworkbench", "", 1},
    };
    for (auto const& [search_path, proposed, tested] : cases) {
        SCOPED_TRACE(search_path);
        Site site;
        site.session.variables["DEFAULT_SEARCH_PATH"] = search_path;
        EXPECT_EQ(site.run("detect_wb_in_default_path"), 0);
        EXPECT_EQ(site.session.variables["WB_INTEGRATION_PATH"], proposed);
        EXPECT_EQ(site.session.report.written, Texts{"WB_INTEGRATION_PATH"});
        EXPECT_EQ(site.calls("is_file").size(), tested);
        EXPECT_EQ(site.calls("print_log(\"workbench_int: found workbench in").size(),
                  proposed.empty() ? 0U : 1U);
    }
}

TEST(FindWbComponents, AnswersForTheFirstNameThatFits) {
    struct {
        Texts names; // one that begins with "-" is not to be installed
        std::string supported, subdirectory;
    } const cases[] = {
        {{}, "no", "old"},
        {{"", "Workbench", "WORKBENCH", "work-bench"}, "no", "old"},
        {{"workbench"}, "yes", "/workbench"},
        {{"docs", "product-workbench-support", "workbench"}, "yes", "/product-workbench-support"},
        {{"-workbench", "my-workbench"}, "yes", "/my-workbench"},
        {{"-workbench"}, "no", "old"},
    };
    for (auto const& [names, supported, subdirectory] : cases) {
        SCOPED_TRACE(testing::PrintToString(names));
        Site site;
        site.session.variables["WB_INSTALL_SUBDIR"] = "old";
        site.session.components.clear();
        site.session.components.push_back(nullptr);
        for (std::string const& name : names) {
            trial::Component& component = site.add_component(name, {});
            component.install_condition = name.rfind('-', 0) != 0;
            component.subdirectory = "/" + name;
        }
        EXPECT_EQ(site.run("find_wb_components"), 0);
        EXPECT_EQ(site.session.variables["WB_INTEGRATION_SUPPORTED"], supported);
        EXPECT_EQ(site.session.variables["WB_INSTALL_SUBDIR"], subdirectory);
        EXPECT_EQ(site.session.report.written.size(), supported == "yes" ? 2U : 1U);
    }
}

TEST(PerformIntegration, TouchesNothingWhereItCannotBegin) {
    struct {
        std::string listed, workbench, last_line;
    } const cases[] = {
        {"a/b", "absent", "workbench_int: workbench integration is not supported"},
        {"wr-qev-1.0a", "absent",
         "workbench_int: workbench path: absent does not exist or not a directory"},
        {"wr-qev-1.0a", "workbench/install.properties",
         "workbench_int: workbench path: workbench/install.properties does not exist or not a "
         "directory"},
    };
    for (auto const& [listed, workbench, last_line] : cases) {
        SCOPED_TRACE(last_line);
        Site site;
        site.session.components.clear();
        site.add_component("part", {listed});
        site.session.variables["WB_INTEGRATION_PATH"] = workbench + "/";
        std::set<std::string> const before = site.tree();
        EXPECT_EQ(site.run("perform_integration"), -1);
        EXPECT_EQ(site.log().back(), last_line);
        EXPECT_EQ(site.calls("is_dir").size(), listed == "a/b" ? 0U : 1U);
        EXPECT_EQ(site.tree(), before);
    }
}

TEST(InitWbPrefs, WritesOnlyTheFilesThatTheMarkerFits) {
    struct {
        std::string marker;
        bool fits;
    } const cases[] = {
        {".prefs", true}, {"1.0a\\a.p", true}, {"part", true}, {".PREFS", false}, {"", false},
    };
    for (auto const& [marker, fits] : cases) {
        SCOPED_TRACE(marker);
        Site site;
        std::string const before = read_file(site.preferences);
        site.session.variables["WB_PREFS"] = marker;
        EXPECT_EQ(site.run("init_wb_prefs"), 0);
        EXPECT_EQ(read_file(site.preferences),
                  fits ? "a=1\nhome=" + (site.root / "product/suite").string() + "\nb=2" : before);
        EXPECT_EQ(site.log().size(), fits ? 1U : 0U);
    }
}

TEST(Actions, MakeTheseHostCallsAndNoOthers) {
    Site site;
    auto& variables = site.session.variables;
    variables["DEFAULT_SEARCH_PATH"] = "/absent  " + site.workbench.string() + "//";
    variables["SUPPORTED_VERSION"] = "2.0;3.1;4.0;5";
    variables["VORN_INSTALL_DIR"] += "/";
    variables["VORN_INSTALL_SUBDIR"] += "/";
    site.session.components.insert(site.session.components.begin(), nullptr);
    site.add_component("workbench-later", {"", "x.txt", "part/wr-qev-1.0a/./a.prefs"});

    std::string calls;
    for (char const* const action :
         {"detect_wb_in_default_path", "validate_wb_path", "find_wb_components",
          "perform_integration", "init_wb_prefs", "perform_deintegration"}) {
        int const result = site.run(action);
        calls += std::string(action) + " returned " + std::to_string(result) + "\n";
        for (std::string const& call : site.calls()) calls += "  " + call + "\n";
    }
    EXPECT_EQ(calls, read_file(EXPECTED_CALLS));
}

TEST(Actions, RunWhereNoVariableIsSet) {
    for (char const* const action : trial::action_names) {
        SCOPED_TRACE(action);
        Site site;
        site.session.variables.clear();
        std::set<std::string> const before = site.tree();
        bool const opens_log = action != std::string("init_wb_prefs");
        testing::internal::CaptureStderr();
        EXPECT_EQ(site.run(action), action == std::string("perform_integration") ? -1 : 0);
        testing::internal::GetCapturedStderr();
        EXPECT_EQ(site.calls("log_init"), opens_log ? Texts{R"(log_init("") = 0)"} : Texts{});
        EXPECT_EQ(site.tree(), before);
    }
}
