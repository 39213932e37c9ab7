"""A signal ends wb-trial, with all that it started, and leaves nothing half done."""

import signal
import socket

import pexpect
import pytest
from conftest import as_user, needs_proc, needs_strace, needs_terminal, table

DEFAULT_SIGNALS = ["env", "--default-signal"]  # whatever the tests' own caller ignores


@pytest.fixture
def hanging(site):
    """A setup script that connects to this socket and hangs. The connection ends with it."""
    with socket.create_server(("127.0.0.1", 0)) as server:
        server.settimeout(30)
        port = server.getsockname()[1]
        site.lay(f"exec bash -c 'exec 3<>/dev/tcp/127.0.0.1/{port}; sleep 60'")
        yield server


def accept(server):
    connection = server.accept()[0]
    connection.settimeout(30)
    return connection


def ends_all(process, server, number):
    """Fails unless the signal ends wb-trial, and the hanging script with it."""
    with process, accept(server) as connection:
        process.send_signal(number)
        assert process.wait(30) == -number
        assert connection.recv(1) == b""


@pytest.mark.parametrize("number", [signal.SIGKILL, signal.SIGTERM, signal.SIGINT])
def test_sandbox_ends_with_wb_trial(site, sandbox, hanging, number):
    site.give_to(sandbox.user)
    ends_all(site.start("check", "s.toml", user=sandbox.user, within=DEFAULT_SIGNALS), hanging, number)


ALONE = {
    "install": (["install"], False),
    "check": (["check", "--no-sandbox"], False),
    "copies": (["check", "--no-sandbox"], True),
}


@pytest.mark.parametrize("number", [signal.SIGTERM, signal.SIGINT, signal.SIGHUP])
@table("words, is_copying", ALONE)
@needs_proc
def test_signal_to_wb_trial_alone(site, hanging, number, words, is_copying):
    if is_copying:
        site.shell("cp $setup cp")
    path = {"PATH": f"{site.root}:{site.environment['PATH']}"}
    ends_all(site.start(*words, "s.toml", within=DEFAULT_SIGNALS, environment=path), hanging, number)
    assert site.copy.exists() != is_copying
    assert list(site.temporary.iterdir()) == []


@needs_terminal
def test_script_asks_in_a_terminal_whose_session_wb_trial_leads(site):
    site.lay("read answer </dev/tty; echo $answer >answer")
    terminal = pexpect.spawn("wb-trial install s.toml", cwd=site.root, env=site.environment)
    terminal.sendline("yes")
    terminal.expect(pexpect.EOF)
    assert (site.workbench / "answer").read_text() == "yes\n"


def test_control_c_in_a_terminal(site, way, hanging):
    site.give_to(way.user)
    words = [*DEFAULT_SIGNALS, *as_user(way.user), "wb-trial", "check", *way.options, "s.toml"]
    terminal = pexpect.spawn(words[0], words[1:], cwd=site.root, env=site.environment, timeout=30)
    with accept(hanging) as connection:
        terminal.sendintr()
        terminal.expect(pexpect.EOF)
        assert connection.recv(1) == b""
    terminal.wait()
    assert terminal.signalstatus == signal.SIGINT
    assert b"perform_integration returned" not in terminal.before
    assert list(site.temporary.iterdir()) == []


def signalled(number, call, file):
    """The words before a command that gets a signal with a call of the kernel about that file."""
    inject = f"--inject={call}:signal={number.name}"
    return [*DEFAULT_SIGNALS, "strace", "-qq", "-o", "/dev/null", "-P", str(file), inject]


COPYING = {
    "begun": (signal.SIGHUP, "pread64:when=2", {}),
    "done": (signal.SIGTERM, "newfstatat,statx:when=1", {"large": 0o755}),
    "cannot be held": (signal.SIGKILL, "pread64:when=2", {".wb-trial": 0o600}),
}


@table("number, call, copied", COPYING)
@needs_strace
@needs_proc
def test_signal_while_a_file_is_copied(site, number, call, copied):
    """Nothing that is half written gets its name, or rights for others."""
    file = site.config / "large"
    file.write_bytes(bytes(range(256)) * (1 << 14))
    file.chmod(0o755)
    report = site.integrate(within=signalled(number, call, file))
    assert report.status == -number, report.text
    names = {path.name[:9]: path.stat().st_mode & 0o7777 for path in site.copy.iterdir()}
    assert {name: names[name] for name in names if name in (".wb-trial", "large")} == copied


@needs_strace
def test_control_c_while_a_preferences_file_is_written(site):
    report = site.run("init_wb_prefs", within=signalled(signal.SIGINT, "llistxattr", site.prefs))
    assert report.status == -signal.SIGINT
    assert site.prefs.read_text() == f"a=1\nhome={site.product}/suite\nb=2"
    assert not list(site.config.glob(".wb-trial*"))
