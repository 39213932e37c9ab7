#pragma once

#include <memory>
#include <string>

/// A file of keys and values that the installer reads and rewrites.
class IniDb {
  public:
    /// `file` may be relative to `root`; `separator` stands between a key and its value.
    IniDb(std::string root, std::string file, std::string separator);
    ~IniDb();

    /// The plug-in passes `true` for `flag`, which is the installer's own.
    void setValue(std::string key, std::string value, bool flag);

    /// Writes the file. Reports no failure.
    void save();

  private:
    struct Contents;
    std::unique_ptr<Contents> contents_;
};
