#include <gtest/gtest.h>

#include "tests/site.h"

TEST(Actions, MakeTheseHostCallsAndNoOthers) {
    Site site;
    auto const part = std::move(site.session.components.front());
    site.session.components.clear();
    site.session.components.push_back(nullptr);
    site.add_component("", {"wr-qev-0.0a"});
    site.add_component("off-workbench", {"wr-qev-0.0b"}).install_condition = false;
    site.add_component("without-provider", {"wr-qev-0.0c"}).file_provider = nullptr;
    site.add_component("without-files", {});
    std::vector<std::string> const& files = part->file_provider->files;
    site.add_component("workbench", {"", "x.txt", files.front(), "wr-qev-9.9z"}).subdirectory =
        part->subdirectory;
    site.add_component("workbench-later", {"part/wr-qev-1.0a/./a.prefs"});

    std::string calls;
    for (std::string const action : trial::action_names) {
        int const result = site.run(action);
        calls += "== " + action + " returned " + std::to_string(result) + "\n" + site.calls();
    }
    EXPECT_EQ(calls, read_file(EXPECTED_CALLS));
}
