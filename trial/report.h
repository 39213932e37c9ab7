#pragma once

#include <string>
#include <vector>

#include "sandbox/changes.h"

namespace trial {

/// Prints judgements on standard output, in colours where that is a terminal and NO_COLOR is not
/// set, and remembers the failures. Control characters are escaped.
class Report {
  public:
    Report();

    /// `where` is the action or the command that failed.
    void failure(std::string const& where, std::string const& sentence, char const* indent = "");
    /// A failure that is printed in other words.
    void remember(std::string const& where, std::string const& sentence);
    void warning(std::string const& sentence, char const* indent = "") const;
    void note(std::string const& sentence, char const* indent = "") const;
    void success(std::string const& sentence) const;
    void changes(std::string const& title, std::vector<sandbox::Change> const& changes) const;

    /// All failures once more, each with where it was, or nothing.
    void summary() const;

  private:
    void print(char const* color, std::string const& word, std::string const& text) const;

    bool has_colors_;
    std::vector<std::string> failures_;
};

} // namespace trial
