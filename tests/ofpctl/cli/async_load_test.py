"""flow load --async: the same results as without, many rules under way at once."""
import os
import signal
import unittest

from harness import SandboxTest, interrupt


class AsyncLoadTest(SandboxTest):
    def setUp(self):
        self.sandbox.start_agent()
        self.delete_all()

    def test_results_are_those_of_a_synchronous_load(self):
        self.sandbox.write("mixed.flows", "priority=5,in_port=1,actions=output:2\n"
                                          "priority=5,ip,nw_dst=10.0.0.0/8,actions=output:2\n"
                                          "priority=5,ip,nw_dst=10.1.0.0/16,actions=output:3\n"
                                          "priority=5,in_port=2,actions=group:77\n"
                                          "priority=5,in_port=3,actions=output:2\n")
        expected = self.sandbox.run("flow", "load", "mixed.flows", "--verbose")
        self.assertEqual(expected.status, 6, expected)
        for window in (1, 2, 8192):
            self.delete_all()
            result = self.sandbox.run("flow", "load", "--async", "--window", str(window), "mixed.flows", "--verbose")
            self.assertEqual((result.status, result.out, result.err),
                             (expected.status, expected.out, expected.err))
        self.delete_all()
        documents = [self.run_json(6, "flow", "load", "mixed.flows", *more) for more in ([], ["--async"])]
        self.assertEqual(documents[1]["refused"], documents[0]["refused"])
        self.assertEqual(documents[1]["results"], documents[0]["results"])

    def test_a_hundred_thousand_with_all_of_them_under_way(self):
        self.sandbox.rules("many.flows", 100_000)
        result = self.run_ok("flow", "load", "--async", "--window", "1000000", "many.flows")
        self.assertEqual(result.out, "accepted 100000, refused 0, not sent 0\n")
        self.assertEqual(self.run_ok("flow", "count").out, "100000\n")

    def test_every_client(self):
        self.sandbox.rules("few.flows", 100)
        for client in ("4096", "4097", "4099"):
            self.run_ok("flow", "load", "--async", "--client", client, "few.flows")
            self.assertEqual(self.run_ok("flow", "count", "--client", client).out, "100\n")

    def test_a_dry_run_sends_nothing(self):
        self.sandbox.rules("few.flows", 10)
        self.run_ok("flow", "load", "--async", "--dry-run", "few.flows")
        self.assertEqual(self.run_ok("flow", "count").out, "0\n")

    def test_a_window_needs_async(self):
        self.sandbox.rules("few.flows", 10)
        self.assertIn("--window goes with --async", self.run_fails(2, "flow", "load", "--window", "3", "few.flows").err)
        self.run_fails(2, "flow", "load", "--async", "--window", "0", "few.flows")

    def test_an_agent_killed_with_rules_pending(self):
        self.sandbox.rules("long.flows", 300_000)
        pid = self.sandbox.agent_pid()
        process = self.sandbox.start("flow", "load", "--async", "long.flows", "--json")
        self.wait_until(lambda: int(self.sandbox.run("flow", "count").out) > 500)
        os.kill(pid, signal.SIGKILL)
        result = self.sandbox.finish(process)
        self.assertEqual(result.status, 3, result)
        document = result.json()
        self.assertEqual(sum(document[key] for key in ("accepted", "refused", "unanswered", "not_sent")), 300_000)
        self.assertGreater(document["accepted"], 0)
        self.assertGreater(document["not_sent"], 0)

    def test_an_interrupt_takes_the_answers_that_are_due(self):
        self.sandbox.rules("long.flows", 300_000)
        process = self.sandbox.start("flow", "load", "--async", "long.flows", "--json")
        self.wait_until(lambda: int(self.sandbox.run("flow", "count").out) > 500)
        interrupt(process)
        result = self.sandbox.finish(process)
        self.assertEqual(result.status, 130, result)
        document = result.json()
        self.assertEqual(document["unanswered"], 0)
        self.assertEqual(document["accepted"] + document["not_sent"], 300_000)
        self.assertEqual(int(self.run_ok("flow", "count").out), document["accepted"])

    def test_without_an_agent(self):
        self.sandbox.rules("few.flows", 10)
        self.run_ok("agent", "stop")
        self.run_fails(3, "flow", "load", "--async", "few.flows")


if __name__ == "__main__":
    unittest.main()
