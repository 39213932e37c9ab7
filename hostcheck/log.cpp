#include "hostcheck/hostcheck.h"

void hostcheck::log(session_t* session, std::string const& folder) {
    auto const open_log = [](std::string const& file) {
        log_init(file.c_str(), static_cast<logging_state_t**>(nullptr));
    };
    auto const try_log = [&](char const* operation, char const* text, std::string const& file,
                             int times, std::string const& value, std::string const& logged) {
        promise(operation, text, [&] {
            for (int time = 0; time < times; ++time) open_log(file);
            print_log("hostcheck: %s", value.c_str());
            print_log("hostcheck: and the next line");
            // Read when the installer's own is open again, for a line may be written late.
            open_log(env_get_string(session, "log_file"));
            std::string const found = read_file(file);
            bool const ends_twice = found.find("three\n\n") != std::string::npos;
            if (found.find(logged) == std::string::npos || ends_twice) expect(logged, found);
        });
    };
    std::string const large = "100% %s %n " + std::string(1U << 20, 'x') + " end";
    try_log("log_init", "lines go to the file", folder + "/one", 1, "one", "one");
    try_log("log_init", "lines go to a file that is open", folder + "/two", 2, "two", "two");
    try_log("log_init", "an empty name is accepted", "", 1, "none", "");
    try_log("print_log", "one call makes one line", folder + "/three", 1, "three", "three\n");
    try_log("print_log", "a value is written as it is", folder + "/large", 1, large, large);
}
