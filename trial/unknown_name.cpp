#include "trial/unknown_name.h"

#include <algorithm>
#include <numeric>
#include <utility>

#include "installer/show.h"

namespace trial {

namespace {

/// How many letters have to be added, left out or replaced to make one of the other.
std::size_t distance(std::string const& one, std::string const& other) {
    std::vector<std::size_t> row(other.size() + 1);
    std::iota(row.begin(), row.end(), 0U);
    for (std::size_t line = 1; line <= one.size(); ++line) {
        std::size_t diagonal = std::exchange(row[0], line);
        for (std::size_t column = 1; column <= other.size(); ++column) {
            std::size_t const replaced = diagonal + (one[line - 1] != other[column - 1]);
            diagonal = row[column];
            row[column] = std::min({row[column] + 1, row[column - 1] + 1, replaced});
        }
    }
    return row.back();
}

} // namespace

std::string unknown_name(std::string const& kind, std::string const& name,
                         std::vector<std::string> const& known) {
    auto const nearest = std::min_element(known.begin(), known.end(),
                                          [&](std::string const& one, std::string const& other) {
                                              return distance(name, one) < distance(name, other);
                                          });
    bool const is_similar = distance(name, *nearest) <= name.size() / 2;
    return "unknown " + kind + " " + name + "; " +
           (is_similar ? "did you mean " + *nearest + "?" : "known are " + enumerated(known));
}

std::string enumerated(std::vector<std::string> const& names) {
    std::string list;
    for (std::string const& name : names)
        list += (list.empty() ? "" : ", ") + installer::show(name);
    return list.empty() ? "nothing" : list;
}

} // namespace trial
