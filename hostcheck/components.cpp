#include "host/component_model.h"

#include <algorithm>

#include "hostcheck/hostcheck.h"

/// The files of all components that are to be installed, asked for as the plug-in does.
static std::vector<std::string> all_files(TSD& tsd) {
    std::vector<std::string> files;
    for (Component* const component : tsd.components()) {
        if (!component || component->name.empty() || !component->installCondition()) continue;
        ComponentProvider* const queried = component->provider();
        if (!queried) continue;
        auto const handle = queried->query(std::string(), component->name, std::string());
        ComponentProvider* const listing = handle ? component->provider() : nullptr;
        if (!listing) continue;
        for (std::string const& file : listing->fileList(handle)) files.push_back(file);
    }
    return files;
}

static std::string names(TSD& tsd) {
    std::string text;
    for (Component* const component : tsd.components())
        text += component ? component->name + "/" + component->subdir() + ";" : "null;";
    return text;
}

void hostcheck::check_components(Report& report, session_t* session) {
    TSD& tsd = session->tsd;
    report.promise("components", "each call returns the same components", [&] {
        return tsd.components() == tsd.components() ? "" : "the second list is another one";
    });
    report.promise("components", "names and sub-directories are intact after 10,000 calls", [&] {
        Fault fault;
        std::string const before = names(tsd);
        for (int round = 0; round < 10000 && fault.empty(); ++round)
            fault = difference(before, names(tsd));
        return fault;
    });
    report.promise("fileList", "as the ninth operation, it lists paths", [&] {
        auto const is_control = [](unsigned char byte) { return byte < ' '; };
        for (std::string const& file : all_files(tsd))
            if (std::any_of(file.begin(), file.end(), is_control))
                return difference("a path", file);
        return Fault();
    });
    report.promise("fileList", "each call lists the same", [&] {
        return all_files(tsd) == all_files(tsd) ? "" : "the second list is another one";
    });
}
