// Each work twice: as the plug-in does it, and bare, with only the host calls, or the tool, that
// the work cannot be done without.

#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>

#include "actions/actions.h"
#include "bench/host.h"
#include "host/services.h"
#include "workbench/configuration.h"
#include "workbench/installation.h"
#include "workbench/split_by_delimiter.h"

namespace fs = std::filesystem;
using workbench_int::init_wb_prefs;
using workbench_int::validate_wb_path;

namespace {

/// Runs `each_file` as the bare walk over a session's components and files.
template <typename EachFile>
void walk(bench::Session& session, EachFile each_file) {
    for (Component* component : session.tsd.components()) {
        if (!component->installCondition()) continue;
        void* const handle = component->provider()->query("", component->name, "");
        for (std::string const& file : component->provider()->fileList(handle)) each_file(file);
    }
}

void get_wb_integration_ours(benchmark::State& state) {
    bench::Session session(static_cast<std::size_t>(state.range()));
    for ([[maybe_unused]] auto _ : state)
        benchmark::DoNotOptimize(get_wb_integration(session.tsd.components()));
}

void get_wb_integration_bare(benchmark::State& state) {
    bench::Session session(static_cast<std::size_t>(state.range()));
    for ([[maybe_unused]] auto _ : state)
        walk(session, [](std::string const& file) {
            print_log("workbench_int: current_file: %s", file.c_str());
        });
}

void init_wb_prefs_ours(benchmark::State& state) {
    bench::Session session(static_cast<std::size_t>(state.range()));
    session.variables["WB_PREFS"] = "workbench.prefs";
    for ([[maybe_unused]] auto _ : state) init_wb_prefs(&session);
}

void init_wb_prefs_bare(benchmark::State& state) {
    bench::Session session(static_cast<std::size_t>(state.range()));
    session.variables["WB_PREFS"] = "workbench.prefs";
    for ([[maybe_unused]] auto _ : state)
        walk(session, [&session](std::string const&) {
            benchmark::DoNotOptimize(env_get_string(&session, "WB_PREFS"));
        });
}

/// A folder with an "install.properties" of so many bytes, which names version 3.1 at its end.
class Workbench {
  public:
    explicit Workbench(std::int64_t size) {
        fs::create_directories(folder);
        std::ofstream stream(properties);
        for (std::int64_t written = 0; written < size;) {
            std::string const line = "plugin.number" + std::to_string(written) + ".name=value\n";
            stream << line;
            written += static_cast<std::int64_t>(line.size());
        }
        stream << "name=3.1\n";
    }
    ~Workbench() { fs::remove_all(folder); }
    Workbench(Workbench const&) = delete;
    Workbench& operator=(Workbench const&) = delete;

    std::string const folder = (fs::temp_directory_path() / "workbench").string();
    std::string const properties = folder + "/install.properties";
};

void is_supported_ours(benchmark::State& state) {
    Workbench const workbench(state.range());
    for ([[maybe_unused]] auto _ : state)
        if (!is_supported(workbench.properties, "name=3.1"))
            throw std::runtime_error("the version is not found");
}

void is_supported_bare(benchmark::State& state) {
    Workbench const workbench(state.range());
    std::string const command = "grep -qF name=3.1 " + workbench.properties;
    for ([[maybe_unused]] auto _ : state)
        if (std::system(command.c_str()) != 0) throw std::runtime_error("the version is not found");
}

void validate_wb_path_ours(benchmark::State& state) {
    Workbench const workbench(1024);
    bench::Session session(0);
    std::string versions;
    for (std::int64_t number = 1; number < state.range(); ++number)
        versions += "2." + std::to_string(number) + ";";
    session.variables = {{"WB_INTEGRATION_PATH", workbench.folder},
                         {"SUPPORTED_VERSION", versions + "3.1;"}};
    for ([[maybe_unused]] auto _ : state) validate_wb_path(&session);
    if (session.variables["PATH_STATUS"] != "ok") throw std::runtime_error("PATH_STATUS is not ok");
}

void validate_wb_path_bare(benchmark::State& state) {
    Workbench const workbench(1024);
    bench::Session session(0);
    char bytes[4096];
    for ([[maybe_unused]] auto _ : state) {
        is_file(path(workbench.properties));
        for (std::int64_t number = 0; number < state.range(); ++number) {
            int const file = open(path(workbench.properties).c_str(), O_RDONLY);
            while (read(file, bytes, sizeof bytes) > 0) {
            }
            close(file);
        }
        is_writable(path(workbench.folder));
        env_set_string(&session, "PATH_STATUS", "ok");
    }
}

std::string directories(std::int64_t count) {
    std::string text;
    for (std::int64_t number = 0; number < count; ++number)
        text += "/opt/workbench-" + std::to_string(number) + " ";
    return text;
}

void split_by_delimiter_ours(benchmark::State& state) {
    std::string const text = directories(state.range());
    for ([[maybe_unused]] auto _ : state) benchmark::DoNotOptimize(split_by_delimiter(text, ' '));
}

void split_by_delimiter_bare(benchmark::State& state) {
    std::string const text = directories(state.range());
    for ([[maybe_unused]] auto _ : state) {
        std::vector<std::string> fields;
        std::size_t begin = 0;
        for (std::size_t end = 0; (end = text.find(' ', begin)) != std::string::npos;
             begin = end + 1)
            fields.push_back(text.substr(begin, end - begin));
        benchmark::DoNotOptimize(fields);
    }
}

} // namespace

BENCHMARK(get_wb_integration_ours)->Arg(1000)->Arg(20000)->Arg(200000);
BENCHMARK(get_wb_integration_bare)->Arg(1000)->Arg(20000)->Arg(200000);
BENCHMARK(init_wb_prefs_ours)->Arg(1000)->Arg(20000)->Arg(200000);
BENCHMARK(init_wb_prefs_bare)->Arg(1000)->Arg(20000)->Arg(200000);
BENCHMARK(is_supported_ours)->Arg(1 << 10)->Arg(1 << 20)->Arg(1 << 26)->UseRealTime();
BENCHMARK(is_supported_bare)->Arg(1 << 10)->Arg(1 << 20)->Arg(1 << 26)->UseRealTime();
BENCHMARK(validate_wb_path_ours)->Arg(1)->Arg(10)->Arg(100);
BENCHMARK(validate_wb_path_bare)->Arg(1)->Arg(10)->Arg(100);
BENCHMARK(split_by_delimiter_ours)->Arg(10)->Arg(10000);
BENCHMARK(split_by_delimiter_bare)->Arg(10)->Arg(10000);
