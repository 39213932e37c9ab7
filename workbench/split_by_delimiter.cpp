#include "workbench/split_by_delimiter.h"

#include <sstream>

std::vector<std::string> split_by_delimiter(std::string text, char delimiter) {
    std::stringstream stream(text);
    stream.exceptions(std::ios::badbit); // or the stream would swallow a failed allocation

    std::vector<std::string> fields;
    for (std::string field; std::getline(stream, field, delimiter);) fields.push_back(field);
    return fields;
}
