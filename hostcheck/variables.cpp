#include <set>

#include "hostcheck/hostcheck.h"

static std::string const odd = " Plain  \"'$`\\ 100%% a=b;c#d\r\n\x80\xff ";
static std::string const values[] = {"plain", odd, std::string(1U << 20, 'x'), "" /* the last */};

void hostcheck::variables(session_t* session, std::string const&) {
    char const *const name = "HOSTCHECK_VALUE", *const other = "HOSTCHECK_OTHER";
    auto const held = [&] { return env_get_string(session, name); };
    auto const set = [&](bool as_string, std::string const& value) {
        if (as_string) env_set_string(session, std::string(name), value);
        else env_set_string(session, name, value.c_str());
    };
    promise("env_get_string", "a variable that is not held reads as the empty string",
            [&] { expect("", env_get_string(session, "HOSTCHECK_NOT_HELD")); });
    std::set<std::string> misread; // whichever way they are set
    promise("env_get_string", "a value is read as it was set", [&] {
        for (std::string const& value : values) {
            set(false, value);
            std::string const found = held();
            set(true, value);
            if (found == value || held() == value) continue;
            misread.insert(value);
            expect(value, found);
        }
    });
    auto const promise_copies = [&](char const* text, bool as_string) {
        promise("env_set_string", text, [&] {
            for (std::string const& value : values) {
                std::string buffer(value.begin(), value.end()); // shared with none
                set(as_string, buffer);
                buffer.assign(buffer.size(), '#');
                if (misread.count(value) == 0) expect(value, held());
            }
        });
    };
    promise_copies("each value is copied, given as characters", false);
    promise_copies("each value is copied, given as a string", true);
    promise("env_set_string", "another variable stays as it is", [&] {
        env_set_string(session, name, "first");
        env_set_string(session, other, "");
        expect("first", held());
        env_set_string(session, name, "");
    });
}
