#include "workbench/installation.h"

#include <algorithm>
#include <cstring>
#include <fstream>
#include <locale>

#include "host/services.h"

namespace workbench_int {

namespace {

/// Whether `key` stands in what is left of the stream. Reads block by block and keeps the end of
/// one block for the next, so that a file of any size, even of a single word, costs little memory.
bool contains(std::istream& stream, std::string const& key) {
    if (key.empty()) return true;
    constexpr std::size_t block_size = std::size_t{16} * 1024;
    std::string window(key.size() - 1 + block_size, '\0');
    std::size_t kept = 0;
    do {
        stream.read(&window[kept], block_size);
        std::size_t const end = kept + static_cast<std::size_t>(stream.gcount());
        if (memmem(window.data(), end, key.data(), key.size())) return true;
        kept = std::min(end, key.size() - 1);
        std::memmove(&window[0], &window[end - kept], kept);
    } while (stream);
    return false;
}

} // namespace

} // namespace workbench_int

bool is_wb_path(std::string directory) {
    return is_file(path(directory + "/install.properties")) != 0;
}

bool is_supported(std::string properties, std::string version_key) {
    std::ifstream file(properties);
    file.imbue(std::locale::classic());
    if (!file) return false;

    // No word contains white space, so a key without any stands in a word wherever it stands.
    if (version_key.find_first_of(" \t\n\r\v\f") != std::string::npos) return false;
    if (!workbench_int::contains(file, version_key)) return false;

    print_log("workbench_int: %s is found", version_key.c_str());
    return true;
}
