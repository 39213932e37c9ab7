#include "workbench/components.h"

#include <map>

#include "hostcheck/hostcheck.h"

/// Those that are to be installed, and their names.
static std::map<Component*, std::string> chosen_of(std::vector<Component*> const& all) {
    std::map<Component*, std::string> chosen;
    for (Component* const entry : all)
        if (workbench_int::is_to_be_installed(entry)) chosen[entry] = entry->name;
    return chosen;
}

void hostcheck::components(session_t* session, std::string const&) {
    std::vector<Component*> all;
    std::map<Component*, std::string> chosen;
    std::size_t for_workbench = 0, paths = 0;
    promise("components", "each call returns the same components", [&] {
        all = session->tsd.components();
        if (session->tsd.components() != all) fault("it is another list");
        if (all.empty()) skip("the session has none");
    });
    promise("installCondition", "names and answers are the same after 10,000 calls", [&] {
        chosen = chosen_of(all);
        if (chosen.empty()) skip("no component is to be installed");
        for (std::size_t calls = 0; calls < 10000 && !chosen.empty(); calls += all.size())
            if (chosen_of(session->tsd.components()) != chosen) return fault("others come out");
    });
    promise("subdir", "it is empty or begins with a slash", [&] {
        for (auto const& [component, name] : chosen) {
            if (name.find("workbench") == std::string::npos) continue;
            ++for_workbench;
            std::string const subdir = component->subdir();
            if (!subdir.empty() && subdir[0] != '/') expect("/" + subdir, subdir);
        }
        if (for_workbench == 0) skip("no component to be installed is named for the workbench");
    });
    promise("provider, query, fileList", "the ninth lists paths, always the same", [&] {
        for (auto const& [component, name] : chosen) {
            auto const files = workbench_int::installed_files(*component);
            if (workbench_int::installed_files(*component) != files) fault("it is another list");
            for (std::string const& file : files)
                for (char const character : file)
                    if (static_cast<unsigned char>(character) < ' ') fault("no path: " + file);
            paths += files.size();
        }
        if (paths == 0) skip("no component to be installed lists a file");
    });
    note(std::to_string(all.size()) + " components, " + std::to_string(chosen.size()) +
         " to install, " + std::to_string(for_workbench) + " with \"workbench\", " +
         std::to_string(paths) + " paths");
}
