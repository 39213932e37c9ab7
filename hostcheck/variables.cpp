#include "host/services.h"
#include "hostcheck/hostcheck.h"

namespace hostcheck {

void check_variables(Report& report, session_t* session) {
    std::string const name = "HOSTCHECK_VALUE";
    auto const held = [&] { return env_get_string(session, name.c_str()); };
    auto const set = [&](char const* value) { env_set_string(session, name.c_str(), value); };
    std::vector<std::string> const values = {
        "plain", " a  b ", "\"'$`\\", "one\ntwo\r\n", "\x80\xff", std::string(1U << 20, 'x')};

    report.promise("env_get_string", "a variable that is not held reads as the empty string",
                   [&] { return difference("", env_get_string(session, "HOSTCHECK_NOT_HELD")); });
    report.promise("env_set_string", "each value is held as it is", [&] {
        std::string fault;
        for (std::string const& value : values) {
            set(value.c_str());
            fault += difference(value, held());
        }
        return fault;
    });
    report.promise("env_set_string", "each value is held as it is, given as strings", [&] {
        std::string fault;
        for (std::string const& value : values) {
            env_set_string(session, name, value);
            fault += difference(value, held());
        }
        return fault;
    });
    report.promise("env_set_string", "the value is copied", [&] {
        std::string const before = "long enough to lie in memory of its own";
        std::vector<char> buffer(before.c_str(), before.c_str() + before.size() + 1);
        set(buffer.data());
        buffer[0] = '#';
        return difference(before, held());
    });
    report.promise("env_set_string", "another variable stays as it is", [&] {
        set("first");
        env_set_string(session, "HOSTCHECK_OTHER", "second");
        std::string fault = difference("first", held());
        env_set_string(session, "HOSTCHECK_OTHER", "");
        return fault;
    });
    report.promise("env_set_string", "a variable can be emptied", [&] {
        set("");
        return difference("", held());
    });
}

} // namespace hostcheck
