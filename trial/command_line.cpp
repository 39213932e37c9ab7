#include "trial/command_line.h"

#include <CLI/CLI.hpp>

#include <iostream>

#include "trial/plugin.h"
#include "trial/sequence.h"
#include "trial/session_file.h"
#include "trial/start_error.h"

namespace trial {

namespace {

void set_variable(Session& session, std::string const& setting) {
    std::size_t const name_size = setting.find('=');
    if (name_size == 0 || name_size == std::string::npos)
        throw StartError("--set " + show(setting) + ": write NAME=VALUE");
    session.variables[setting.substr(0, name_size)] = setting.substr(name_size + 1);
}

} // namespace

int run_command_line(int argc, char const* const* argv) {
    std::string session_file;
    std::vector<std::string> actions;
    std::vector<std::string> settings;
    std::string plugin_file;
    bool trace = false;
    bool is_started = false;

    CLI::App app("Runs the workbench plug-in on a product, without the installer.\n"
                 "Exit status: 0 all went well, 1 something did not, 2 nothing was run.",
                 "wb-trial");
    app.fallthrough();
    app.require_subcommand(0, 1);
    app.footer("wb-trial install   SESSION.toml\n"
               "wb-trial uninstall SESSION.toml\n"
               "wb-trial run       SESSION.toml ACTION...");
    app.set_version_flag("--version", TRIAL_VERSION);
    app.add_option("--set", settings, "Set or override a session variable (repeatable)")
        ->type_name("NAME=VALUE")
        ->expected(1)
        ->take_all()
        ->allow_extra_args(false);
    app.add_option("--plugin", plugin_file, "Use this library instead of the one that came along")
        ->type_name("FILE");
    app.add_flag("--trace", trace, "Print every host call and its answer on standard error");

    CLI::App* const install = app.add_subcommand("install", "Run the five install actions");
    CLI::App* const uninstall = app.add_subcommand("uninstall", "Run perform_deintegration");
    CLI::App* const run = app.add_subcommand("run", "Run actions in the order given");
    for (CLI::App* const command : {install, uninstall, run}) {
        command->add_option("SESSION.toml", session_file, "The session file")->required();
        command->footer("The options of wb-trial itself may stand here too, see wb-trial --help.");
    }
    run->add_option("ACTION", actions, "The actions")
        ->required()
        ->check(CLI::IsMember(std::vector<std::string>(action_names.begin(), action_names.end())));

    try {
        app.parse(argc, argv);
        if (app.get_subcommands().empty())
            throw StartError("a command is missing: install, uninstall or run; see --help");
        Session session;
        session.trace = trace;
        read_session_file(session_file, session);
        for (std::string const& setting : settings) set_variable(session, setting);
        Plugin const plugin(plugin_file.empty() ? bundled_plugin()
                                                : std::filesystem::path(plugin_file));

        is_started = true;
        Sequence sequence(session, plugin, std::cout);
        bool const well = install->parsed()     ? sequence.install()
                          : uninstall->parsed() ? sequence.uninstall()
                                                : sequence.run(actions);
        if (!std::cout) throw std::runtime_error("the report cannot be written");
        return well ? all_well : something_failed;
    } catch (CLI::ParseError const& error) {
        return app.exit(error) == 0 ? all_well : not_started;
    } catch (std::exception const& error) {
        std::cerr << "wb-trial: " << error.what() << '\n';
        return is_started ? something_failed : not_started;
    }
}

} // namespace trial
