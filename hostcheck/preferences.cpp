#include "host/ini_db.h"

#include <memory>
#include <sstream>

#include "hostcheck/hostcheck.h"

static std::string value_in(std::string const& file, std::string const& key) {
    std::istringstream lines(hostcheck::read_file(file));
    for (std::string line; std::getline(lines, line);)
        if (line.rfind(key, 0) == 0 && line.find('=') != std::string::npos)
            return line.substr(
                std::min(line.find_first_not_of(" \t", line.find('=') + 1), line.size()));
    return "no such key";
}

void hostcheck::check_preferences(Report& report, std::string const& folder) {
    std::string const with_key = folder + "/with.prefs", without_key = folder + "/without.prefs";
    auto const set = [&](char const* file, std::string const& value) {
        auto const preferences = std::make_unique<IniDb>(folder, file, std::string("="));
        preferences->setValue("home", value, true);
        preferences->save();
    };
    write_file(with_key, "first=1\nhome=old\nlast=2\n");
    write_file(without_key, "first=1\n");
    report.promise("IniDb", "a key that is there gets the value, with its blanks", [&] {
        set("with.prefs", "/opt/my product");
        return difference("/opt/my product", value_in(with_key, "home"));
    });
    report.promise("IniDb", "a key that is not there is added", [&] {
        set("without.prefs", "/opt/product");
        return difference("/opt/product", value_in(without_key, "home"));
    });
    report.promise("IniDb", "other keys are kept", [&] {
        return difference("1", value_in(with_key, "first")) +
               difference("2", value_in(with_key, "last")) +
               difference("1", value_in(without_key, "first"));
    });
}
