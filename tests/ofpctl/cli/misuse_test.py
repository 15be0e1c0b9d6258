"""Input that nobody should give: a clear error, status 2, nothing sent, and never a crash."""
import os
import random
import socket
import subprocess
import sys
import unittest

from harness import SandboxTest, as_nobody, can_be_nobody

READING = (["flow", "load"], ["flow", "check"], ["flow", "format"], ["flow", "diff"], ["flow", "replace"],
           ["flow", "add", "-f"], ["flow", "mod", "-f"], ["flow", "del", "-f"])


class FileTest(SandboxTest):
    def check_all(self, name, message):
        for words in READING:
            with self.subTest(" ".join(words)):
                result = self.run_fails(2, *words, name)
                self.assertIn(message, result.err)
                self.assertEqual(result.out, "")

    def test_a_file_that_is_not_there(self):
        self.check_all("missing.flows", "ofpctl: missing.flows: No such file or directory\n")

    def test_a_directory(self):
        self.check_all(".", "ofpctl: .: is a directory; a file is wanted\n")

    def test_a_socket(self):
        listener = socket.socket(socket.AF_UNIX)
        listener.bind(str(self.sandbox.folder / "socket"))
        self.check_all("socket", "socket: No such device or address")
        listener.close()

    def test_a_binary_file(self):
        self.sandbox.write("binary", random.Random(1).randbytes(100_000))
        self.check_all("binary", "binary:1:")

    def test_zero_bytes(self):
        self.sandbox.write("zeros", b"\0" * 1000)
        self.check_all("zeros", "zeros:1:1: the line holds a zero byte")

    def test_a_line_without_end(self):
        self.sandbox.write("long", "x" * 3_000_000)
        self.check_all("long", "long:1:1: the line is longer than 1 MiB")

    def test_the_name_of_a_file_may_be_anything(self):
        name = "--strange \n\"name\".flows"
        self.sandbox.write(name, "priority=1,in_port=1,actions=drop\n")
        self.assertEqual(self.run_ok("flow", "check", "--", name).out, "1 rule, well formed\n")
        self.run_fails(2, "flow", "check", "no \xff\n such file")

    @unittest.skipUnless(can_be_nobody(), "takes root to become another user")
    def test_a_file_that_may_not_be_read(self):
        os.chmod(self.sandbox.folder, 0o755)
        self.sandbox.write("secret.flows", "priority=1,actions=drop\n")
        (self.sandbox.folder / "secret.flows").chmod(0o600)
        result = self.sandbox.run("flow", "check", "secret.flows", preexec_fn=as_nobody)
        self.assertEqual((result.status, result.err), (2, "ofpctl: secret.flows: Permission denied\n"))

    def test_a_closed_standard_input(self):
        # It is /dev/null then, which holds no rule.
        result = self.sandbox.shell("ofpctl flow check - <&-")
        self.assertEqual((result.status, result.err), (2, "ofpctl: there is no rule in the input\n"))

    def test_nothing_of_all_this_reached_the_agent(self):
        self.assertEqual(self.run_ok("flow", "count").out, "0\n")


class NonsenseTest(SandboxTest):
    agent = False
    WORDS = ("flow", "add", "load", "check", "group", "del", "--json", "-v", "--client", "4096", "-", "--", "-f",
             "--timeout", "1", "priority=1,actions=drop", "{", "[", "", " ", "\t", "=", "-=", "--=", "---", "\x7f",
             "--file=", "help", "-h", "--version", "%s%n", "é", "\udcff", "9" * 400, "a" * 70_000)

    def test_any_words_end_in_a_status_of_the_contract(self):
        generator = random.Random(7)
        for _ in range(150):
            words = [generator.choice(self.WORDS) for _ in range(generator.randrange(6))]
            with self.subTest([word[:100] for word in words]):
                result = self.sandbox.run(*words)
                self.assertIn(result.status, (0, 1, 2, 3), result)
                if result.status != 0:
                    self.assertTrue(result.err.startswith(("ofpctl: ", "argument ", "standard input")), result)
                    self.assertNotIn("a mistake in ofpctl", result.err)
                    self.assertLess(len(result.err), 20_000)
                end = words.index("--") if "--" in words else len(words)
                if "--json" in words[:end]:
                    result.json()

    def test_words_cannot_write_to_the_terminal(self):
        result = self.sandbox.run("\033[2Jflow\n\r", "show")
        self.assertRegex(result.err, r"^ofpctl: \?\[2Jflow\?\?: no such object; one of agent, [a-z, ]*\n$")

    def test_no_words_at_all_not_even_the_name(self):
        # An empty argv has no room for the program's name.
        code = "import ctypes, os; ctypes.CDLL(None).execv(os.environ['OFPCTL'].encode(), (ctypes.c_char_p * 1)(None))"
        result = subprocess.run([sys.executable, "-c", code], capture_output=True, text=True, check=False, timeout=60,
                                env=dict(self.sandbox.environment, OFPCTL=os.environ["OFPCTL"]))
        self.assertEqual(result.returncode, 2, result)


if __name__ == "__main__":
    unittest.main()
