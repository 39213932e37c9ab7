#include "trial/plugin.h"

#include <dlfcn.h>
#include <sys/auxv.h>

#include "trial/exit_status.h"

namespace fs = std::filesystem;

namespace trial {

Plugin::Plugin(fs::path const& file)
    : library_(dlopen(fs::absolute(file).c_str(), RTLD_NOW | RTLD_LOCAL), dlclose) {
    if (!library_) throw StartError(file.string() + ": the library does not load: " + dlerror());
    for (char const* const name : action_names)
        if (!action(name)) throw StartError(file.string() + ": the library exports no " + name);
}

Plugin::Action Plugin::action(std::string const& name) const {
    return reinterpret_cast<Action>(dlsym(library_.get(), name.c_str()));
}

fs::path bundled_plugin() {
    // NOLINTNEXTLINE(performance-no-int-to-ptr)
    auto const* const program = reinterpret_cast<char const*>(getauxval(AT_EXECFN));
    fs::path const directory =
        fs::canonical(program).parent_path(); // without /proc, which may lack
    for (char const* const place : {".", TRIAL_LIBRARY_FROM_PROGRAM}) {
        fs::path library = (directory / place / TRIAL_LIBRARY_NAME).lexically_normal();
        if (fs::exists(library)) return library;
    }
    throw StartError(std::string(TRIAL_LIBRARY_NAME) + " is neither in " + directory.string() +
                     " nor in " TRIAL_LIBRARY_FROM_PROGRAM " from there; name it with --plugin");
}

} // namespace trial
