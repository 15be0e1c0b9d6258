"""Runs the real ofpctl in a runtime directory of its own, with a real agent, a fake one or none."""
import contextlib
import json
import os
import pathlib
import shutil
import signal
import subprocess
import sys
import tempfile
import time
import unittest

HERE = pathlib.Path(__file__).resolve().parent
OFPCTL = os.environ["OFPCTL"]
AGENT = os.environ["OFP_AGENT"]
PATIENCE = 60   # seconds that no command may take


class Result:
    def __init__(self, status, out, err):
        self.status = status
        self.out = out
        self.err = err

    def json(self):
        """The one document on standard output; a test of its own."""
        assert self.out.endswith("\n"), f"no line end: {self.out!r}"
        assert self.out.count("\n") == 1, f"more than one line: {self.out!r}"
        document = json.loads(self.out)
        assert document["schema"] == "ofpctl/1", document
        assert document["ok"] == ("error" not in document), document
        if not document["ok"]:
            error = document["error"]
            assert set(error) == {"code", "name", "message", "status"}, error
            assert error["message"] and error["name"], error
            assert error["status"] == self.status, (error, self.status)
        return document

    def __repr__(self):
        return f"status {self.status}\n--- out\n{self.out}\n--- err\n{self.err}"


class Sandbox:
    """A folder with a runtime directory in it; commands run there."""

    def __init__(self):
        self.folder = pathlib.Path(tempfile.mkdtemp(prefix="ofpctl-test-"))
        self.runtime = self.folder / "run"
        self.runtime.mkdir(mode=0o700)
        self.environment = {
            "PATH": os.environ["PATH"], "HOME": str(self.folder), "LC_ALL": "C.UTF-8",
            "OFP_RUNTIME_DIR": str(self.runtime), "OFP_AGENT": AGENT,
        }
        for name in ("ASAN_OPTIONS", "UBSAN_OPTIONS"):
            if name in os.environ:
                self.environment[name] = os.environ[name]
        self.fake = None

    def close(self):
        self.stop_fake()
        with contextlib.suppress(Exception):
            self.run("agent", "stop", "--timeout", "10")
        shutil.rmtree(self.folder, ignore_errors=True)

    def write(self, name, text):
        path = self.folder / name
        if isinstance(text, bytes):
            path.write_bytes(text)
        else:
            path.write_text(text)
        return name

    def start(self, *arguments, **options):
        """A command under way."""
        environment = dict(self.environment, **options.pop("environment", {}))
        return subprocess.Popen([OFPCTL, *arguments], cwd=self.folder, env=environment,
                                stdin=options.pop("stdin", subprocess.DEVNULL),
                                stdout=options.pop("stdout", subprocess.PIPE),
                                stderr=options.pop("stderr", subprocess.PIPE), text=True,
                                errors="surrogateescape", **options)

    @staticmethod
    def finish(process, given=None):
        try:
            out, err = process.communicate(given, timeout=PATIENCE)
        except subprocess.TimeoutExpired:
            process.kill()
            out, err = process.communicate()
            raise AssertionError(f"did not end within {PATIENCE} s\n{out}\n{err}") from None
        return Result(process.returncode, out, err)

    def run(self, *arguments, given=None, **options):
        stdin = subprocess.DEVNULL if given is None else subprocess.PIPE
        return self.finish(self.start(*arguments, stdin=stdin, **options), given)

    def shell(self, command):
        """A command line as a user types it, with ofpctl in the path."""
        environment = dict(self.environment)
        environment["PATH"] = f"{pathlib.Path(OFPCTL).parent}:{environment['PATH']}"
        return self.finish(subprocess.Popen(["bash", "-c", command], cwd=self.folder, env=environment,
                                            stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                                            stderr=subprocess.PIPE, text=True, errors="surrogateescape"))

    def start_agent(self):
        result = self.run("agent", "start")
        assert result.status == 0, result
        return self.agent_pid()

    def agent_pid(self):
        return self.run("agent", "status", "--json").json().get("pid", 0)

    def start_fake(self, *options):
        self.stop_fake()
        self.fake = subprocess.Popen([sys.executable, str(HERE / "fake_agent.py"), str(self.runtime), *options],
                                     stdout=subprocess.PIPE, text=True)
        line = self.fake.stdout.readline()
        assert line == "ready\n", line

    def stop_fake(self):
        if self.fake:
            self.fake.kill()
            self.fake.wait()
            self.fake.stdout.close()
            self.fake = None

    def rules(self, name, count, priority=100):
        """A file of distinct rules that do not overlap."""
        return self.write(name, "".join(
            f"priority={priority},ip,nw_dst={10 + n // 65536}.{n // 256 % 256}.{n % 256}.1,actions=output:{1 + n % 40}\n"
            for n in range(count)))


class SandboxTest(unittest.TestCase):
    """Tests that share a sandbox, with a real agent unless agent is False."""
    agent = True
    maxDiff = None

    @classmethod
    def setUpClass(cls):
        cls.sandbox = Sandbox()
        if cls.agent:
            cls.sandbox.start_agent()

    @classmethod
    def tearDownClass(cls):
        cls.sandbox.close()

    def run_ok(self, *arguments, **options):
        result = self.sandbox.run(*arguments, **options)
        self.assertEqual(result.status, 0, result)
        return result

    def run_json(self, status, *arguments, **options):
        result = self.sandbox.run("--json", *arguments, **options)
        self.assertEqual(result.status, status, result)
        return result.json()

    def run_fails(self, status, *arguments, **options):
        """Fails with the status, with a message, and as well with --json."""
        result = self.sandbox.run(*arguments, **options)
        self.assertEqual(result.status, status, result)
        self.assertTrue(result.err.strip(), result)
        document = self.run_json(status, *arguments, **options)
        self.assertFalse(document["ok"])
        return result

    def delete_all(self):
        self.run_ok("flow", "del", "priority=1")

    @staticmethod
    def wait_until(condition, seconds=20):
        end = time.monotonic() + seconds
        while not condition():
            if time.monotonic() > end:
                raise AssertionError("did not come about")
            time.sleep(0.01)


def is_running(pid):
    """Whether there is such a process that is more than a name in the table of processes."""
    try:
        with open(f"/proc/{pid}/stat", encoding="utf-8") as file:
            return file.read().rpartition(")")[2].split()[0] != "Z"
    except OSError:
        return False


def interrupt(process, number=signal.SIGINT):
    process.send_signal(number)


def can_be_nobody():
    """Whether tests may run ofpctl as another user: root may, where others may read the build."""
    if os.getuid() != 0:
        return False
    try:
        return subprocess.run([OFPCTL, "--version"], preexec_fn=as_nobody, capture_output=True, check=False).returncode == 0
    except PermissionError:
        return False


def as_nobody():
    """Before a program starts: gives up being root, so that permissions count."""
    if os.getuid() == 0:
        os.setgroups([])
        os.setgid(65534)
        os.setuid(65534)
