#pragma once

#include <set>
#include <string>
#include <vector>

namespace installer {

/// What an action did, beside its result.
struct Outcome {
    std::vector<std::string> written; ///< the variables that it wrote, in order
    std::set<std::string> read;       ///< the variables that it read
    std::string copy;                 ///< the directory that it had a configuration copied into

    std::vector<std::string> failures; ///< in words; the plug-in ignores them
    std::vector<std::string> notes;    ///< worth knowing, and no failures
    bool has_failed_for_good = false;  ///< what fails afterwards only follows from it

    /// Does nothing where it has failed for good.
    void fail(std::string const& sentence) {
        if (!has_failed_for_good) failures.push_back(sentence);
    }
    void fail_for_good(std::string const& sentence) {
        fail(sentence);
        has_failed_for_good = true;
    }
};

} // namespace installer
