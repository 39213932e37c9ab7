
#include "hostcheck/hostcheck.h"

struct LogCase {
    char const *operation, *text;
    int openings;
    std::string value, logged;
};

static std::string const large = std::string(1U << 20, 'x') + "\n\n \tcaf\xc3\xa9 \xff %s %n  ";
static LogCase const cases[] = {
    {"log_init", "lines go to the file", 1, "first", "first"},
    {"log_init", "lines go to a log that is open", 2, "open", "open"},
    {"print_log", "one call makes one line", 1, "alone", "alone\n"},
    {"print_log", "a value is no format", 1, "100%% one", "100%% one"}, // before one that crashes
    {"print_log", "a value is written whole, as it is", 1, large, large},
    {"log_init", "what the log holds stays", 1, "last", "alone"}};

void hostcheck::log(session_t* session, std::string const& folder) {
    auto const open_log = [](std::string const& file) {
        note("calling log_init");
        log_init(file.c_str(), static_cast<logging_state_t**>(nullptr));
    };
    auto const print = [&](std::string const& value) {
        note("calling print_log");
        print_log("hostcheck: %s", value.c_str());
        print_log("hostcheck: and the next line");
        open_log(env_get_string(session, "log_file")); // for a line may be written late
    };
    for (LogCase const& tried : cases)
        promise(tried.operation, tried.text, [&] {
            for (int opening = 0; opening < tried.openings; ++opening) open_log(folder + "/log");
            print(tried.value);
            std::string const log = read_file(folder + "/log");
            bool const is_twice = tried.logged == "alone\n" && log.find("alone\n\n") != log.npos;
            if (is_twice || log.find(tried.logged) == log.npos) expect(tried.logged, log);
        });
    promise("log_init", "an empty name is accepted", [&] {
        open_log("");
        print("none");
    });
}
