#include "trial/sequence.h"

#include <iostream>
#include <sstream>

#include "installer/show.h"
#include "trial/undo_check.h"

using installer::Outcome;
using installer::printable;
using installer::Session;
using installer::show;

namespace trial {

namespace {

/// Why there is no usable workbench, by the verdict on the one that was chosen.
std::string explanation(std::string const& path_status, std::string const& workbench) {
    if (workbench.empty())
        return "no directory in DEFAULT_SEARCH_PATH holds a workbench, that is, install.properties";
    if (path_status == "undefined")
        return show(workbench) + " holds no install.properties, or SUPPORTED_VERSION is empty";
    if (path_status == "unsupported")
        return show(workbench) +
               " holds a workbench of none of the versions in SUPPORTED_VERSION; "
               "each there has to be ended by \";\", and stand behind name= in install.properties";
    return show(workbench) + " holds a workbench that the installation cannot write into";
}

void print(Session const& session, Outcome const& outcome) {
    for (std::string const& name : outcome.written)
        std::cout << "  " << name << " = " << show(session.value(name)) << '\n';
    if (!outcome.output.empty()) {
        std::cout << "  its command said";
        if (outcome.output.size() < outcome.output_size)
            std::cout << " " << outcome.output_size << " bytes, of which the last "
                      << outcome.output.size() << " were";
        std::cout << ":\n";
        std::istringstream lines(outcome.output);
        for (std::string line; std::getline(lines, line);)
            std::cout << "    " << printable(line, "\t") << '\n';
    }
    for (std::string const& name : outcome.read)
        if (session.variables.count(name) == 0)
            std::cout << "  warning: " << name << " was read and is not set\n";
    for (std::string const& note : outcome.notes)
        std::cout << "  note: " << printable(note) << '\n';
    for (std::string const& failure : outcome.failures)
        std::cout << "  failed: " << printable(failure) << '\n';
    std::cout.flush();
}

} // namespace

bool Sequence::install() {
    bool has_succeeded = choose_workbench();
    std::string const status = host_.session.value("PATH_STATUS");
    if (status != "ok") {
        std::cout << "Stopped: " << explanation(status, host_.session.value("WB_INTEGRATION_PATH"))
                  << ".\n";
        return false;
    }
    has_succeeded = call("find_wb_components") && has_succeeded;
    if (host_.session.value("WB_INTEGRATION_SUPPORTED") == "yes")
        has_succeeded = call("perform_integration") && has_succeeded;
    else
        std::cout << "Nothing to integrate: no component to be installed has \"workbench\" in its "
                     "name.\n";
    has_succeeded = call("init_wb_prefs") && has_succeeded;
    print_unused_variables();
    return has_succeeded;
}

bool Sequence::call(std::string const& action) {
    Outcome& outcome = host_.outcome = {};
    bool const is_undo = action == "perform_deintegration";
    std::string const earlier_copy = copy_to_be_undone(host_.session);
    if (is_undo) check_before_undo(host_.session, earlier_copy, outcome);
    int const result = call_plugin(action);
    if (is_undo) check_is_removed(earlier_copy, outcome);
    if (!outcome.copy.empty()) check_undo_is_possible(host_.session, earlier_copy, outcome);
    if (result == -1) outcome.fail("no configuration is listed, or the workbench is no directory");
    remember(outcome);
    print(host_.session, outcome);
    return result == 0 && outcome.failures.empty();
}

bool Sequence::choose_workbench() {
    std::string const choice = host_.session.value("WB_INTEGRATION_PATH");
    bool const has_succeeded = call("detect_wb_in_default_path");
    if (!choice.empty()) {
        host_.session.variables["WB_INTEGRATION_PATH"] = choice;
        std::cout << "WB_INTEGRATION_PATH is set back to " << show(choice)
                  << ", the session's own choice\n";
    }
    return call("validate_wb_path") && has_succeeded;
}

int Sequence::call_plugin(std::string const& action) {
    host_.action = action;
    try {
        int const result = plugin_.action(action)(&host_.session);
        std::cout << action << " returned " << result << '\n';
        return result;
    } catch (std::exception const& error) {
        std::cout << action << " did not return\n";
        host_.outcome.fail(std::string("an exception ended it: ") + error.what());
        return 0;
    }
}

void Sequence::remember(Outcome const& outcome) {
    used_.insert(outcome.read.begin(), outcome.read.end());
    used_.insert(outcome.written.begin(), outcome.written.end());
    has_integrated_ = has_integrated_ || !outcome.copy.empty();
    has_integrated_again_ = has_integrated_again_ || outcome.was_there;
}

void Sequence::print_unused_variables() const {
    for (auto const& [name, value] : host_.session.variables)
        if (used_.count(name) == 0)
            std::cout << "note: no action read or wrote " << printable(name)
                      << "; is it misspelt, or not needed?\n";
}

} // namespace trial
