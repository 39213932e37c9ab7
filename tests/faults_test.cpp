// Each action is run with a fault at the first of its host calls and allocations, then at the
// second, and so on until the fault no longer comes to pass.

#include <new>

#include "tests/site.h"

static long remaining = 0; ///< of those, up to the one that fails
static bool is_host_at_work = false;

// clang-format off
static bool has_to_fail() { return !is_host_at_work && --remaining == 0; }
static void* allocate(std::size_t size) {
    void* const memory = has_to_fail() ? nullptr : std::malloc(size);
    return memory ? memory : throw std::bad_alloc();
}

void* operator new(std::size_t size) { return allocate(size); }
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t /*size*/) noexcept { std::free(memory); }
// clang-format on

TEST(Faults, ReachTheCallerAndLeaveTheScriptWhole) {
    struct FaultySite : Site {
        void begins() override {
            if (has_to_fail()) throw std::bad_alloc();
            is_host_at_work = true;
        }
        void ends(std::string const& call) override {
            is_host_at_work = false;
            preferences += int(call.rfind("IniDb(", 0) == 0) - int(call == "~IniDb()");
        }
        int preferences = 0; ///< open ones
    };
    for (char const* const name : trial::action_names) {
        auto const action = plugin.action(name);
        bool fails = true;
        for (long point = 1; fails && !HasFailure(); ++point) {
            SCOPED_TRACE(name + (", fault " + std::to_string(point)));
            FaultySite site;
            site.run(workbench_int::perform_integration);
            std::string const script = read_file(site.script);
            remaining = point;
            try {
                site.run(action);
                fails = false;
            } catch (std::bad_alloc const&) {
            }
            EXPECT_EQ(std::exchange(remaining, 0) <= 0, fails) << "the fault was swallowed";
            EXPECT_TRUE(fails || point > 10);
            EXPECT_EQ(site.preferences, 0);
            EXPECT_EQ(read_file(site.script), script);
            EXPECT_EQ(site.run(action), 0);
            EXPECT_EQ(site.host.outcome.failures, Texts());
        }
    }
}
