#include "host/services.h"
#include "hostcheck/hostcheck.h"

void hostcheck::check_variables(Report& report, session_t* session) {
    std::string const name = "HOSTCHECK_VALUE";
    auto const held = [&] { return env_get_string(session, name.c_str()); };
    auto const set = [&](char const* value) { env_set_string(session, name.c_str(), value); };
    std::vector<std::string> const values = {
        "plain", " a  b ", "\"'$`\\", "one\ntwo\r\n", "\x80\xff", std::string(1U << 20, 'x')};

    report.promise("env_get_string", "a variable that is not held reads as the empty string",
                   [&] { return difference("", env_get_string(session, "HOSTCHECK_NOT_HELD")); });
    auto const try_values = [&](std::function<void(std::string const&)> const& set_value) {
        Fault fault;
        for (std::string const& value : values) {
            set_value(value);
            fault += difference(value, held());
        }
        return fault;
    };
    report.promise("env_set_string", "each value is held as it is",
                   [&] { return try_values([&](auto const& value) { set(value.c_str()); }); });
    report.promise("env_set_string", "each value is held as it is, given as strings", [&] {
        return try_values([&](auto const& value) { env_set_string(session, name, value); });
    });
    report.promise("env_set_string", "the value is copied", [&] {
        char buffer[] = "long enough to lie in memory of its own";
        set(buffer);
        buffer[0] = '#';
        return difference("long enough to lie in memory of its own", held());
    });
    report.promise("env_set_string", "another variable stays as it is", [&] {
        set("first");
        env_set_string(session, "HOSTCHECK_OTHER", "");
        return difference("first", held());
    });
    report.promise("env_set_string", "a variable can be emptied", [&] {
        set("");
        return difference("", held());
    });
}
