#pragma once

#include <algorithm>
#include <csignal>
#include <iterator>

namespace installer {

/// Holds SIGINT, SIGTERM and SIGHUP back while it lives, so that something is finished or removed
/// before one of them ends the process.
class HeldSignals {
  public:
    HeldSignals() {
        sigset_t held;
        sigemptyset(&held);
        for (int const number : numbers) sigaddset(&held, number);
        sigprocmask(SIG_BLOCK, &held, &before_);
    }
    ~HeldSignals() { release(); }
    HeldSignals(HeldSignals const&) = delete;
    HeldSignals& operator=(HeldSignals const&) = delete;

    void release() const { sigprocmask(SIG_SETMASK, &before_, nullptr); }

    static bool are_pending() {
        sigset_t pending;
        sigpending(&pending);
        return std::any_of(std::begin(numbers), std::end(numbers),
                           [&](int number) { return sigismember(&pending, number) == 1; });
    }

  private:
    static constexpr int numbers[] = {SIGINT, SIGTERM, SIGHUP};
    sigset_t before_{};
};

} // namespace installer
