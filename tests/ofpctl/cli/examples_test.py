"""The programs under examples/: each does its job, and goes on when the agent is restarted."""
import os
import pathlib
import signal
import subprocess
import unittest

from harness import SandboxTest
from requests import activate_instance, add_instance, set_controller, unset_controller

EXAMPLES = pathlib.Path(os.environ["EXAMPLES"])
INSTANCE = 5


class ExampleTest(SandboxTest):
    def setUp(self):
        self.sandbox.start_agent()

    def start_example(self, name, *words):
        process = subprocess.Popen([EXAMPLES / name, *words], env=self.sandbox.environment,
                                   stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True)
        self.addCleanup(self.end, process)
        return process

    @staticmethod
    def end(process):
        if process.poll() is None:
            process.kill()
        process.communicate()

    def run_example(self, name, *words):
        return self.sandbox.finish(self.start_example(name, *words))

    def count(self, client):
        return int(self.run_ok("flow", "count", "--client", client).out)


class LoaderTest(ExampleTest):
    LOADERS = (("load_sync", "4096"), ("load_sync_cpp", "4099"), ("load_async", "4097"))

    def test_they_load_and_take_away_what_is_not_loaded_again(self):
        for name, client in self.LOADERS:
            with self.subTest(name):
                for rules in (1500, 20):
                    result = self.run_example(name, str(rules))
                    self.assertEqual((result.status, result.out), (0, f"accepted {rules}, refused 0\n"), result)
                    self.wait_until(lambda: self.count(client) == rules)

    def test_they_start_an_agent_if_none_runs(self):
        for name, client in self.LOADERS:
            with self.subTest(name):
                self.run_ok("agent", "stop")
                self.assertEqual(self.run_example(name, "10").status, 0)
                self.assertEqual(self.count(client), 10)

    def test_they_program_everything_again_when_the_agent_is_killed(self):
        for name, client in self.LOADERS:
            with self.subTest(name):
                pid = self.sandbox.start_agent()
                process = self.start_example(name, "100000")
                self.wait_until(lambda: process.poll() is not None or self.count(client) > 100)
                os.kill(pid, signal.SIGKILL)
                result = self.sandbox.finish(process)
                self.assertEqual((result.status, result.out), (0, "accepted 100000, refused 0\n"), result)
                self.assertIn("the agent went away", result.err)
                self.assertEqual(self.count(client), 100_000)


class ListenerTest(ExampleTest):
    def await_line(self, process, stream, line):
        self.assertEqual(stream.readline(), line + "\n", process.args)

    def test_they_tell_events_and_register_again_with_the_next_agent(self):
        for name, application, told in (
                ("event_poll", "3", ["instance 5, controller 1: configured", "0 controllers are connected",
                                     "instance 5, controller 1: removed", "0 controllers are connected"]),
                ("event_libevent", "4", ["0 controllers are connected", "0 controllers are connected"])):
            with self.subTest(name):
                process = self.start_example(name)
                for _agent in range(2):
                    self.await_line(process, process.stderr, f"registered as application {application}")
                    add_instance(self.sandbox, INSTANCE)
                    activate_instance(self.sandbox, INSTANCE)
                    set_controller(self.sandbox, INSTANCE, 1, 1)
                    unset_controller(self.sandbox, INSTANCE, 1)
                    for line in told:
                        self.await_line(process, process.stdout, line)
                    self.run_ok("agent", "stop")
                    self.await_line(process, process.stderr, "the agent went away")
                    self.sandbox.start_agent()
                self.end(process)

    def test_wrong_usage(self):
        for name in ("event_poll", "event_libevent"):
            self.assertEqual(self.run_example(name, "12").status, 2)


class QueryTest(ExampleTest):
    def test_lists_instances_with_their_tables(self):
        self.run_example("load_sync", "12")
        result = self.run_example("query")
        self.assertEqual(result.status, 0, result)
        self.assertIn("instance 4096 table 200: 12 of 1048576 rules\n", result.out)

    def test_does_not_start_an_agent(self):
        self.run_ok("agent", "stop")
        result = self.run_example("query")
        self.assertEqual((result.status, result.err), (1, "the agent is not running\n"))


if __name__ == "__main__":
    unittest.main()
