#!/usr/bin/env python3
"""quenby-sim as a person meets it, as a process: help on stdout, an unusable
container refused before anything runs, a REPL on a pseudo-terminal (a typo,
help, Up to recall a line, a passing expect), temporary folders gone after
SIGINT and SIGTERM, and the manual's shell examples run as written.

usage: cli_process_test.py QUENBY_SIM SOURCE_DIR
"""
import os
import pty
import select
import signal
import subprocess
import sys
import tempfile
import termios
import time

SIM, SOURCE = sys.argv[1], sys.argv[2]
failures = []


def check(ok, what):
    if not ok:
        failures.append(what)
        print("FAIL:", what)


def run(args, **kw):
    return subprocess.run([SIM] + args, capture_output=True, text=True, timeout=60, **kw)


def help_goes_to_stdout():
    for args in (["--help"], ["help"]):
        r = run(args)
        check(r.returncode == 0 and "usage: quenby-sim" in r.stdout and r.stderr == "",
              f"{args}: exit {r.returncode}, stdout {r.stdout[:60]!r}, stderr {r.stderr!r}")
    r = run(["help", "show", "screen"])
    check(r.returncode == 0 and "show screen" in r.stdout, f"help show screen: {r.stdout!r}")
    r = run(["rnu", "x.qbs"])
    check(r.returncode == 2 and "unknown mode 'rnu' (did you mean 'run'?)" in r.stderr,
          f"rnu: {r.stderr!r}")
    r = run(["help", "lanch"])
    check(r.returncode == 2 and "did you mean 'launch'" in r.stderr, f"help lanch: {r.stderr!r}")


def unusable_container_is_one_line_before_anything_runs():
    with tempfile.TemporaryDirectory() as d:
        somefile = os.path.join(d, "somefile")
        open(somefile, "w").write("x")
        script = os.path.join(d, "s.qbs")
        open(script, "w").write("launch\nexpect file password 7351\n")
        r = run(["--container", somefile, "run", script])
        check(r.returncode == 2 and r.stdout == "" and
              r.stderr.strip() == f"quenby-sim: --container {somefile}: is not a folder",
              f"container file: {r.returncode} {r.stdout!r} {r.stderr!r}")
        fresh = os.path.join(d, "new", "container")
        r = run(["--container", fresh, "run", script])
        check(r.returncode == 1 and os.path.isdir(os.path.join(fresh, "Documents")),
              f"a missing container is made: {r.returncode} {r.stdout!r}")


def exit_code(pid, seconds=30):
    """The REPL's exit status; a REPL still running after `seconds` is killed
    and counted as a failure rather than left to hang the test."""
    deadline = time.time() + seconds
    while time.time() < deadline:
        done, status = os.waitpid(pid, os.WNOHANG)
        if done:
            return os.waitstatus_to_exitcode(status)
        time.sleep(0.1)
    os.kill(pid, signal.SIGKILL)
    os.waitpid(pid, 0)
    check(False, f"the REPL did not end within {seconds} s of its end of input")
    return None


# A loaded machine can take seconds to answer a line: wait for each prompt
# generously, since a line typed before it would land in the wrong place.
def read_until(fd, text, seconds=60):
    seen = b""
    deadline = time.time() + seconds
    while text.encode() not in seen and time.time() < deadline:
        ready, _, _ = select.select([fd], [], [], 0.2)
        if ready:
            try:
                chunk = os.read(fd, 4096)
            except OSError:
                break
            if not chunk:
                break
            seen += chunk
    return seen.decode("utf-8", "replace")


def type_keys(fd, keys, seconds=60):
    """Writes `keys` once the line editor holds the terminal: a key typed while
    it is still cooked (the prompt is printed before the editor takes the
    terminal) is echoed by the terminal itself, Up as ^[[A."""
    deadline = time.time() + seconds
    while termios.tcgetattr(fd)[3] & termios.ICANON and time.time() < deadline:
        time.sleep(0.01)
    os.write(fd, keys)


