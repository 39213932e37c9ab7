#include <unistd.h>

#include "hostcheck/hostcheck.h"
#include "workbench/shell_quote.h"

struct CommandCase {
    char const *text, *script;
    std::string argument, result;
};

static std::string const odd = "$HOME `true` \\\\ \" x  y 100%% !z ~ *", kib_8(8U << 10, 'x'),
                         mib_8(8U << 20, 'x');
static CommandCase const cases[] = {
    {"the number that the command exits with is stored", "exit 3", "", "3 "},
    {"the output of both streams is returned", "echo 1\necho 2 >&2", "", "0 1\n2\n"},
    {"8 MiB of output are complete", "head -c 8388608 /dev/zero | tr '\\0' x", "", "0 " + mib_8},
    {"a shell reads what stands between double quotes", "printf %s \"$1\"", odd, "0 " + odd},
    {"a command of 8 KiB is run whole", "printf %s \"$1\"", kib_8, "0 " + kib_8},
    {"nothing that it reads holds it up", "timeout 2 cat", "", "0 "}};

/// The status, a blank and the output.
static std::string run(std::string const& command) {
    int status = 0;
    std::string const output = get_command_output(command, &status, true, std::string());
    return std::to_string(status) + " " + output;
}

void hostcheck::commands(session_t*, std::string const& folder) {
    auto const quoted = workbench_int::double_quoted; // as the plug-in does
    auto const run_script = [&](std::string const& text, std::string const& argument) {
        std::string const script = folder + "/a b$c`d\\e\"f'g";
        write_file(script, "#!/bin/sh\n" + text + "\n", 0755);
        return run(quoted(script) + (argument.empty() ? "" : " " + quoted(argument)));
    };
    // An input that neither ends nor holds anything, whatever the installer's own is.
    int const own = dup(STDIN_FILENO);
    int idle[] = {-1, -1};
    if (pipe(idle) == 0) dup2(idle[0], STDIN_FILENO);
    for (CommandCase const& tried : cases)
        promise("get_command_output", tried.text,
                [&] { expect(tried.result, run_script(tried.script, tried.argument)); });
    if (dup2(own, STDIN_FILENO) < 0) close(STDIN_FILENO);
    for (int const descriptor : {own, idle[0], idle[1]}) close(descriptor);

    promise("get_command_output", "a number above 0 is stored where it is killed or cannot be run",
            [&] {
                for (std::string const& result : {run_script("kill -9 $$", ""), run(quoted(folder)),
                                                  run(quoted(folder + "/none"))})
                    if (std::stoi(result) <= 0) expect("126, 127 or 137", result);
            });
    promise("get_command_output", "it returns when the command has ended", [&] {
        run_script("exec >&- 2>&-\nsleep 0.1\necho >\"$1\"", folder + "/done");
        expect("\n", read_file(folder + "/done")); // and not already when its output has
    });
}
