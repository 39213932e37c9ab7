#pragma once

#include <fstream>
#include <set>
#include <string>
#include <type_traits>
#include <vector>

#include "trial/session.h"
#include "trial/show.h"

namespace trial {

/// Hears of every host call.
class CallListener {
  public:
    virtual ~CallListener() = default;
    /// Before the host does anything. What it throws comes out of the call.
    virtual void begins() {}
    /// After it, with the call, its arguments and its answer in words.
    virtual void ends(std::string const& call) = 0;
};

/// What an action came to, beside its result.
struct Outcome {
    std::vector<std::string> written; ///< the variables that it wrote, in order
    std::set<std::string> read;       ///< the variables that it read
    std::string output;               ///< what its command said; of much, the end
    std::size_t output_size = 0;      ///< how much that was, in bytes
    std::string copy;                 ///< the directory that it had a configuration copied into
    bool was_there = false;           ///< whether that directory was there before

    std::vector<std::string> failures; ///< what went wrong and the plug-in passed over, in words
    std::vector<std::string> notes;    ///< what is worth knowing and no failure

    void fail(std::string const& sentence) { failures.push_back(sentence); }
};

/// The host that stands in: what the operations in host/ act on. One at a time, for most of them
/// are given no session.
struct Host {
    Session session;
    std::ofstream log; ///< lines go to standard error while it is closed
    Outcome outcome;   ///< of the action at work, or of the last one
    std::string shell = "/bin/sh";
    std::string action; ///< its name, for the report; nothing is reported where it is empty
    CallListener* listener = nullptr;

    Host() { current_ = this; }
    ~Host() { current_ = nullptr; }

    static Host& current() { return *current_; }

  private:
    inline static Host* current_ = nullptr;
};

/// The names of the components.
std::string show(std::vector<Component*> const& components);

/// The one way through which every host call goes: does `work` and returns its answer. The call is
/// put into words only for a listener.
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

} // namespace trial