def repl_on_a_terminal():
    pid, fd = pty.fork()
    if pid == 0:
        os.execv(SIM, [SIM, "repl"])
    transcript = read_until(fd, "qb> ")
    for line, wait_for in [("friend alice", "qb> "), ("lanch", "qb> "),
                           ("launch", "qb> "), ("help expect main", "qb> "),
                           ("session alice", "qb> ")]:
        type_keys(fd, (line + "\r").encode())
        transcript += read_until(fd, wait_for)
    type_keys(fd, b"expect main alice\r")
    transcript += read_until(fd, "qb> ")
    # Up twice recalls "session alice"... once recalls the expect just typed.
    type_keys(fd, b"\x1b[A\r")
    transcript += read_until(fd, "\nqb> ")  # not the prompt Up redraws
    type_keys(fd, b"expect main bo\t\r")  # completion of a username that is not there
    # The prompt after the line's end: the completion redraws one before it,
    # and a ^D typed before the REPL reads again would reach a cooked terminal.
    transcript += read_until(fd, "\nqb> ")
    type_keys(fd, b"\x04")
    transcript += read_until(fd, "\n", 5)
    code = exit_code(pid)
    check("unknown command 'lanch' (did you mean 'launch'?)" in transcript,
          "the typo's line: " + transcript)
    check("expect main [USER...]" in transcript, "help expect main: " + transcript)
    check("^[[A" not in transcript, "Up printed as a key: " + transcript)
    check(transcript.count("expect main alice") >= 2, "Up recalled no line: " + transcript)
    check(code == 1 and "expect main bo" in transcript, f"failed expect: exit {code}")
    # The same session without the failing line ends with 0.
    pid, fd = pty.fork()
    if pid == 0:
        os.execv(SIM, [SIM, "repl"])
    transcript = read_until(fd, "qb> ")
    for line in ["friend alice", "lanch", "help", "launch", "session alice",
                 "expect main ali\t", "\x1b[A"]:
        type_keys(fd, (line + "\r").encode())
        # The prompt after the line's end: Up redraws one before it, and a ^D
        # typed before the REPL reads again would reach a cooked terminal.
        transcript += read_until(fd, "\nqb> ")
    type_keys(fd, b"\x04")
    transcript += read_until(fd, "\n", 5)
    code = exit_code(pid)
    # "expect main ali" alone would fail: exit 0 means Tab completed it. The
    # whole line appears only where Up redrew it.
    check(code == 0, f"typo, help, Up, passing expect: exit {code}\n{transcript}")
    check("qb> expect main alice" in transcript, "Up did not recall the line: " + transcript)


def signals_leave_no_folder():
    for sig in (signal.SIGTERM, signal.SIGINT):
        with tempfile.TemporaryDirectory() as tmp:
            env = dict(os.environ, TMPDIR=tmp)
            p = subprocess.Popen([SIM, "repl"], stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                                 env=env)
            p.stdin.write(b"launch\nshow main\n")
            p.stdin.flush()
            p.stdout.readline()  # the app runs: its container exists
            made = [os.path.join(r, n) for r, ds, _ in os.walk(tmp) for n in ds]
            check(any("quenby-device-" in m for m in made), f"no device folder in {made}")
            p.send_signal(sig)
            p.wait(timeout=20)
            left = os.listdir(tmp)
            check(left == [], f"{sig.name} left {left}")
            check(p.returncode == -sig, f"{sig.name}: exit {p.returncode}")


def manual_shell_examples():
    bindir = os.path.dirname(os.path.abspath(SIM))
    env = dict(os.environ, PATH=bindir + os.pathsep + os.environ["PATH"])
    lines = open(os.path.join(SOURCE, "docs", "simulator.md"), encoding="utf-8").read().split("\n")
    blocks, block = [], None
    for line in lines:
        if block is None and line == "```sh":
            block = []
        elif block is not None and line == "```":
            blocks.append(block)
            block = None
        elif block is not None:
            block.append(line)
    check(len(blocks) >= 3, f"only {len(blocks)} shell examples")
    for block in blocks:
        for command in block:
            r = subprocess.run(["bash", "-c", "set -o pipefail; " + command], cwd=SOURCE,
                               env=env, capture_output=True, text=True, timeout=300)
            check(r.returncode == 0, f"`{command}`: exit {r.returncode}\n{r.stdout}{r.stderr}")


help_goes_to_stdout()
unusable_container_is_one_line_before_anything_runs()
repl_on_a_terminal()
signals_leave_no_folder()
manual_shell_examples()
print("\n".join(failures) if failures else "all passed")
sys.exit(1 if failures else 0)
