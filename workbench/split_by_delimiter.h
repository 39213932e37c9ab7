#pragma once

#include <string>
#include <vector>

/// The fields of `text` between the delimiters, in order and untrimmed. Empty fields are kept, but
/// a delimiter at the very end opens no further field.
std::vector<std::string> split_by_delimiter(std::string text, char delimiter);
