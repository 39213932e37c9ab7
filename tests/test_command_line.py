"""Arguments and session files, what a script finds, and where the report and the log go."""

import shlex


import pytest
from conftest import NO_RIGHTS, Report, first, keyed_table, says, sh, table


ARGUMENTS = {
    "": "a command is missing: check, install, uninstall or run",
    "chek s.toml": "unknown command chek; did you mean check?",
    "s.toml": 'unknown command s.toml; known are "check", "install", "uninstall", "run"',
    "install": "SESSION.toml is required",
    "install absent.toml": "absent.toml: No such file or directory",
    "install '\033[1m.toml'": r"\x1b[1m.toml: No such file or directory",
    "install workbench": "workbench: Is a directory",
    "install s.toml more": "unexpected argument more",
    "run s.toml preform_integration": "unknown action preform_integration; did you mean perform_integration?",
    "check --previw s.toml": "unknown option --previw; did you mean --preview?",
    "check --preview s.toml": "check has no option --preview",
    "--preview install s.toml": "--preview has to stand after its command",
    "install s.toml --set =x": '--set "=x": write NAME=VALUE',
    "install s.toml --set WB_PREF=x": "--set: unknown variable WB_PREF; did you mean WB_PREFS?",
    "install s.toml --plugin ''": "--plugin: the name is empty",
    "install s.toml --plugin ./broken.so": "does not load: ... undefined symbol: _Z6is_dxr",
    "install s.toml --plugin /lib/x86_64-linux-gnu/libm.so.6": "the library exports no detect_wb_in",
}


@keyed_table("arguments, refusal", ARGUMENTS)
def test_arguments_with_which_nothing_is_run(site, arguments, refusal):
    site.shell("sed s/_Z6is_dir/_Z6is_dxr/ $program/libworkbench-int.so.1n >broken.so")
    before = site.tree()
    report = site.wb_trial(*shlex.split(arguments))
    says([report.refusal], refusal)
    assert site.tree() == before


SESSION_FILES = {
    "[variables": "1: Error while parsing table header",
    "": " the file is empty; a session has",
    "name = setup": "1: ... a string needs quotes, and single quotes where it holds a backslash",
    r'name = "a\s"': "1: ... unknown escape sequence ... single quotes where it holds a backslash",
    '[variables]\nWB_PREFS = "a\\b"': "2: WB_PREFS holds a control character: ... single quotes",
    "[component]\n[component]": "2: ... cannot redefine ... begin each component with [[component]]",
    "a\0": "1: ... save it as UTF-8",
    "a = 1": "1: unknown key a; a session has [variables] and [[component]]",
    "variables = 1": "1: variables has to be a table: [variables]",
    '[variables]\nWB_PREFS = "x"\nlog_file = 1': "3: log_file has to be a string",
    "[variables]\nWB_PREF = ''": "2: unknown variable WB_PREF; did you mean WB_PREFS?",
    "[component]\nname = 'a'": "1: component has to be a list of tables: [[component]]",
    "[[component]]": "1: a component needs a name",
    "[[component]]\nname = 'a'\nfiles = 'a'": "3: files has to be a list of strings",
    "[[component]]\nname = 'a'\nfiles_from = 'absent'": "3: files_from: cannot list all of ./absent: No such",
    "[[component]]\nname = 'a'\nfiles_from = 'locked'": "3: ... list all of ./locked: Permission denied",
    "[[component]]\nname = 'a'\ninstall_condition = 'true'": "3: install_condition has to be true",
    "\udcff": "1: Encountered invalid utf-8 ... save it as UTF-8",
}


@keyed_table("text, refusal", SESSION_FILES)
def test_session_files_with_which_nothing_is_run(site, text, refusal):
    site.session.write_bytes(text.encode(errors="surrogateescape"))
    site.shell("mkdir -m 0 locked")
    report = site.wb_trial("install", "s.toml", within=NO_RIGHTS)
    says([report.refusal], "s.toml:" + refusal)


@pytest.mark.parametrize("ending", ["rmdir ../in", "chmod 0 .."])
def test_working_directory_in_which_nothing_is_run(site, ending):
    within = NO_RIGHTS + first(f"mkdir -p closed/in; cd closed/in; {ending}")
    report = site.wb_trial("install", str(site.session), within=within)
    says([report.refusal], "the working directory cannot be reached by this user ... change to another")
    assert not site.log.exists()


def test_relative_files_from_starts_from_the_folder_of_the_session(site):
    site.edit("${SESSION_DIR}/product/suite", "product/suite")
    report = site.wb_trial("run", "../s.toml", "init_wb_prefs", within=first("cd product"))
    assert report.notes == report.failures == []


