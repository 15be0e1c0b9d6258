"""Showing again and again, and long lists: as they come, in bounded memory."""
import json
import os
import signal
import struct
import subprocess
import time
import unittest

from harness import OFPCTL, SandboxTest, interrupt


class WatchTest(SandboxTest):
    def test_it_goes_on_until_it_is_interrupted(self):
        process = self.sandbox.start("instance", "list", "--watch", "1", "--json")
        first = json.loads(process.stdout.readline())
        second = json.loads(process.stdout.readline())
        self.assertEqual(first, second)
        interrupt(process)
        result = self.sandbox.finish(process)
        self.assertEqual(result.status, 128 + signal.SIGINT, result)
        last = json.loads(result.out)
        self.assertEqual(last["error"]["name"], "INTERRUPTED")

    def test_rounds_end_it(self):
        out = self.run_ok("instance", "list", "--watch", "1", "--rounds", "2").out
        self.assertEqual(out.count("INSTANCE"), 2)
        self.assertRegex(out, r"^-- \d\d:\d\d:\d\d\n")

    def test_an_agent_that_goes_away_ends_it(self):
        process = self.sandbox.start("instance", "list", "--watch", "1")
        process.stdout.readline()
        self.run_ok("agent", "stop")
        result = self.sandbox.finish(process)
        self.assertEqual(result.status, 3, result)
        self.sandbox.start_agent()


class ManyTest(SandboxTest):
    """Ten thousand groups: printed as they arrive, and no more memory than for a few."""
    COUNT = 10_000

    @classmethod
    def setUpClass(cls):
        super().setUpClass()
        ids = range(1, cls.COUNT + 1)
        for start in range(0, cls.COUNT, 2000):
            groups = [f"group_id={n},type=all,bucket=output:1" for n in ids[start:start + 2000]]
            result = cls.sandbox.run("group", "add", *groups)
            assert result.status == 0, result

    def peak(self, *words):
        """The largest resident size, in KiB, and the lines printed."""
        process = subprocess.Popen([OFPCTL, *words], cwd=self.sandbox.folder, env=self.sandbox.environment,
                                   stdout=subprocess.PIPE, stderr=subprocess.DEVNULL)
        first = process.stdout.readline()
        lines = 1 + sum(1 for _ in process.stdout)
        _, status, usage = os.wait4(process.pid, 0)
        process.returncode = os.waitstatus_to_exitcode(status)
        process.stdout.close()
        self.assertEqual(process.returncode, 0)
        self.assertTrue(first)
        return usage.ru_maxrss, lines

    @unittest.skipIf(os.environ.get("OFP_SANITIZED") == "1", "a sanitizer keeps what was freed")
    def test_memory_does_not_grow_with_the_list(self):
        few, _ = self.peak("table", "list")
        many, lines = self.peak("group", "list")
        self.assertEqual(lines, self.COUNT + 1)
        self.assertLess(many, few + 4096)
        many, _ = self.peak("group", "list", "--json")
        self.assertLess(many, few + 4096)

    def test_the_first_entries_are_there_long_before_the_last(self):
        begin = time.monotonic()
        process = self.sandbox.start("group", "list")
        process.stdout.readline()
        self.assertIn(" all ", process.stdout.readline())
        first = time.monotonic() - begin
        result = self.sandbox.finish(process)
        self.assertEqual(result.status, 0)
        self.assertLess(first, (time.monotonic() - begin) / 2)


class LyingAgentTest(SandboxTest):
    """Iterations over an agent whose answers go round in circles end."""
    agent = False

    def tearDown(self):
        self.sandbox.stop_fake()

    @staticmethod
    def reply(code, kind, value):
        return (struct.pack(">HHI", 1, 4, code) + struct.pack(">HH", kind, len(value)) + value).hex()

    def check(self, *words, answers):
        options = [word for code, answer in answers for word in ("--answer", f"{code:#x}={answer}")]
        self.sandbox.start_fake(*options)
        result = self.run_fails(1, *words)
        self.assertRegex(result.err, r"the agent lists \w+ \d+ after \d+")

    def test_ids_that_do_not_ascend(self):
        self.check("instance", "list", answers=[(0x10000003, self.reply(0x20000003, 4, b"\0\5\0\0")),
                                                (0x10000010, self.reply(0x20000011, 67, b"\0\1\0\0"))])
        self.check("controller", "list", "1", answers=[
            (0x1000001f, self.reply(0x20000004, 6, bytes(192)))])
        self.check("table", "list", answers=[(0x10000009, self.reply(0x2000000a, 35, b"\5\0\0\0")),
                                             (0x1000000a, self.reply(0x2000000b, 55, bytes(28)))])

    def test_short_records_are_no_trouble(self):
        for answer in (self.reply(0x20000004, 6, bytes(1)), self.reply(0x20000004, 6, bytes(191)),
                       self.reply(0x20000004, 7, bytes(192)), "", "00", "0001000420000004"):
            with self.subTest(answer[:40]):
                self.sandbox.start_fake("--answer", f"0x1000001f={answer}")
                result = self.sandbox.run("controller", "list", "1")
                self.assertIn(result.status, (1, 4), result)

    def test_details_of_garbage(self):
        self.sandbox.start_fake("--garbage")
        for words in (["instance", "list"], ["instance", "show", "1"], ["controller", "list", "1"],
                      ["controller", "show", "1", "0"], ["group", "list"], ["group", "show", "1"], ["meter", "list"],
                      ["meter", "show", "1"], ["table", "list"], ["table", "show", "1"], ["port", "list"],
                      ["resource", "show"], ["app", "list"], ["summary"], ["debug", "show", "0", "0"], ["global", "show"]):
            with self.subTest(" ".join(words)):
                result = self.sandbox.run("--json", *words)
                self.assertIn(result.status, (0, 1, 4, 5), result)
                result.json()


if __name__ == "__main__":
    unittest.main()
