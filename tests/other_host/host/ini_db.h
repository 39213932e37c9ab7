#pragma once

#include <map>
#include <string>

class IniDb {
    std::map<std::string, std::string> entries_;

  public:
    IniDb(std::string, std::string, std::string);
    IniDb(std::string const&, std::string const&, bool);
    ~IniDb();
    bool setValue(std::string, std::string, bool);
    bool save();
};
