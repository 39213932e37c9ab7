#include "trial/sequence.h"

namespace trial {

namespace {

/// The text with its further lines below the first, and no line end.
std::string indented(std::string const& text) {
    std::string result;
    for (char const character : text.substr(0, text.find_last_not_of('\n') + 1)) {
        result += character;
        if (character == '\n') result += "    ";
    }
    return result;
}

std::string explanation(std::string const& path_status) {
    if (path_status == "undefined")
        return "holds no workbench (no install.properties in it), or SUPPORTED_VERSION is empty";
    if (path_status == "unsupported")
        return "holds a workbench of none of the versions in SUPPORTED_VERSION; each version there "
               "has to be ended by \";\"";
    if (path_status == "notwritable")
        return "holds a workbench that the installation cannot write into";
    return "was not judged";
}

} // namespace

bool Sequence::install() {
    auto const chosen = session_.variables.find("WB_INTEGRATION_PATH");
    bool const has_choice = chosen != session_.variables.end();
    std::string const choice = has_choice ? chosen->second : "";

    bool well = run("detect_wb_in_default_path");
    if (has_choice) {
        session_.variables["WB_INTEGRATION_PATH"] = choice;
        out_ << "WB_INTEGRATION_PATH is " << show(choice) << " again, as the session has it\n";
    }
    well = run("validate_wb_path") && well;
    if (!is_usable_workbench()) return false;

    well = run("find_wb_components") && well;
    if (session_.variables["WB_INTEGRATION_SUPPORTED"] == "yes")
        well = run("perform_integration") && well;
    else
        out_ << "Nothing to integrate: no component to be installed has \"workbench\" in its "
                "name.\n";
    return run("init_wb_prefs") && well;
}

bool Sequence::is_usable_workbench() {
    std::string const status = session_.variables["PATH_STATUS"];
    if (status == "ok") return true;
    out_ << "Stopped: " << show(session_.variables["WB_INTEGRATION_PATH"]) << " "
         << explanation(status) << ".\n";
    return false;
}

bool Sequence::run(std::vector<std::string> const& actions) {
    bool well = true;
    for (std::string const& action : actions) well = run(action) && well;
    return well;
}

bool Sequence::run(std::string const& action) {
    int const result = session_.run(plugin_.action(action));
    out_ << action << " returned " << result << '\n';

    ActionReport const& report = session_.report;
    for (std::string const& name : report.written)
        out_ << "  " << name << " = " << show(session_.variables[name]) << '\n';
    if (!report.output.empty())
        out_ << "  its command said:\n    " << indented(report.output) << '\n';
    for (std::string const& name : report.unset)
        out_ << "  warning: " << name << " was read and is not set\n";
    for (std::string const& failure : report.failures) out_ << "  failed: " << failure << '\n';
    out_.flush();
    return result == 0 && report.failures.empty();
}

} // namespace trial