def test_options_stand_anywhere_and_actions_run_in_the_order_given(site):
    site.shell('ln -s "$PWD" s.toml product/suite; ln -s "$PWD" elsewhere')
    arguments = "run elsewhere/s.toml perform_deintegration init_wb_prefs --set WB_PREFS=b=c find_wb_components --trace"
    report = site.wb_trial("--set", "VORN_INSTALL_SUBDIR=x", *arguments.split())
    returned = [line.split()[0] for line in report.lines if " returned " in line]
    assert returned == ["perform_deintegration", "init_wb_prefs", "find_wb_components"]
    assert 'env_get_string("VORN_INSTALL_DIR") = "./product"' in report.lines
    assert 'env_get_string("VORN_INSTALL_SUBDIR") = "x"' in report.lines
    assert 'env_get_string("WB_PREFS") = "b=c"' in report.lines
    assert (
        r'{"share\\wr-qev-1.0a\\readme.txt", "part/wr-qev-1.0a/a.prefs", "part/wr' in report.text
    )  # no link


SCRIPTS = {
    "no input": ("read -r line || echo end of input", ["end of input"]),
    "what ends a process": ("sh -c 'kill -PIPE $$'; echo $?", ["141"]),
    "no descriptors": ("for n in 3 4 5 6 7 8 9; do (: <&$n) 2>/dev/null && echo $n; done; true", []),
    "a report that says what runs": ("grep -c runs: ../report", ["1"]),
}


@table("script, output", SCRIPTS)
def test_what_a_script_finds_whatever_the_caller_left(site, script, output):
    site.lay(script)
    site.shell("mkfifo never")
    ignoring = "env --ignore-signal=CHLD --ignore-signal=PIPE"
    site.integrate(within=sh(f'exec {ignoring} timeout 20 "$@" 0<>never 7<s.toml >report'))
    assert Report(0, (site.root / "report").read_text()).output == output


def test_control_characters_are_escaped(site):
    site.lay(r"printf 'ESC\t\033[1m \302\233 \177\n' >&2")
    assert site.integrate().output == ["ESC\t\\x1b[1m \udcc2\\x9b \\x7f"]
    variables = {"WORKBENCH_SCRIPT_NAME": "\033[1m", "DEFAULT_SEARCH_PATH": "\033[1m", "log_file": ""}
    says(site.integrate(variables=variables).failures, r"/wr-setup/\x1b[1m.sh")
    report = site.run("detect_wb_in_default_path", variables=variables)
    assert r"workbench_int: default_path_string \x1b[1m" in report.lines


def test_the_log_has_all_output(site):
    site.lay("head -c 8388608 /dev/zero | tr '\\0' '~'; echo; echo last")
    assert site.integrate().output[-1] == "last"
    assert site.log.read_bytes().count(b"~") == 8388608


LOGS = {
    "absent/log": 'the log "absent/log" cannot be opened (No such file or directory)',
    "/dev/full": "the log cannot be written",
}


@keyed_table("log, failure", LOGS)
def test_lines_that_the_log_does_not_take_go_to_standard_error(site, log, failure):
    report = site.run("find_wb_components", "find_wb_components", variables={"log_file": log})
    assert report.lines.count("workbench_int: find_wb_components entered") == 2
    says(report.failures, f"find_wb_components: {failure}; its lines go to standard error")


LOST_REPORTS = {
    'exec 8<>pipe 9>pipe 8<&-; "$@" >&9': "install s.toml",
    '"$@" >&-': "run s.toml find_wb_components",
    '"$@" >/dev/full': "check --no-sandbox s.toml",
    'exec "$@" >/dev/full': "--version",
}


@keyed_table("line, arguments", LOST_REPORTS)
def test_a_report_that_cannot_be_written_is_a_failure(site, line, arguments):
    site.shell("mkfifo pipe")
    report = site.wb_trial(*shlex.split(arguments), within=sh(line))
    assert report.lines[-1] == "wb-trial: the report cannot be written" and report.status == 1
    assert "install" not in arguments or "found WB prefs file" in site.log.read_text()


def test_its_own_operations_keep_what_an_installer_promises(site):
    hostcheck = f"{site.program}/hostcheck/libworkbench-int.so.1n"
    report = site.run("find_wb_components", "--plugin", hostcheck)
    assert "\n1.." in report.text and "\nnot ok" not in report.text
    report = site.run("find_wb_components", "--plugin", hostcheck, environment={"TMPDIR": "/absent"})
    says(report.failures, "find_wb_components: the result is 1")
