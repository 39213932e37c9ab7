#include "host/services.h"
#include "hostcheck/hostcheck.h"

void hostcheck::check_log(Report& report, std::string const& folder) {
    auto const open_log = [&](std::string const& file) {
        logging_state_t** const no_state = nullptr;
        log_init(file.c_str(), no_state);
    };
    // Read when another log is open, for an installer need not write each line at once.
    auto const lacks = [&](std::string const& log, std::string const& text) {
        open_log(folder + "/other");
        std::string const found = read_file(log);
        return found.find(text) != std::string::npos ? "" : difference(text, found);
    };
    std::string const log = folder + "/log", lines = folder + "/lines", values = folder + "/values";
    report.promise("log_init", "the lines that follow go to that file, the second time too", [&] {
        open_log(log);
        open_log(log);
        print_log("hostcheck: one");
        return lacks(log, "hostcheck: one");
    });
    report.promise("log_init", "an empty name is accepted", [&] {
        open_log("");
        print_log("hostcheck: to no file");
        return "";
    });
    report.promise("print_log", "one call makes one line", [&] {
        open_log(lines);
        print_log("hostcheck: %s and %s", "two", "three");
        print_log("hostcheck: four");
        return lacks(lines, "hostcheck: two and three\n");
    });
    report.promise("print_log", "a value is written as it is", [&] {
        std::string const value = "100% %s %n " + std::string(1U << 20, 'x') + " end";
        open_log(values);
        print_log("hostcheck: %s", value.c_str());
        return lacks(values, value);
    });
}
