#include "workbench/components.h"
#include "hostcheck/hostcheck.h"

using namespace workbench_int;

/// What find_wb_components asks for: the names, up to the one whose sub-directory it takes.
static std::string names(TSD& tsd) {
    std::string text;
    for (Component* const entry : tsd.components()) {
        if (!is_to_be_installed(entry)) continue;
        text += entry->name + ";";
        if (entry->name.find("workbench") != std::string::npos) return text + entry->subdir();
    }
    return text;
}

void hostcheck::components(session_t* session, std::string const&) {
    TSD& tsd = session->tsd;
    promise("components", "each call returns the same components", [&] {
        if (tsd.components() != tsd.components()) fault("it is another list");
    });
    promise("installCondition, subdir", "names are intact after 10,000 calls", [&] {
        std::string const before = names(tsd);
        for (int round = 0; round < 10000; ++round)
            if (names(tsd) != before) return expect(before, names(tsd));
    });
    promise("provider, query, fileList", "the ninth lists paths, always the same", [&] {
        for (Component* const entry : tsd.components()) {
            if (!is_to_be_installed(entry)) continue;
            std::vector<std::string> const files = installed_files(*entry);
            if (installed_files(*entry) != files) fault("it is another list");
            for (std::string const& file : files)
                for (char const character : file)
                    if (static_cast<unsigned char>(character) < ' ') fault("no path: " + file);
        }
    });
}
