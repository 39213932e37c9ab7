#include <tuple>

#include "host/services.h"
#include "hostcheck/hostcheck.h"

/// One word of a command line, as the plug-in quotes it.
static std::string quoted(std::string const& text) {
    std::string word = "\"";
    for (char const character : text) {
        if (std::string("\"$`\\").find(character) != std::string::npos) word += '\\';
        word += character;
    }
    return word + '"';
}

static std::pair<std::string, std::string> run(std::string const& command) {
    int status = 0;
    std::string output = get_command_output(command, &status, true, std::string());
    return {std::to_string(status), output};
}

void hostcheck::check_commands(Report& report, std::string const& folder) {
    auto const promise = [&](char const* text, std::function<Fault()> const& fault) {
        report.promise("get_command_output", text, fault);
    };
    write_file(folder + "/not-executable", "#!/bin/sh\n");
    promise("the command's status is stored", [&] {
        return difference("0", run("true").first) + difference("3", run("exit 3").first) +
               difference("126", run(quoted(folder + "/not-executable")).first) +
               difference("127", run(quoted(folder + "/absent")).first);
    });
    promise("the status is not 0 where a signal ended the command",
            [&] { return run("kill -9 $$").first == "0" ? "it is 0" : ""; });
    promise("the output of both streams is returned",
            [&] { return difference("one\ntwo\n", run("echo one; echo two >&2").second); });
    promise("8 MiB of output are complete", [&] {
        return difference(std::string(8U << 20, 'x'),
                          run("head -c 8388608 /dev/zero | tr '[:cntrl:]' x").second);
    });
    promise("a shell reads what stands between double quotes", [&] {
        std::string const script = folder + "/a b$c`d\\e\"f'g.sh";
        std::string const argument = "$HOME `true` \\\\ \" x";
        write_file(script, "#!/bin/sh\nprintf %s \"$1\"\n", 0755);
        return difference(argument, run(quoted(script) + " " + quoted(argument)).second);
    });
    promise("it returns after the command has ended", [&] {
        run("sleep 0.1; echo done >" + quoted(folder + "/done"));
        return difference("done\n", read_file(folder + "/done"));
    });
    promise("standard input does not hold the command up",
            [&] { return run("timeout 5 cat").first == "124" ? "it waits for input" : ""; });
}
