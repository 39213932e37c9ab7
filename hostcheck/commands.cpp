#include "host/services.h"
#include "hostcheck/hostcheck.h"

namespace hostcheck {

namespace {

/// One word of a command line, as the plug-in quotes it.
std::string quoted(std::string const& text) {
    std::string word = "\"";
    for (char const character : text) {
        if (std::string("\"$`\\").find(character) != std::string::npos) word += '\\';
        word += character;
    }
    return word + '"';
}

std::string output_of(std::string const& command) {
    int status = 0;
    return get_command_output(command, &status, true, std::string());
}

std::string status_of(std::string const& command) {
    int status = 0;
    get_command_output(command, &status, true, std::string());
    return std::to_string(status);
}

} // namespace

void check_commands(Report& report, std::string const& folder) {
    auto const promise = [&](char const* text, std::function<std::string()> const& fault) {
        report.promise("get_command_output", text, fault);
    };
    write_file(folder + "/not-executable", "#!/bin/sh\n");
    promise("the command's status is stored", [&] {
        return difference("0", status_of("true")) + difference("3", status_of("exit 3")) +
               difference("126", status_of(quoted(folder + "/not-executable"))) +
               difference("127", status_of(quoted(folder + "/absent")));
    });
    promise("the status is not 0 where a signal ended the command",
            [&] { return status_of("kill -9 $$") == "0" ? "it is 0" : ""; });
    promise("the output of both streams is returned", [&] {
        std::string const output = output_of("echo one; echo two >&2");
        bool const has_both = output.find("one\n") + 1 > 0 && output.find("two\n") + 1 > 0;
        return has_both ? "" : difference("one\ntwo\n", output);
    });
    promise("8 MiB of output are complete", [&] {
        return difference(std::string(8U << 20, 'x'),
                          output_of("head -c 8388608 /dev/zero | tr '[:cntrl:]' x"));
    });
    promise("a shell reads what stands between double quotes", [&] {
        std::string const script = folder + "/a b$c`d\\e\"f'g.sh";
        std::string const argument = "$HOME `true` \\\\ \" x";
        write_file(script, "#!/bin/sh\nprintf %s \"$1\"\n", 0755);
        return difference(argument, output_of(quoted(script) + " " + quoted(argument)));
    });
    promise("it returns after the command has ended", [&] {
        output_of("sleep 0.1; echo done >" + quoted(folder + "/done"));
        return difference("done\n", read_file(folder + "/done"));
    });
    promise("standard input does not hold the command up",
            [&] { return status_of("timeout 5 cat") == "124" ? "it waits for input" : ""; });
}

} // namespace hostcheck
