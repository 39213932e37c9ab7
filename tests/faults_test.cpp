// Each action is run with a fault at its first host call, or its first allocation, then at its
// second, and so on until the fault no longer comes to pass.

#include <gtest/gtest.h>

#include <cstdlib>
#include <new>

#include "tests/site.h"

namespace {

/// Which allocation from now on fails, but for those that the host makes; 0 for none.
long failing_allocation = 0;

void* allocate(std::size_t size) {
    bool const counts = failing_allocation > 0 && !trial::Session::current().in_host_call;
    if (counts && --failing_allocation == 0) throw std::bad_alloc();
    if (void* const memory = std::malloc(size)) return memory;
    throw std::bad_alloc();
}

} // namespace

void* operator new(std::size_t size) {
    return allocate(size);
}
void* operator new[](std::size_t size) {
    return allocate(size);
}
void operator delete(void* memory) noexcept {
    std::free(memory);
}
void operator delete[](void* memory) noexcept {
    std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
    std::free(memory);
}
void operator delete[](void* memory, std::size_t) noexcept {
    std::free(memory);
}

namespace {

struct HostFault {
    long call;
};

/// Runs the action with the fault set up, and takes the fault down again. Whether it came through.
bool fails_at_call(Site& site, char const* action, long point) {
    long call = 0;
    site.session.before_call = [&call, point](std::string const&) {
        if (++call == point) throw HostFault{point};
    };
    bool fails = false;
    try {
        site.run(action);
    } catch (HostFault const& fault) {
        fails = fault.call == point;
    }
    site.session.before_call = nullptr;
    EXPECT_EQ(fails, call >= point) << "the fault was swallowed";
    return fails;
}

bool fails_at_allocation(Site& site, char const* action, long point) {
    bool fails = false;
    failing_allocation = point;
    try {
        site.run(action);
    } catch (std::bad_alloc const&) {
        fails = true;
    }
    EXPECT_EQ(fails, failing_allocation == 0) << "the fault was swallowed";
    failing_allocation = 0;
    return fails;
}

class Faults : public testing::TestWithParam<char const*> {
  protected:
    void sweep(bool (*fails_at)(Site&, char const*, long)) {
        Site finished;
        finished.run("perform_integration");
        std::string const script = read_file(finished.script);
        int const result = finished.run(GetParam());
        long point = 0;
        for (bool fails = true; fails;) {
            SCOPED_TRACE("fault " + std::to_string(++point));
            Site site;
            site.run("perform_integration");
            std::string const before = read_file(site.script);
            fails = fails_at(site, GetParam(), point);
            EXPECT_EQ(site.session.open_databases, 0);
            EXPECT_EQ(read_file(site.script), before);
            EXPECT_EQ(site.run(GetParam()), result);
            EXPECT_TRUE(site.session.report.failures.empty())
                << testing::PrintToString(site.session.report.failures);
            if (HasFailure()) return;
        }
        RecordProperty("fault_points", static_cast<int>(point - 1));
        EXPECT_GT(point, 5);
    }
};

} // namespace

TEST_P(Faults, OfTheHostReachTheCaller) {
    sweep(fails_at_call);
}
TEST_P(Faults, OfAllocationReachTheCaller) {
    sweep(fails_at_allocation);
}

INSTANTIATE_TEST_SUITE_P(Actions, Faults, testing::ValuesIn(trial::action_names),
                         [](auto const& action) { return std::string(action.param); });
