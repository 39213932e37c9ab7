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
    auto const environment = [](char const* name) {
        char const* const value = std::getenv(name);
        return std::string(value ? value : "");
    };
    return isatty(STDOUT_FILENO) == 1 && environment("NO_COLOR").empty() &&
           environment("TERM") != "dumb";
}

std::string counted(std::size_t number, std::string const& noun) {
    return std::to_string(number) + " " + noun + (number == 1 ? "" : "s");
}

/// The path and, in parentheses, the detail. Control characters are as they are.
std::string described(sandbox::Change const& change) {
    return change.path + (change.detail.empty() ? "" : " (" + change.detail + ")");
}

/// The first 20 lines of a difference, cut where they are long, and how many more there are. Of an
/// only hunk the line numbers are left out.
std::vector<std::string> shown_lines(std::string const& difference) {
    constexpr std::size_t most_lines = 20;
    constexpr std::size_t longest = 300;
    std::vector<std::string> lines;
    bool const has_one_hunk = difference.find("\n@@") == std::string::npos;
    std::istringstream stream(difference.substr(has_one_hunk ? difference.find('\n') + 1 : 0));
    std::size_t number = 0;
    for (std::string line; std::getline(stream, line); ++number)
        if (number < most_lines) lines.push_back(line.substr(0, longest));
    if (number > most_lines) lines.push_back(std::to_string(number - most_lines) + " more lines");
    return lines;
}

} // namespace

Report::Report(bool is_strict) : is_strict_(is_strict), has_colors_(wants_colors()) {}

void Report::print(char const* color, std::string const& word, std::string const& text) const {
    bool const is_plain = !has_colors_ || !*color;
    std::string const shown = installer::printable(word, "\t");
    std::cout << (is_plain ? shown : "\x1b[" + std::string(color) + "m" + shown + "\x1b[0m")
              << installer::printable(text, "\t") << '\n';
}

bool Report::tell(char const* color, std::string const& kind, std::string const& sentence,
                  char const* indent) {
    bool const is_new = told_.insert(kind + sentence).second;
    if (is_new) print(color, indent + kind, " " + sentence);
    return is_new;
}

void Report::failure(std::string const& where, std::string const& sentence, char const* indent) {
    if (tell(red, "failed:", sentence, indent)) failures_.push_back(where + ": " + sentence);
}

void Report::stop(std::string const& where, std::string const& reason) {
    print(red, "Stopped:", " " + reason + ".");
    failures_.push_back(where + ": " + reason);
}

void Report::warning(std::string const& sentence, char const* indent) {
    if (tell(yellow, "warning:", sentence, indent)) warnings_.push_back(sentence);
}

void Report::note(std::string const& sentence, char const* indent) {
    tell(yellow, "note:", sentence, indent);
}

void Report::success(std::string const& sentence) const {
    print(green, sentence, "");
}

void Report::changes(std::string const& title, std::vector<sandbox::Change> const& changes,
                     std::vector<std::string> const& remarks) const {
    std::cout << title << ":\n";
    if (changes.empty() && remarks.empty()) std::cout << "  nothing\n";
    for (sandbox::Change const& change : changes) {
        print(color_of(change.letter), std::string("  ") + change.letter, " " + described(change));
        for (std::string const& line : shown_lines(change.difference))
            print(color_of(line[0]), "      " + line, "");
    }
    for (std::string const& remark : remarks) print("", "  ", remark);
}

void Report::list(char const* color, std::string const& title,
                  std::vector<std::string> const& sentences) const {
    if (sentences.empty()) return;
    print(color, title + ":", "");
    for (std::string const& sentence : sentences) print(color, "  " + sentence, "");
}

ExitStatus Report::finish() const {
    std::string const warnings = counted(warnings_.size(), "warning");
    bool const counts_warnings = is_strict_ && !warnings_.empty();
    list(yellow, warnings + (counts_warnings ? ", counted by --strict" : ""), warnings_);
    list(red, counted(failures_.size(), "failure"), failures_);
    bool const has_passed = !has_failed() && !counts_warnings;
    if (!has_passed) print(red, "failed", "");
    else success(warnings_.empty() ? "passed" : "passed, with " + warnings);
    return status_of(has_passed);
}

} // namespace trial
