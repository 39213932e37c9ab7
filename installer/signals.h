#pragma once

#include <sys/types.h>

#include <csignal>

namespace installer {

/// Holds SIGINT, SIGTERM and SIGHUP back while it lives, so that something is finished, removed or
/// passed on before one of them ends this process. One that is ignored stays ignored.
class HeldSignals {
  public:
    /// Throws std::system_error where there is no descriptor left.
    HeldSignals();
    ~HeldSignals();
    HeldSignals(HeldSignals const&) = delete;
    HeldSignals& operator=(HeldSignals const&) = delete;

    void release() const;

    /// One of the three that has come, or 0.
    static int pending();

    /// Waits until `input` can be read, one of the three comes or a child ends. Returns whether it
    /// was the first.
    bool wait(int input = -1) const;

    /// Sends the one that has come to the process, and to all that it started as far as /proc shows
    /// it. It stays pending here. What a terminal sends they have got already.
    void pass_on(pid_t process) const;

  private:
    sigset_t before_{};
    sigset_t three_{};
    int descriptor_;
};

} // namespace installer
