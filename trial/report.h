#pragma once

#include <string>
#include <vector>

#include "sandbox/changes.h"
#include "trial/exit_status.h"

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

    bool has_failed() const { return !failures_.empty(); }
    /// Prints all failures once more, each with where it was, and returns the status of the run.
    /// Throws std::runtime_error where the report could not be written.
    ExitStatus finish() const;

  private:
    void print(char const* color, std::string const& word, std::string const& text) const;

    bool has_colors_;
    std::vector<std::string> failures_;
};

} // namespace trial
