#include "hostcheck/hostcheck.h"

void hostcheck::variables(session_t* session, std::string const&) {
    char const* const name = "HOSTCHECK_VALUE";
    std::string const large(1U << 20, 'x');
    auto const try_values = [&](auto const& set) {
        for (char const* const value : {"plain", " a  b ", "\"'$`\\", "one\ntwo\r\n", "\x80\xff",
                                        large.c_str(), "" /* the last, for it empties it */}) {
            std::string buffer = value;
            set(buffer);
            buffer.assign(buffer.size(), '#');
            expect(value, env_get_string(session, name));
        }
    };
    promise("env_get_string", "a variable that is not held reads as the empty string",
            [&] { expect("", env_get_string(session, "HOSTCHECK_NOT_HELD")); });
    promise("env_set_string", "another variable stays as it is", [&] {
        env_set_string(session, name, "first");
        env_set_string(session, "HOSTCHECK_OTHER", "");
        expect("first", env_get_string(session, name));
    });
    promise("env_set_string", "each value is copied, given as characters", [&] {
        try_values([&](auto const& value) { env_set_string(session, name, value.c_str()); });
    });
    promise("env_set_string", "each value is copied, given as strings", [&] {
        try_values([&](auto const& value) { env_set_string(session, std::string(name), value); });
    });
}
