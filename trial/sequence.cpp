#include "trial/sequence.h"

#include <filesystem>
#include <fstream>
#include <iostream>
#include <sstream>

#include "installer/show.h"
#include "trial/places.h"
#include "trial/product_check.h"
#include "trial/undo_check.h"
#include "trial/unknown_name.h"

using installer::Outcome;
using installer::Session;
using installer::show;
using Texts = std::vector<std::string>;

namespace trial {

namespace {

/// The keys by which a version is looked for: each entry of the list that is ended by ";".
Texts version_keys(std::string const& versions) {
    Texts keys;
    std::istringstream list(versions.substr(0, versions.rfind(';') + 1));
    for (std::string version; std::getline(list, version, ';');) keys.push_back("name=" + version);
    return keys;
}

/// The first words of the file that name a version.
Texts version_words(std::string const& properties) {
    Texts words;
    std::ifstream file(properties);
    for (std::string word; words.size() < 5 && file >> word;)
        if (word.find("name=") != std::string::npos) words.push_back(word);
    return words;
}

std::string why_not_supported(std::string const& workbench, std::string const& versions) {
    Texts const keys = version_keys(versions);
    Texts const words = version_words(workbench + "/install.properties");
    bool const is_well_formed = versions.find_last_of(';') + 1 == versions.size() &&
                                versions.find(' ') == std::string::npos;
    return show(workbench) + " is of no supported version: " +
           (keys.empty() ? "no version in SUPPORTED_VERSION is complete"
                         : "looked for " + enumerated(keys)) +
           ", and its install.properties has " +
           (words.empty() ? "no word with \"name=\"" : enumerated(words)) +
           (is_well_formed ? ""
                           : "; end each version in SUPPORTED_VERSION by \";\", without blanks");
}

/// What to do about a directory that a blank has cut in two.
std::string remedy_for_blanks(Texts const& directories) {
    for (std::string const& directory : directories)
        if (directory[0] != '/')
            return "; blanks separate them, so name a workbench that has one in its path in "
                   "WB_INTEGRATION_PATH";
    return "";
}

/// Why there is no usable workbench, by the verdict on the one that was chosen.
std::string explanation(Session const& session) {
    std::string const workbench = session.value("WB_INTEGRATION_PATH");
    std::string const versions = session.value("SUPPORTED_VERSION");
    std::string const status = session.value("PATH_STATUS");
    Texts const tried = search_path(session);
    if (workbench.empty())
        return "no directory in DEFAULT_SEARCH_PATH holds a file install.properties; tried: " +
               enumerated(tried) + remedy_for_blanks(tried);
    if (status == "undefined" && versions.empty()) return "SUPPORTED_VERSION is empty";
    std::string const fault = fault_of_directory(workbench);
    if (status == "undefined")
        return show(workbench) + " " + (fault.empty() ? "holds no file install.properties" : fault);
    if (status == "unsupported") return why_not_supported(workbench, versions);
    if (status == "notwritable") return show(workbench) + " cannot be written by this user";
    return "validate_wb_path wrote no verdict to PATH_STATUS";
}

std::string why_not_begun(Session const& session) {
    std::string const workbench = session.value("WB_INTEGRATION_PATH");
    std::error_code unreachable;
    if (!std::filesystem::is_directory(workbench, unreachable))
        return "the workbench " + show(workbench) + " is no directory";
    return "no listed path holds a configuration, \"wr-qev-\" and a name without \"..\"";
}

} // namespace

void Sequence::install() {
    for (std::string const& mistake : find_mistakes(host_.session)) report_.warning(mistake);
    choose_workbench();
    if (host_.session.value("PATH_STATUS") != "ok")
        return report_.stop("validate_wb_path", explanation(host_.session));
    call("find_wb_components");
    bool const has_component = host_.session.value("WB_INTEGRATION_SUPPORTED") == "yes";
    std::string const other = find_other_copy(host_.session);
    if (has_component && !other.empty()) return report_.stop("perform_integration", other);
    if (has_component) call("perform_integration");
    else
        std::cout << "Nothing to integrate: no component to be installed has \"workbench\" in its "
                     "name.\n";
    call("init_wb_prefs");
}

void Sequence::call(std::string const& action) {
    Outcome& outcome = host_.outcome = {};
    bool const is_undo = action == "perform_deintegration";
    std::string const earlier_copy = copy_to_be_undone(host_.session);
    if (is_undo && has_copied_) check_before_undo(host_.session, earlier_copy, outcome);
    int const result = call_plugin(action);
    if (is_undo) check_is_removed(earlier_copy, outcome);
    if (!outcome.copy.empty()) {
        check_undo_is_possible(host_.session, earlier_copy, outcome);
        has_integrated_ = true;
        has_copied_ = !outcome.has_failed_for_good;
    }
    if (result == -1) outcome.fail(why_not_begun(host_.session));
    else if (result != 0 && outcome.failures.empty())
        outcome.fail("the result is " + std::to_string(result));
    print(action, outcome);
}

void Sequence::choose_workbench() {
    call("detect_wb_in_default_path");
    if (!choice_.empty()) {
        host_.session.variables["WB_INTEGRATION_PATH"] = choice_;
        std::cout << "WB_INTEGRATION_PATH is set back to " << show(choice_)
                  << ", the session's own choice\n";
    }
    call("validate_wb_path");
}

int Sequence::call_plugin(std::string const& action) {
    host_.action = action;
    try {
        int const result = plugin_.action(action)(&host_.session);
        std::cout << action << " returned " << result << '\n';
        return result;
    } catch (std::exception const& error) {
        std::cout << action << " did not return\n";
        host_.outcome.failures.push_back(std::string("an exception ended it: ") + error.what());
        return 0;
    }
}

bool Sequence::may_be_left_out(std::string const& name) const {
    return name == "log_file" || name == "WB_PREFS" || name == "VORN_INSTALL_SUBDIR" ||
           (name == "DEFAULT_SEARCH_PATH" && !choice_.empty());
}

void Sequence::print(std::string const& action, Outcome const& outcome) {
    std::string const internal = "WB_INSTALL_SUBDIR"; // from one action to the next
    for (std::string const& name : outcome.written)
        if (name != internal)
            std::cout << "  " << name << " = " << show(host_.session.value(name)) << '\n';
    for (std::string const& name : outcome.read)
        if (host_.session.variables.count(name) == 0 && !may_be_left_out(name))
            report_.warning(name + " was read and is not set" +
                                (name == internal ? "; run find_wb_components first" : ""),
                            "  ");
    for (std::string const& note : outcome.notes) report_.note(note, "  ");
    for (std::string const& failure : outcome.failures) report_.failure(action, failure, "  ");
    std::cout.flush();
}

} // namespace trial
