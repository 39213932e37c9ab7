"""Arguments and session files, what a script finds, and where the report and the log go."""

import shlex
import subprocess


from conftest import BUILD, NO_RIGHTS, Report, keyed_table, says, sh, table


@keyed_table(
    "arguments, refusal",
    {
        "": "wb-trial: a command is missing: check, install, uninstall or run",
        "chek s.toml": "wb-trial: unknown command chek; did you mean check?",
        "s.toml": 'wb-trial: unknown command s.toml; known are "check", "install", "uninstall", "run"',
        "install": "wb-trial: SESSION.toml is required",
        "install absent.toml": "wb-trial: absent.toml: No such file or directory",
        "install '\033[1m.toml'": r"wb-trial: \x1b[1m.toml: No such file or directory",
        "install workbench": "wb-trial: workbench: Is a directory",
        "install s.toml more": "wb-trial: unexpected argument more",
        "run s.toml preform_integration": "unknown action preform_integration; did you mean perform_integration?",
        "check --previw s.toml": "wb-trial: unknown option --previw; did you mean --preview?",
        "check --preview s.toml": "wb-trial: check has no option --preview",
        "--preview install s.toml": "wb-trial: --preview has to stand after its command",
        "install s.toml --set =x": 'wb-trial: --set "=x": write NAME=VALUE',
        "install s.toml --set WB_PREF=x": "wb-trial: --set: unknown variable WB_PREF; did you mean WB_PREFS?",
        "install s.toml --plugin ''": "--plugin: the name is empty",
        "install s.toml --plugin absent.so": "wb-trial: absent.so: the library does not load",
        "install s.toml --plugin ./libworkbench-int.so.1n": "does not load: ... undefined symbol: _Z6is_dxr",
        "install s.toml --plugin /lib/x86_64-linux-gnu/libm.so.6": "the library exports no detect_wb_in",
    },
)
def test_arguments_with_which_nothing_is_run(site, arguments, refusal):
    site.broken_library(b"_Z6is_dir", b"_Z6is_dxr")
    before = site.entries()
    report = site.wb_trial(*shlex.split(arguments))
    says(report.lines[:1], refusal)
    assert report.status == 2 and site.entries() == before


@keyed_table(
    "text, refusal",
    {
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
        "[[component]]\nname = 'a'\nfiles_from = '${SESSION_DIR}/locked'": (
            "3: files_from: cannot list all of ./locked: Permission denied"
        ),
        "[[component]]\nname = 'a'\ninstall_condition = 'true'": "3: install_condition has to be true",
        "\udcff": "1: Encountered invalid utf-8 ... save it as UTF-8",
    },
)
def test_session_files_with_which_nothing_is_run(site, text, refusal):
    site.session.write_bytes(text.encode(errors="surrogateescape"))
    site.shell("mkdir -m 0 locked")
    report = site.wb_trial("install", "s.toml", within=NO_RIGHTS)
    says([report.refusal], "s.toml:" + refusal)
    assert report.status == 2


@table(
    "line",
    {
        "removed": 'mkdir gone; cd gone; rmdir ../gone; exec "$@"',
        "closed": 'mkdir -p closed/in; cd closed/in; chmod 0 ../../closed; exec "$@"',
    },
)
def test_working_directory_in_which_nothing_is_run(site, line):
    report = site.wb_trial("install", str(site.session), within=NO_RIGHTS + sh(line))
    says([report.refusal], "the working directory cannot be reached by this user ... change to another")
    assert report.status == 2 and not site.log.exists()


def test_relative_files_from_starts_from_the_folder_of_the_session(site):
    site.edit("${SESSION_DIR}/product/suite", "product/suite", site.session)
    report = site.wb_trial("run", "../s.toml", "init_wb_prefs", within=sh('cd product; exec "$@"'))
    assert report.notes == report.failures == [] and report.status == 0


def test_session_without_components(site):
    site.session.write_text("component = []")
    report = site.run("find_wb_components", variables={"log_file": "/dev/null"})
    assert 'WB_INTEGRATION_SUPPORTED = "no"' in report.text and report.status == 0


