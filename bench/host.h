#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "host/component_model.h"

namespace bench {

struct Provider final : ComponentProvider {
    std::vector<std::string> files;

    void* query(std::string, std::string, std::string) override { return &files; }
    std::vector<std::string> fileList(void*) override { return files; }
};

/// A host that does no more than each call needs: a plug-in's own cost shows beside it. Its log
/// lines are formatted and dropped.
struct Session : session_t {
    std::map<std::string, std::string> variables;
    Component component;
    Provider provider;

    explicit Session(std::size_t file_count);
};

} // namespace bench
