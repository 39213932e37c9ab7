#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include "tests/site.h"
#include "trial/session_file.h"
#include "trial/start_error.h"

namespace {

/// Whether the text is refused as a session file, which has to be by a message that names the file.
bool is_refused(Site& site, std::string const& text) {
    write_file("s.toml", text);
    try {
        trial::read_session_file("s.toml", site.session);
    } catch (trial::StartError const& error) {
        EXPECT_EQ(std::string(error.what()).rfind("s.toml:", 0), 0U) << error.what();
        return true;
    }
    return false;
}

} // namespace

TEST(SessionFile, IsTakenOrRefusedWhateverBytesItHolds) {
    std::string const text =
        "[variables]\nA = \"${SESSION_DIR}/log\"\n[[component]]\nname = \"b\"\n"
        "install_condition = true\nfiles = ['c\\d']\nfiles_from = \"product\"";
    Site site;
    std::mt19937 random(20261122);
    auto const random_byte = [&random] { return static_cast<char>(random()); };
    std::size_t refused = 0;
    for (std::size_t size = 0; size < text.size(); ++size) {
        std::string noise(size + 1, ' ');
        std::generate(noise.begin(), noise.end(), random_byte);
        std::string changed = text;
        changed[size] = random_byte();
        for (std::string const& bytes : {text.substr(0, size), noise, changed})
            refused += is_refused(site, bytes);
    }
    EXPECT_FALSE(is_refused(site, text));
    for (char const* const before : {"a", "[a", "a={a"}) {
        std::string deep = before;
        for (int depth = 0; depth < 300000; ++depth) deep += ".a";
        EXPECT_TRUE(is_refused(site, "\n" + deep + "=1")) << before;
    }
    EXPECT_GT(refused, 2 * text.size());
}
