#include <memory>
#include <regex>
#include <sstream>

#include "host/ini_db.h"
#include "hostcheck/hostcheck.h"

static std::string const others = "first=1\nhomes=2\nmyhome=3\nat.home.too=4\nHome=5\nHOME=6\n"
                                  "other=home\nbytes=C:\\a\\nb caf\xc3\xa9 \xff\nlong=" +
                                  std::string(2U << 10, 'x') + "\n";

/// Notes a fault where the line is not the only one with its key. Blanks may stand around both.
static void expect_line(std::string const& file, std::string const& line) {
    std::string const key = "\n" + line.substr(0, line.find('=') + 1);
    std::string const text = std::regex_replace("\n" + hostcheck::read_file(file) + "\n",
                                                std::regex("[ \t\r]*(=|\n)[ \t]*"), "$1");
    std::size_t const begin = text.find(key) + 1; // 0, an empty line, where there is none
    hostcheck::expect(line, text.substr(begin, text.find('\n', begin) - begin));
    if (text.find(key, begin) != std::string::npos) hostcheck::fault("it is there twice");
}

void hostcheck::preferences(session_t*, std::string const& folder) {
    std::string const name = "part/x.prefs", with = folder + "/with", without = folder + "/without";
    auto const set = [&](std::string const& location, std::string const& before) {
        write_file(location + "/" + name, before);
        auto preferences = std::make_unique<IniDb>(location, name, std::string("="));
        preferences->setValue("home", location, true);
        preferences->save();
        preferences.reset();
        expect_line(location + "/" + name, "home=" + location);
    };
    promise("IniDb", "a key that is there gets the value",
            [&] { set(with, others + "home=old\nlast=7\n"); });
    promise("IniDb", "a key that is not there is added", [&] { set(without, others + "last=7"); });
    promise("IniDb", "other keys are kept", [&] {
        std::istringstream lines(others + "last=7\n");
        for (std::string line; std::getline(lines, line);)
            for (std::string const& location : {with, without})
                expect_line(location + "/" + name, line);
    });
    promise("IniDb", "a long or an odd location is written whole", [&] {
        set(folder + "/my product/$a#b=c caf\xc3\xa9\xff", "home=old\n");
        set(folder + "/" + std::string(150, 'x') + "/" + std::string(150, 'y'), "home=old\n");
    });
}
