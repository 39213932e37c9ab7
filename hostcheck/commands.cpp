#include "hostcheck/hostcheck.h"
#include "workbench/shell_quote.h"

/// The status, a blank and the output.
static std::string run(std::string const& command) {
    int status = 0;
    std::string const output = get_command_output(command, &status, true, std::string());
    return std::to_string(status) + " " + output;
}

void hostcheck::commands(session_t*, std::string const& folder) {
    auto const quoted = workbench_int::double_quoted; // as the plug-in does
    std::string const script = folder + "/a b$c`d\\e\"f'g", argument = "$HOME `true` \\\\ \" x";
    write_file(script, "#!/bin/sh\nprintf %s \"$1\"\n", 0755);
    auto const promise_result = [&](char const* text, std::string const& command,
                                    std::string const& result) {
        promise("get_command_output", text, [&] { expect(result, run(command)); });
    };
    promise("get_command_output", "the command's status is stored", [&] {
        expect("3 ", run("exit 3"));
        expect("126 ", run(quoted(folder) + " 2>/dev/null"));
        expect("127 ", run(quoted(folder + "/none") + " 2>/dev/null"));
    });
    promise("get_command_output", "the status is not 0 where a signal ended the command", [&] {
        if (run("kill -9 $$")[0] == '0') fault("it is 0");
    });
    promise_result("the output of both streams is returned", "echo 1; echo 2 >&2", "0 1\n2\n");
    promise_result("8 MiB of output are complete", "head -c 8388608 /dev/zero | tr '[:cntrl:]' x",
                   "0 " + std::string(8U << 20, 'x'));
    promise_result("a shell reads what stands between double quotes",
                   quoted(script) + " " + quoted(argument), "0 " + argument);
    promise_result("standard input does not hold it up", "timeout 2 cat >/dev/null", "0 ");
    promise("get_command_output", "it returns when the command has ended", [&] {
        run("exec >&- 2>&-; sleep 0.1; echo >" + quoted(folder + "/done"));
        expect("\n", read_file(folder + "/done")); // and not already when its output has
    });
}
