#include "trial/report.h"

#include <unistd.h>

#include <cstdlib>
#include <iostream>
#include <sstream>
#include <string_view>

#include "installer/show.h"

namespace trial {

namespace {

constexpr char const* red = "31";
constexpr char const* green = "32";
constexpr char const* yellow = "33";
constexpr char const* cyan = "36";

/// The colours of git, for a change and for a line of a difference.
char const* color_of(char letter) {
    for (auto const& [letters, color] :
         {std::pair("A+", green), {"D-", red}, {"MT", yellow}, {"@", cyan}})
        if (std::string_view(letters).find(letter) != std::string_view::npos) return color;
    return "";
}

bool wants_colors() {
    char const* const refusal = std::getenv("NO_COLOR");
    return isatty(STDOUT_FILENO) == 1 && !(refusal && *refusal);
}

/// The path and, in parentheses, the detail. Control characters are as they are.
std::string described(sandbox::Change const& change) {
    return change.path + (change.detail.empty() ? "" : " (" + change.detail + ")");
}

/// The first 20 lines of a difference, cut where they are long, and how many more there are.
std::vector<std::string> shown_lines(std::string const& difference) {
    constexpr std::size_t most_lines = 20;
    constexpr std::size_t longest = 300;
    std::vector<std::string> lines;
    std::istringstream stream(difference);
    std::size_t number = 0;
    for (std::string line; std::getline(stream, line); ++number)
        if (number < most_lines) lines.push_back(line.substr(0, longest));
    if (number > most_lines) lines.push_back(std::to_string(number - most_lines) + " more lines");
    return lines;
}

} // namespace

Report::Report() : has_colors_(wants_colors()) {}

void Report::print(char const* color, std::string const& word, std::string const& text) const {
    bool const is_plain = !has_colors_ || !*color;
    std::cout << (is_plain ? word : "\x1b[" + std::string(color) + "m" + word + "\x1b[0m")
              << installer::printable(text, "\t") << '\n';
}

void Report::failure(std::string const& where, std::string const& sentence, char const* indent) {
    print(red, indent + std::string("failed:"), " " + sentence);
    remember(where, sentence);
}

void Report::remember(std::string const& where, std::string const& sentence) {
    failures_.push_back(where + ": " + sentence);
}

void Report::warning(std::string const& sentence, char const* indent) const {
    print(yellow, indent + std::string("warning:"), " " + sentence);
}

void Report::note(std::string const& sentence, char const* indent) const {
    print(yellow, indent + std::string("note:"), " " + sentence);
}

void Report::success(std::string const& sentence) const {
    print(green, sentence, "");
}

void Report::changes(std::string const& title, std::vector<sandbox::Change> const& changes) const {
    std::cout << title << ":\n";
    if (changes.empty()) std::cout << "  nothing\n";
    for (sandbox::Change const& change : changes) {
        print(color_of(change.letter), std::string("  ") + change.letter, " " + described(change));
        for (std::string const& line : shown_lines(change.difference))
            print(color_of(line[0]), "      " + installer::printable(line, "\t"), "");
    }
}

ExitStatus Report::finish() const {
    if (has_failed())
        std::cout << failures_.size() << (failures_.size() == 1 ? " failure:\n" : " failures:\n");
    for (std::string const& failure : failures_) print("", "  ", failure);
    return status_of(!has_failed());
}

} // namespace trial
