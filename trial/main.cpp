#include <CLI/CLI.hpp>

#include <fcntl.h>
#include <unistd.h>

#include <csignal>

#include "trial/check.h"
#include "trial/exit_status.h"
#include "trial/names.h"
#include "trial/plugin.h"
#include "trial/preview.h"
#include "trial/sequence.h"
#include "trial/session_file.h"

using namespace trial;
using Texts = std::vector<std::string>;

namespace {

struct Arguments {
    std::string command, session_file, plugin_file;
    Texts actions, settings;
    bool trace = false, preview = false, no_sandbox = false;
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
    app.add_option("--plugin", arguments.plugin_file,
                   "Use this library, not the bundled one; it has to be built for the headers in "
                   "this project's host/")
        ->type_name("FILE")
        ->check([](std::string const& file) { return file.empty() ? "the name is empty" : ""; });
    app.add_flag("--trace", arguments.trace, "Print every host call on standard error");
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
        ->check(CLI::IsMember(Texts(action_names.begin(), action_names.end())));
}

void fill(installer::Session& session, Arguments const& arguments) {
    read_session_file(arguments.session_file, session);
    for (std::string const& setting : arguments.settings) {
        std::size_t const size = setting.find('=');
        if (size == 0 || size == std::string::npos)
            throw StartError("--set " + installer::show(setting) + ": write NAME=VALUE");
        std::string const name = setting.substr(0, size);
        if (!is_known_variable(name))
            throw StartError("--set: " + unknown_name("variable", name, known_variables));
        session.variables[name] = setting.substr(size + 1);
    }
}

struct Tracer : installer::CallListener {
    void ends(std::string const& call) override { std::cerr << call << '\n'; }
};

ExitStatus execute(Arguments const& arguments) {
    Tracer tracer;
    installer::Host host;
    if (arguments.trace) host.listener = &tracer;
    fill(host.session, arguments);
    std::string const& file = arguments.plugin_file;
    Plugin const plugin(file.empty() ? bundled_plugin().string() : file);
    Report report;
    Sequence sequence(host, plugin, report);

    std::string const& command = arguments.command;
    if (command == "check")
        return (arguments.no_sandbox ? check_without_sandbox : check)(host.session, sequence,
                                                                      report);
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

/// Throws StartError where no command is among the arguments.
void require_command(CLI::App const& app) {
    if (!app.get_subcommands().empty()) return;
    Texts const others = app.remaining();
    if (others.empty()) throw StartError("a command is missing: check, install, uninstall or run");
    throw StartError(unknown_name("command", others[0], {"check", "install", "uninstall", "run"}));
}

ExitStatus run_command_line(int argc, char const* const* argv) {
    CLI::App app("Runs the workbench plug-in on a product, without the installer.\n"
                 "Exit status: 0 all succeeded, 1 something failed, 2 nothing was run.",
                 "wb-trial");
    app.set_version_flag("--version", TRIAL_VERSION);
    app.require_subcommand(0, 1);
    Arguments arguments;
    declare_common_options(app, arguments);
    declare_commands(app, arguments);
    app.footer("wb-trial COMMAND --help lists all options of a command.");
    try {
        app.parse(argc, argv);
    } catch (CLI::ExtrasError const& error) {
        require_command(app);
        return app.exit(error), not_started;
    } catch (CLI::ParseError const& error) {
        return app.exit(error) == 0 ? status_of(true) : not_started;
    }
    require_command(app);
    arguments.command = app.get_subcommands().front()->get_name();
    return execute(arguments);
}

} // namespace

int main(int argc, char** argv) {
    tidy_process();
    return status_or_error([&] { return run_command_line(argc, argv); });
}
