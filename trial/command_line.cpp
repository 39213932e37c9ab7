#include "trial/command_line.h"

#include <CLI/CLI.hpp>

#include <iostream>

#include "trial/plugin.h"
#include "trial/sequence.h"
#include "trial/session_file.h"
#include "trial/start_error.h"

namespace trial {

namespace {

struct Arguments {
    std::string session_file;
    std::vector<std::string> actions;
    std::vector<std::string> settings;
    std::string plugin_file;
    bool trace = false;
};

void declare_options(CLI::App& app, Arguments& arguments) {
    app.set_version_flag("--version", TRIAL_VERSION);
    app.add_option("--set", arguments.settings, "Set or override a session variable (repeatable)")
        ->type_name("NAME=VALUE")
        ->expected(1)
        ->take_all()
        ->allow_extra_args(false);
    app.add_option("--plugin", arguments.plugin_file,
                   "Use this library instead of the one that came along")
        ->type_name("FILE");
    app.add_flag("--trace", arguments.trace,
                 "Print every host call and its answer on standard error");
}

void declare_commands(CLI::App& app, Arguments& arguments) {
    CLI::App* const install = app.add_subcommand("install", "Run the five install actions");
    CLI::App* const uninstall = app.add_subcommand("uninstall", "Run perform_deintegration");
    CLI::App* const run = app.add_subcommand("run", "Run actions in the order given");
    for (CLI::App* const command : {install, uninstall, run}) {
        command->add_option("SESSION.toml", arguments.session_file, "The session file")->required();
        command->footer("The options of wb-trial itself may stand here too, see wb-trial --help.");
    }
    std::vector<std::string> const names(action_names.begin(), action_names.end());
    run->add_option("ACTION", arguments.actions, "The actions")
        ->required()
        ->check(CLI::IsMember(names));
}

void fill(Session& session, Arguments const& arguments) {
    session.trace = arguments.trace;
    read_session_file(arguments.session_file, session);
    for (std::string const& setting : arguments.settings) {
        std::size_t const name_size = setting.find('=');
        if (name_size == 0 || name_size == std::string::npos)
            throw StartError("--set " + show(setting) + ": write NAME=VALUE");
        session.variables[setting.substr(0, name_size)] = setting.substr(name_size + 1);
    }
}

bool run(std::string const& command, Arguments const& arguments, Sequence sequence) {
    if (command == "install") return sequence.install();
    if (command == "uninstall") return sequence.uninstall();
    return sequence.run(arguments.actions);
}

int start(std::string const& command, Arguments const& arguments) {
    bool is_started = false;
    try {
        Session session;
        fill(session, arguments);
        std::filesystem::path const chosen = arguments.plugin_file;
        Plugin const plugin(chosen.empty() ? bundled_plugin() : chosen);

        is_started = true;
        bool const well = run(command, arguments, Sequence(session, plugin, std::cout));
        if (!std::cout) throw std::runtime_error("the report cannot be written");
        return well ? all_well : something_failed;
    } catch (std::exception const& error) {
        std::cerr << "wb-trial: " << error.what() << '\n';
        return is_started ? something_failed : not_started;
    }
}

} // namespace

int run_command_line(int argc, char const* const* argv) {
    CLI::App app("Runs the workbench plug-in on a product, without the installer.\n"
                 "Exit status: 0 all went well, 1 something did not, 2 nothing was run.",
                 "wb-trial");
    app.footer("wb-trial install   SESSION.toml\n"
               "wb-trial uninstall SESSION.toml\n"
               "wb-trial run       SESSION.toml ACTION...");
    app.fallthrough();
    app.require_subcommand(0, 1);
    Arguments arguments;
    declare_options(app, arguments);
    declare_commands(app, arguments);
    try {
        app.parse(argc, argv);
        if (app.get_subcommands().empty())
            throw CLI::RequiredError("A command, install, uninstall or run,");
    } catch (CLI::ParseError const& error) {
        return app.exit(error) == 0 ? all_well : not_started;
    }
    return start(app.get_subcommands().front()->get_name(), arguments);
}

} // namespace trial
