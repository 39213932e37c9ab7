#include <cstring>

#include "tests/site.h"
#include "workbench/configuration.h"

TEST(Actions, MakeTheseHostCallsAndNoOthers) {
    Site site;
    site.host.session.components.front() = nullptr;
    site.add_component("", {"wr-qev-0.0a"});
    site.add_component("off-workbench", {"wr-qev-0.0b"}).install_condition = false;
    site.add_component("a Workbench", {}).file_provider = nullptr;
    site.add_component("workbench", {"", "part\\wr-qev-1.0a\\a.prefs", "wr-qev-9.9z",
                                     "part/wr-qev-1.0a/./a.prefs"});
    site.add_component("workbench-later", {}).subdirectory = "later";
    std::string shown;
    for (char const* const name : trial::action_names) {
        std::string const result = std::to_string(site.run(plugin.action(name)));
        shown += "== " + std::string(name) + " returned " + result + "\n";
        for (std::string const& call : site.calls) shown += call + "\n";
    }
    for (std::size_t at = 0; (at = shown.find(site.root)) != std::string::npos;)
        shown.erase(at, site.root.size());
    EXPECT_EQ(shown, read_file(TESTS "/expected_calls.txt"));

    auto& variables = site.host.session.variables;
    variables["SUPPORTED_VERSION"] = "";
    variables["log_file"] = "";
    site.run(workbench_int::validate_wb_path);
    EXPECT_EQ(site.calls[1], "log_init(\"\") = 0");
    EXPECT_EQ(site.calls.end()[-2], "print_log(\"workbench_int: empty SUPPORTED_VERSION\")");
    site.host.session.components.clear();
    site.run(workbench_int::find_wb_components);
    EXPECT_EQ(variables["WB_INTEGRATION_SUPPORTED"], "no");
    variables["SUPPORTED_VERSION"] = " 3.1;3.1"; // a blank belongs to a version, which ";" ends
    site.run(workbench_int::validate_wb_path);
    EXPECT_EQ(variables["PATH_STATUS"], "unsupported");
}

TEST(Actions, TakeAProviderThatIsGoneForOneWithoutFiles) {
    struct FickleSite : Site {
        std::unique_ptr<installer::FileProvider> gone;
        void ends(std::string const& call) override {
            Site::ends(call);
            if (call == "provider(\"workbench\") = set")
                gone = std::move(host.session.components.front()->file_provider);
        }
    };
    FickleSite site;
    EXPECT_EQ(get_wb_integration(site.host.session.tsd.components()), "");
    EXPECT_EQ(site.calls.back(), "provider(\"workbench\") = null");
}

/// Where a virtual operation stands among those of its class: the ABI keeps 1 and its offset.
template <typename Operation>
static std::size_t position(Operation operation) {
    std::size_t offset = 0;
    std::memcpy(&offset, &operation, sizeof offset);
    return offset / sizeof(void*);
}

TEST(Actions, ReachAProvidersOperationsByTheirPositions) {
    EXPECT_EQ(position(&ComponentProvider::query), 0U);
    EXPECT_EQ(position(&ComponentProvider::fileList), 8U);
}

TEST(Actions, IntegrateUnderTheNameInTheFirstPathWithTheMarker) {
    std::tuple<Texts, std::string, bool> const cases[] = {
        {{"", "a/WR-QEV-1.0/b", "a/wr-qev", "wr\\qev-1.0"}, "", true},
        {{"a", "wr-qev-"}, "wr-qev-", false},
        {{"x\\wr-wr-qev-1\\y\\wr-qev-2.0a", "wr-qev-3.0a"}, "wr-qev-1/y/", false},
        {{"x\\wr-qev-\\..\\y"}, "wr-qev-/../", true},
        {{"wr-qev-a/.."}, "wr-qev-a/..", true},
        {{"wr-qev-..b"}, "wr-qev-..b", false},
        {{"wr-qev-\\..b"}, "wr-qev-/..b", false},
        {{"wr-qev-a.."}, "wr-qev-a..", false},
    };
    for (auto const& [files, name, is_refused] : cases) {
        Site site;
        site.host.session.components.front()->file_provider->files = files;
        auto const before = site.entries();
        EXPECT_EQ(get_wb_integration(site.host.session.tsd.components()), name);
        EXPECT_EQ(site.run(workbench_int::perform_integration), is_refused ? -1 : 127) << name;
        EXPECT_EQ(site.entries() == before, is_refused) << name;
        EXPECT_EQ(site.calls.back().find("is not supported") != std::string::npos, is_refused);
    }
}
