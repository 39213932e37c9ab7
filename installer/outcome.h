#pragma once

#include <set>
#include <string>
#include <vector>

namespace installer {

/// What an action did, beside its result.
struct Outcome {
    std::vector<std::string> written; ///< the variables that it wrote, in order
    std::set<std::string> read;       ///< the variables that it read
    std::string output;               ///< of its command; where there is much, the end
    std::size_t output_size = 0;      ///< of all the output, in bytes
    std::string copy;                 ///< the directory that it had a configuration copied into
    bool was_there = false;           ///< whether that directory was there before

    std::vector<std::string> failures; ///< in words; the plug-in ignores them
    std::vector<std::string> notes;    ///< worth knowing, and no failures

    void fail(std::string const& sentence) { failures.push_back(sentence); }
};

} // namespace installer
