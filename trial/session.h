#pragma once

#include <fstream>
#include <functional>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <type_traits>
#include <vector>

#include "host/component_model.h"
#include "trial/show.h"

namespace trial {

/// Lists the files that one component installs.
class FileProvider final : public ComponentProvider {
  public:
    std::vector<std::string> files;

    void* query(std::string first, std::string component, std::string third) override;
    void unused2() override {}
    void unused3() override {}
    void unused4() override {}
    void unused5() override {}
    void unused6() override {}
    void unused7() override {}
    void unused8() override {}
    std::vector<std::string> fileList(void* handle) override;
};

struct Component : ::Component {
    bool install_condition = true;
    std::string subdirectory;
    std::unique_ptr<FileProvider> file_provider = std::make_unique<FileProvider>();
};

/// What there is to say about one action, beside its result.
struct ActionReport {
    std::vector<std::string> written;  ///< the variables that it wrote, in order
    std::set<std::string> unset;       ///< the variables that it read and the session does not hold
    std::string output;                ///< what its command said
    std::vector<std::string> failures; ///< what went wrong and the plug-in passed over, in words
};

/// The session of the host that stands in. One at a time: the host's operations that are given no
/// session act on the one that exists.
class Session : public session_t {
  public:
    Session();
    ~Session();
    Session(Session const&) = delete;
    Session& operator=(Session const&) = delete;

    /// The session that exists; there has to be one.
    static Session& current();

    std::map<std::string, std::string> variables;
    std::vector<std::unique_ptr<Component>> components; ///< an entry may be null
    std::string shell = "/bin/sh";
    bool trace = false; ///< whether each call is printed on standard error

    ActionReport report;            ///< of the last action
    std::vector<std::string> calls; ///< every host call with its arguments and its answer
    int open_databases = 0;         ///< how many `IniDb` objects exist

    /// Where set, called with the text of each host call before it is done. What it throws comes
    /// out of the call.
    std::function<void(std::string const& call)> before_call;
    bool in_host_call = false; ///< whether it is the host that is at work, and not the plug-in

    /// Runs one action and returns its result. `report` is then about this action.
    int run(int (*action)(session_t*));

    /// The one way through which every host call goes: does `work`, records the call and its
    /// answer, and returns the answer.
    template <typename Work>
    auto call(std::string const& text, Work work) {
        if (before_call) before_call(text);
        HostCall const mark(in_host_call);
        if constexpr (std::is_void_v<decltype(work())>) {
            work();
            record(text);
        } else {
            auto answer = work();
            record(text + " = " + show(answer));
            return answer;
        }
    }
    /// Adds to `calls`, and prints the call where it is to be traced.
    void record(std::string const& call);

    /// Adds a failure to the report.
    void fail(std::string const& sentence) { report.failures.push_back(sentence); }

    /// Sends log lines to the end of `file`, or to standard error where it is empty or cannot be
    /// opened.
    void open_log(std::string const& file);
    /// Writes to the log, or to standard error where there is none or it cannot be written.
    void write_log(std::string const& line);

    /// Has the script at `file` looked at when the action is over: the plug-in does not notice when
    /// only a part of it could be written.
    void expect_deintegration_script(std::string const& file) { deintegration_script_ = file; }

  private:
    struct HostCall {
        bool& mark;
        explicit HostCall(bool& in_host_call) : mark(in_host_call) { mark = true; }
        ~HostCall() { mark = false; }
    };

    void check_deintegration_script();

    std::ofstream log_;
    std::string deintegration_script_;
};

/// The names of the components.
std::string show(std::vector<::Component*> const& components);

} // namespace trial
