#include "host/ini_db.h"

#include <fstream>

#include "hostcheck/hostcheck.h"

static void expect_value(std::string const& file, char const* key, char const* value) {
    std::ifstream stream(file);
    for (std::string name, found; std::getline(stream, name, '=');) {
        std::getline(stream >> std::ws, found);
        if (name.find(key) != std::string::npos) return hostcheck::expect(value, found);
    }
    hostcheck::fault(std::string("no value is there for ") + key);
}

void hostcheck::preferences(session_t*, std::string const& folder) {
    auto const set_home = [&](std::string const& name, char const* before) {
        write_file(folder + "/" + name, before);
        IniDb preferences(folder, name, std::string("="));
        preferences.setValue("home", "/opt/my product", true);
        preferences.save();
        expect_value(folder + "/" + name, "home", "/opt/my product");
    };
    promise("IniDb", "a key that is there gets the value, with its blanks",
            [&] { set_home("with", "first=1\nhome=old\nlast=2\n"); });
    promise("IniDb", "a key that is not there is added", [&] { set_home("without", "first=1\n"); });
    promise("IniDb", "other keys are kept", [&] {
        expect_value(folder + "/with", "first", "1");
        expect_value(folder + "/with", "last", "2");
        expect_value(folder + "/without", "first", "1");
    });
}
