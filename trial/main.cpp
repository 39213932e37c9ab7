#include <CLI/CLI.hpp>

#include <fcntl.h>
#include <unistd.h>

#include <csignal>
#include <set>

#include "trial/check.h"
#include "trial/exit_status.h"
#include "trial/plugin.h"
#include "trial/preview.h"
#include "trial/product_check.h"
#include "trial/sequence.h"
#include "trial/session_file.h"
#include "trial/unknown_name.h"

using namespace trial;
using Texts = std::vector<std::string>;

namespace {

Texts const commands = {"check", "install", "uninstall", "run"};
Texts const actions(action_names.begin(), action_names.end());

struct Arguments {
    std::string command, session_file, plugin_file;
    Texts actions, settings;
    bool trace = false, strict = false, preview = false, no_sandbox = false;
};

/// The options that may stand before the command, and after it.
void declare_common_options(CLI::App& app, Arguments& arguments) {
    auto const add_setting = [&](std::string const& setting) {
        arguments.settings.push_back(setting);
    };
    app.add_option_function<std::string>("--set", add_setting,
                                         "Set or override a session variable (repeatable)")
        ->type_name("NAME=VALUE")
        ->trigger_on_parse();
    app.add_flag("--strict", arguments.strict, "Count a warning as a failure");
    app.add_option("--plugin", arguments.plugin_file,
                   "Use this library, not the bundled one; it has to be built for the headers in "
                   "this project's host/")
        ->type_name("FILE")
        ->group("For installers")
        ->check([](std::string const& file) { return file.empty() ? "the name is empty" : ""; });
    app.add_flag("--trace", arguments.trace, "Print every host call on standard error")
        ->group("For installers");
}

std::string check_action(std::string const& name) {
    bool const is_known = std::count(actions.begin(), actions.end(), name) != 0;
    return is_known ? "" : unknown_name("action", name, actions);
}

void declare_commands(CLI::App& app, Arguments& arguments) {
    for (auto const& [name, help] : {
             std::pair("check", "Install and uninstall in a sandbox: is the workbench as it was?"),
             std::pair("install", "Run the five install actions"),
             std::pair("uninstall", "Run perform_deintegration"),
             std::pair("run", "Run actions in the order given"),
         }) {
        CLI::App* const command = app.add_subcommand(name, help);
        command->add_option("SESSION.toml", arguments.session_file, "The session file")->required();
        if (name == std::string("check"))
            command->add_flag("--no-sandbox", arguments.no_sandbox,
                              "Change the real disk, of a machine that is thrown away");
        else
            command->add_flag("--preview", arguments.preview,
                              "Run it in a sandbox and show what would change; nothing does");
        declare_common_options(*command, arguments);
    }
    app.get_subcommand("run")
        ->add_option("ACTION", arguments.actions, "The actions")
        ->required()
        ->check(CLI::Validator(check_action, CLI::IsMember(actions).get_description()));
}

struct Tracer : installer::CallListener {
    void ends(std::string const& call) override { std::cerr << call << '\n'; }
};

ExitStatus execute(Arguments const& arguments) {
    std::error_code unreachable;
    if (std::filesystem::canonical(std::filesystem::current_path(unreachable), unreachable).empty())
        throw StartError("the working directory cannot be reached by this user (" +
                         unreachable.message() + "); change to another one");
    Tracer tracer;
    installer::Host host;
    if (arguments.trace) host.listener = &tracer;
    Texts const ignored = read_session(arguments.session_file, arguments.settings, host.session);
    std::string const& file = arguments.plugin_file;
    Plugin const plugin(file.empty() ? bundled_plugin().string() : file);
    Report report(arguments.strict);
    Sequence sequence(host, plugin, report);

    std::string const& command = arguments.command;
    if (command != "run") require_product(host.session);
    if (command == "check")
        return check(host.session, ignored, sequence, report, !arguments.no_sandbox);
    auto const work = [&] {
        if (command == "install") sequence.install();
        if (command == "uninstall") sequence.call("perform_deintegration");
        for (std::string const& action : arguments.actions) sequence.call(action);
    };
    std::string const title = "changed by the " + (command == "run" ? "actions" : command);
    if (arguments.preview) return preview(host.session, report, title, work);
    work();
    return report.finish();
}

/// Opens the standard streams that are closed and resets signals that are ignored.
void tidy_process() {
    int opened = 0;
    while (opened >= 0 && opened <= STDERR_FILENO)        // the lowest free one is taken
        opened = open("/dev/null", O_RDONLY | O_CLOEXEC); // not to be written, so that a loss shows
    signal(SIGCHLD, SIG_DFL);
    signal(SIGPIPE, [](int) {}); // not ignored: that would stay so in the commands that are run
}

/// What is wrong with the first argument that has no place.
std::string misplaced(CLI::App const& app) {
    std::string const argument = app.remaining(true).front();
    bool const is_before_command = !app.remaining().empty();
    std::set<std::string> options;
    std::vector<CLI::App const*> parsers = app.get_subcommands(nullptr);
    parsers.push_back(&app);
    for (CLI::App const* parser : parsers)
        for (CLI::Option const* option : parser->get_options())
            if (!option->get_lnames().empty()) options.insert(option->get_name());
    if (options.count(argument) != 0)
        return is_before_command
                   ? argument + " has to stand after its command"
                   : app.get_subcommands().front()->get_name() + " has no option " + argument;
    if (argument[0] == '-')
        return unknown_name("option", argument, Texts(options.begin(), options.end()));
    return is_before_command ? unknown_name("command", argument, commands)
                             : "unexpected argument " + argument;
}

ExitStatus run_command_line(int argc, char const* const* argv) {
    CLI::App app("Runs the workbench plug-in on a product, without the installer.", "wb-trial");
    app.footer("Exit status: 0 all succeeded, 1 something failed, 2 nothing was run.");
    app.set_version_flag("--version", TRIAL_VERSION);
    app.require_subcommand(0, 1);
    Arguments arguments;
    declare_common_options(app, arguments);
    declare_commands(app, arguments);
    app.footer("wb-trial COMMAND --help lists all options of a command.\n" + app.get_footer());
    try {
        app.parse(argc, argv);
    } catch (CLI::ExtrasError const&) {
        throw StartError(misplaced(app));
    } catch (CLI::ParseError const& error) {
        if (error.get_exit_code() != 0) throw StartError(error.what());
        return app.exit(error), status_of(true);
    }
    if (app.get_subcommands().empty())
        throw StartError("a command is missing: check, install, uninstall or run");
    arguments.command = app.get_subcommands().front()->get_name();
    return execute(arguments);
}

} // namespace

int main(int argc, char** argv) {
    tidy_process();
    return status_or_error([&] { return run_command_line(argc, argv); });
}
