// A check with the wb-trial that the environment variable WB_TRIAL names, beside what it does in
// its sandbox, the plain install and uninstall.

#include <benchmark/benchmark.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>

namespace fs = std::filesystem;

namespace {

/// A copy of the examples, with so many files in the workbench.
class Examples {
  public:
    explicit Examples(std::int64_t file_count) {
        fs::copy(EXAMPLES, folder, fs::copy_options::recursive);
        fs::path const workbench = folder / "workbench";
        for (std::int64_t count = 2; count < file_count; ++count) {
            fs::path const plugin = workbench / ("plugin-" + std::to_string(count / 1000));
            fs::create_directory(plugin);
            std::ofstream(plugin / std::to_string(count)) << "a plug-in of the workbench\n";
        }
    }
    ~Examples() { fs::remove_all(folder); }
    Examples(Examples const&) = delete;
    Examples& operator=(Examples const&) = delete;

    std::string wb_trial(std::string const& command) const {
        return "\"$WB_TRIAL\" " + command + " " + (folder / "session.toml").string() +
               " >/dev/null";
    }

  private:
    static inline int made = 0;
    fs::path folder = fs::temp_directory_path() /
                      ("check-bench-" + std::to_string(getpid()) + "-" + std::to_string(++made));
};

Examples const& examples(std::int64_t file_count) {
    static std::map<std::int64_t, Examples> all; // made once, for every run
    return all.try_emplace(file_count, file_count).first->second;
}

void run(benchmark::State& state, std::string const& command) {
    for ([[maybe_unused]] auto _ : state)
        if (std::system(command.c_str()) != 0) state.SkipWithError("wb-trial failed");
}

void check_ours(benchmark::State& state) {
    run(state, examples(state.range()).wb_trial("check"));
}

void check_bare(benchmark::State& state) {
    Examples const& product = examples(state.range());
    run(state, product.wb_trial("install") + " && " + product.wb_trial("uninstall"));
}

} // namespace

BENCHMARK(check_ours)->Arg(4)->Arg(60000)->UseRealTime();
BENCHMARK(check_bare)->Arg(4)->Arg(60000)->UseRealTime();