def test_options_stand_anywhere_and_actions_run_in_the_order_given(site):
    site.shell('ln -s "$PWD" s.toml product/suite')
    arguments = "run s.toml perform_deintegration init_wb_prefs --set WB_PREFS=b=c find_wb_components --trace"
    report = site.wb_trial("--set", "VORN_INSTALL_SUBDIR=x", *shlex.split(arguments))
    returned = [line.split()[0] for line in report.lines if " returned " in line]
    assert returned == ["perform_deintegration", "init_wb_prefs", "find_wb_components"]
    assert 'env_get_string("VORN_INSTALL_DIR") = "./product"' in report.lines
    assert 'env_get_string("VORN_INSTALL_SUBDIR") = "x"' in report.lines
    assert 'env_get_string("WB_PREFS") = "b=c"' in report.lines
    assert (  # without the links
        r'fileList(set) = {"share\\wr-qev-1.0a\\readme.txt", "part/wr-qev-1.0a/a.prefs", '
        '"part/wr-qev-1.0a/wr-setup/setup.sh", "part/wr-qev-1.0a/wr-setup/uninst_wr_qev.sh"}'
    ) in report.lines
    assert report.status == 1


def test_session_folder_is_the_one_of_the_name_that_was_given(site):
    site.shell('ln -s "$PWD" elsewhere; mkdir log')
    report = site.wb_trial("run", "elsewhere/s.toml", "find_wb_components", "--trace")
    assert 'env_get_string("log_file") = "./log"' in report.lines


@table(
    "script, output",
    {
        "no input": ("read -r line || echo end of input", ["end of input"]),
        "what ends a process": ("sh -c 'kill -PIPE $$'; echo $?", ["141"]),
        "no descriptors": ("for n in 3 4 5 6 7 8 9; do (: <&$n) 2>/dev/null && echo $n; done; true", []),
        "a report that says what runs": ("grep -c runs: ../report", ["1"]),
    },
)
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


@keyed_table(
    "log, failure",
    {
        "absent/log": 'the log "absent/log" cannot be opened (No such file or directory)',
        "/dev/full": "the log cannot be written",
    },
)
def test_lines_that_the_log_does_not_take_go_to_standard_error(site, log, failure):
    report = site.run("find_wb_components", "find_wb_components", variables={"log_file": log})
    assert report.lines.count("workbench_int: find_wb_components entered") == 2
    says(report.failures, f"find_wb_components: {failure}; its lines go to standard error")


@keyed_table(
    "line, arguments",
    {
        'exec 8<>pipe 9>pipe 8<&-; "$@" >&9': "install s.toml",
        '"$@" >&-': "run s.toml find_wb_components",
        '"$@" >/dev/full': "check --no-sandbox s.toml",
        'exec "$@" >/dev/full': "--version",
    },
)
def test_a_report_that_cannot_be_written_is_a_failure(site, line, arguments):
    site.shell("mkfifo pipe")
    report = site.wb_trial(*shlex.split(arguments), within=sh(line))
    assert report.lines[-1] == "wb-trial: the report cannot be written" and report.status == 1
    assert "install" not in arguments or "found WB prefs file" in site.log.read_text()


def test_installed_it_finds_the_library_that_was_installed_with_it(site):
    install = ["cmake", "--install", BUILD, "--prefix", site.root / "usr"]
    subprocess.run(install, capture_output=True)  # which fails where its list cannot be written
    path = {"PATH": f"{site.root}/usr/bin:{site.environment['PATH']}"}
    report = site.run("find_wb_components", environment=path)
    assert report.lines[0] == "find_wb_components returned 0" and report.status == 0


@table(
    "environment, status, said",
    {
        "kept": ({}, 1, "\n1.."),
        "not tried": ({"TMPDIR": "/absent"}, 1, "find_wb_components: the result is 1"),
    },
)
def test_its_own_operations_keep_what_an_installer_promises(site, environment, status, said):
    hostcheck = site.program / "hostcheck/libworkbench-int.so.1n"
    report = site.run("find_wb_components", "--plugin", str(hostcheck), environment=environment)
    assert "\nnot ok" not in report.text and said in report.text and report.status == status
