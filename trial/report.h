#pragma once

#include <set>
#include <string>
#include <vector>

#include "sandbox/changes.h"
#include "trial/exit_status.h"

namespace trial {

/// Prints judgements on standard output, in colours where that is a terminal that has them and
/// NO_COLOR is not set, and remembers failures and warnings. A sentence that was told is not told
/// again. Control characters are escaped.
class Report {
  public:
    /// A strict one counts a warning as a failure.
    explicit Report(bool is_strict);

    /// `where` is the action or the command that failed.
    void failure(std::string const& where, std::string const& sentence, char const* indent = "");
    /// A failure after which nothing further is run.
    void stop(std::string const& where, std::string const& reason);
    void warning(std::string const& sentence, char const* indent = "");
    void note(std::string const& sentence, char const* indent = "");
    void success(std::string const& sentence) const;
    /// `remarks` stand below the changes, a line each.
    void changes(std::string const& title, std::vector<sandbox::Change> const& changes,
                 std::vector<std::string> const& remarks = {}) const;

    bool has_failed() const { return !failures_.empty(); }
    /// Prints all warnings and failures once more, then the verdict, and returns the status of the
    /// run. Throws std::runtime_error where the report could not be written.
    ExitStatus finish() const;

  private:
    /// Returns whether it was not told before.
    bool tell(char const* color, std::string const& kind, std::string const& sentence,
              char const* indent);
    void print(char const* color, std::string const& word, std::string const& text) const;
    void list(char const* color, std::string const& title, std::vector<std::string> const&) const;

    bool is_strict_, has_colors_;
    std::set<std::string> told_; ///< each with its kind
    std::vector<std::string> warnings_, failures_;
};

} // namespace trial
