#pragma once

#include <cstdio>
#include <filesystem>
#include <map>
#include <memory>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "installer/outcome.h"
#include "installer/session.h"
#include "installer/show.h"

namespace installer {

/// Hears of every host call.
class CallListener {
  public:
    virtual ~CallListener() = default;
    /// Before the host does anything. What it throws comes out of the call.
    virtual void begins() {}
    /// After it, with the call, its arguments and its answer in words.
    virtual void ends(std::string const& call) = 0;
};

/// Preferences files by path, free of links; each with its text before it was saved for the first
/// time and after the last.
using SavedTexts = std::map<std::string, std::pair<std::string, std::string>>;

/// What the operations in host/ act on. There is one at a time, for most of them get no session.
struct Host {
    Session session;
    /// Lines go to standard error while there is none.
    std::unique_ptr<std::FILE, int (*)(std::FILE*)> log{nullptr, std::fclose};
    Outcome outcome; ///< of the action at work, or of the last one
    SavedTexts saved_preferences;
    std::string shell = "/bin/sh";
    bool separates_commands = false; ///< into process groups of their own
    std::string action;              ///< its name, for the report; empty for no report
    CallListener* listener = nullptr;

    Host() { current_ = this; }
    ~Host() { current_ = nullptr; }

    static Host& current() { return *current_; }

  private:
    inline static Host* current_ = nullptr;
};

/// The names of the components.
std::string show(std::vector<Component*> const& components);

/// Every host call goes through here: does `work` and returns its answer. The call is put into
/// words only for a listener.
template <typename Work, typename... Arguments>
auto host_call(Work work, char const* operation, Arguments const&... arguments) {
    CallListener* const listener = Host::current().listener;
    if (!listener) return work();
    listener->begins();
    std::string const call = show_call(operation, arguments...);
    if constexpr (std::is_void_v<decltype(work())>) {
        work();
        listener->ends(call);
    } else {
        auto answer = work();
        listener->ends(call + " = " + show(answer));
        return answer;
    }
}

/// The same for work that can fail: it gets the outcome of the action at work, to add failures to.
/// A std::filesystem::filesystem_error that it throws becomes one, for good.
template <typename Work, typename... Arguments>
void call_on_disk(Work work, char const* operation, Arguments const&... arguments) {
    auto const reported = [&] {
        Outcome& outcome = Host::current().outcome;
        try {
            work(outcome);
        } catch (std::filesystem::filesystem_error const& error) {
            outcome.fail_for_good(show_call(operation, arguments...) + " failed: " +
                                  error.code().message() + ": " + show(error.path1().string()));
        }
    };
    host_call(reported, operation, arguments...);
}

} // namespace installer
