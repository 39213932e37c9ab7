// A check with wb-trial beside what it does in its sandbox, the plain install and uninstall. run.sh
// names the program in WB_TRIAL, and removes the temporary directory.

#include <benchmark/benchmark.h>

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>

namespace fs = std::filesystem;

namespace {

/// The command line for a copy of the examples with so many files in the workbench, which is made
/// once for all runs.
std::string wb_trial(std::string const& command, std::int64_t file_count) {
    fs::path const folder = fs::temp_directory_path() / ("examples-" + std::to_string(file_count));
    if (!fs::exists(folder)) {
        fs::copy(EXAMPLES, folder, fs::copy_options::recursive);
        for (std::int64_t count = 2; count < file_count; ++count) {
            fs::path const plugin = folder / "workbench" / std::to_string(count / 1000);
            fs::create_directory(plugin);
            std::ofstream(plugin / std::to_string(count)) << "a plug-in of the workbench\n";
        }
    }
    return "\"$WB_TRIAL\" " + command + " " + (folder / "session.toml").string() + " >/dev/null";
}

void run(benchmark::State& state, std::string const& command) {
    for ([[maybe_unused]] auto _ : state)
        if (std::system(command.c_str()) != 0) throw std::runtime_error("failed: " + command);
}

void check_ours(benchmark::State& state) {
    run(state, wb_trial("check", state.range()));
}

void check_bare(benchmark::State& state) {
    run(state, wb_trial("install", state.range()) + " && " + wb_trial("uninstall", state.range()));
}

} // namespace

BENCHMARK(check_ours)->Arg(4)->Arg(60000)->UseRealTime();
BENCHMARK(check_bare)->Arg(4)->Arg(60000)->UseRealTime();
