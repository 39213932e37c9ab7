#include "installer/signals.h"

#include <poll.h>
#include <sys/signalfd.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <ctime>
#include <fstream>
#include <iterator>
#include <string>
#include <system_error>
#include <vector>

namespace installer {

namespace {

constexpr std::array<int, 3> numbers = {SIGINT, SIGTERM, SIGHUP};

void send_to_tree(pid_t process, int number) {
    std::string const name = std::to_string(process);
    std::ifstream stream("/proc/" + name + "/task/" + name + "/children");
    std::vector<pid_t> const children{std::istream_iterator<pid_t>(stream), {}};
    kill(process, number); // before its children, or it would go on when they have ended
    for (pid_t const child : children) send_to_tree(child, number);
}

} // namespace

HeldSignals::HeldSignals() {
    sigemptyset(&three_);
    for (int const number : numbers) {
        struct sigaction action {};
        sigaction(number, nullptr, &action);
        if (action.sa_handler != SIG_IGN) sigaddset(&three_, number);
    }
    sigset_t all = three_;
    sigaddset(&all, SIGCHLD);
    descriptor_ = signalfd(-1, &all, SFD_CLOEXEC);
    if (descriptor_ == -1) throw std::system_error(errno, std::generic_category(), "hold signals");
    sigprocmask(SIG_BLOCK, &all, &before_);
}

HeldSignals::~HeldSignals() {
    close(descriptor_);
    release();
}

void HeldSignals::release() const {
    sigprocmask(SIG_SETMASK, &before_, nullptr);
}

int HeldSignals::pending() {
    sigset_t pending;
    sigpending(&pending);
    for (int const number : numbers)
        if (sigismember(&pending, number) == 1) return number;
    return 0;
}

bool HeldSignals::wait(int input) const {
    std::array<pollfd, 2> sources = {{{input, POLLIN, 0}, {descriptor_, POLLIN, 0}}};
    poll(sources.data(), sources.size(), -1);
    sigset_t ended;
    sigemptyset(&ended);
    sigaddset(&ended, SIGCHLD);
    timespec const at_once{};
    sigtimedwait(&ended, nullptr, &at_once);
    return sources[0].revents != 0;
}

void HeldSignals::pass_on(pid_t process) const {
    siginfo_t signal{};
    sigwaitinfo(&three_, &signal);
    if (signal.si_code != SI_KERNEL) send_to_tree(process, signal.si_signo);
    raise(signal.si_signo);
}

} // namespace installer
