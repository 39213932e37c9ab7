#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "host/component_model.h"

namespace installer {

/// Lists the files that one component installs.
class FileProvider final : public ComponentProvider {
  public:
    std::vector<std::string> files;

    void* query(std::string first, std::string component, std::string third) override;
    std::vector<std::string> fileList(void* handle) override;
};

struct ProductComponent : Component {
    bool install_condition = true;
    std::string subdirectory;
    std::unique_ptr<FileProvider> file_provider = std::make_unique<FileProvider>();
};

/// What an installer knows of the product that it installs.
struct Session : session_t {
    std::map<std::string, std::string> variables;
    std::vector<std::unique_ptr<ProductComponent>> components; ///< an entry may be null

    /// The variable's value, or the empty string.
    std::string value(std::string const& name) const {
        auto const variable = variables.find(name);
        return variable == variables.end() ? "" : variable->second;
    }
};

} // namespace installer
