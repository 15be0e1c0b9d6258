"""What is known of every rule when a load ends before its end: exactly what, and nothing more."""
import os
import signal
import subprocess
import time
import unittest

from harness import SandboxTest, interrupt

SLICE = 240     # rules in one call of the library
BATCH = 12      # rules in one datagram


class MidLoadTest(SandboxTest):
    agent = False
    RULES = 1000

    def setUp(self):
        self.sandbox.rules("many.flows", self.RULES)

    def tearDown(self):
        self.sandbox.stop_fake()

    def load(self, *words):
        return self.sandbox.run("flow", "load", "many.flows", *words)

    def check(self, result, accepted, refused, unanswered, not_sent):
        document = result.json()
        self.assertEqual([document[key] for key in ("accepted", "refused", "unanswered", "not_sent")],
                         [accepted, refused, unanswered, not_sent], document)
        self.assertEqual(accepted + refused + unanswered + not_sent, self.RULES)
        return document


class AgentGoneTest(MidLoadTest):
    def test_killed_in_mid_call(self):
        self.sandbox.start_fake("--die-after", "25")    # 300 rules: into the second call
        result = self.load()
        self.assertEqual(result.status, 3, result)
        self.assertEqual(result.out, "many.flows:301 to many.flows:480 (180 rules): unanswered\n"
                                     "many.flows:481 to many.flows:1000 (520 rules): not sent\n"
                                     "accepted 300, refused 0, unanswered 180, not sent 520\n")
        self.assertEqual(result.err, "ofpctl: adding: the agent went away; the agent is not running; "
                                     "start it with: ofpctl agent start\n")
        self.assertEqual(self.sandbox.run("agent", "status").status, 3, "no other agent was started")

    def test_killed_in_mid_call_as_json(self):
        self.sandbox.start_fake("--die-after", "25", "--refuse", "100")
        result = self.load("--json")
        self.assertEqual(result.status, 3, result)
        document = self.check(result, 297, 3, 180, 520)
        self.assertEqual([(r["rule"], r["count"], r["outcome"]) for r in document["results"]],
                         [("many.flows:100", 1, "refused"), ("many.flows:200", 1, "refused"),
                          ("many.flows:300", 1, "refused"), ("many.flows:301", 180, "unanswered"),
                          ("many.flows:481", 520, "not sent")])
        self.assertEqual(document["error"]["name"], "OFP_RC_DAEMON_DOWN")

    def test_killed_between_two_calls(self):
        self.sandbox.start_fake("--die-after", str(SLICE // BATCH))
        result = self.load("--json")
        self.assertEqual(result.status, 3, result)
        document = result.json()
        self.assertEqual(document["accepted"], SLICE)
        self.assertEqual(document["unanswered"] + document["not_sent"], self.RULES - SLICE)

    def test_silent_in_mid_call(self):
        self.sandbox.start_fake("--silent-after", "25")
        begin = time.monotonic()
        result = self.load("--timeout", "1", "--json")
        self.assertLess(time.monotonic() - begin, 20)
        self.assertEqual(result.status, 4, result)
        document = self.check(result, 300, 0, 180, 520)
        self.assertEqual(document["error"]["name"], "OFP_RC_NO_REPLY")
        self.assertEqual(document["error"]["message"], "adding: the agent did not answer within 1 seconds")

    def test_a_real_agent_killed_hard(self):
        self.sandbox.rules("long.flows", 200_000)
        pid = self.sandbox.start_agent()
        process = self.sandbox.start("flow", "load", "long.flows", "--json")
        self.wait_until(lambda: int(self.sandbox.run("flow", "count").out) > 500)
        os.kill(pid, signal.SIGKILL)
        result = self.sandbox.finish(process)
        self.assertEqual(result.status, 3, result.err)
        document = result.json()
        counts = [document[key] for key in ("accepted", "refused", "unanswered", "not_sent")]
        self.assertEqual(sum(counts), 200_000)
        self.assertGreater(document["accepted"], 500)
        self.assertLess(document["accepted"], 200_000)
        self.assertEqual(document["refused"], 0)
        self.assertLessEqual(document["unanswered"], SLICE)
        self.assertEqual(self.sandbox.run("agent", "status").status, 3, "no other agent was started")

    def test_deletions_and_changes_know_it_too(self):
        self.sandbox.start_fake("--die-after", "0")
        for verb in ("mod", "del"):
            with self.subTest(verb):
                result = self.sandbox.run("flow", verb, "priority=1,in_port=1,actions=drop")
                self.assertEqual(result.status, 3, result)
                self.assertIn("argument 1: unanswered", result.out)
            self.sandbox.start_fake("--die-after", "0")


class InterruptTest(MidLoadTest):
    def interrupt_load(self, number, *words):
        self.sandbox.start_fake("--delay", "0.02")      # 0.4 s a call
        process = self.sandbox.start("flow", "load", "many.flows", *words)
        time.sleep(0.6)
        interrupt(process, number)
        return self.sandbox.finish(process)

    def test_the_call_under_way_is_finished_and_the_rest_not_sent(self):
        result = self.interrupt_load(signal.SIGINT, "--json")
        self.assertEqual(result.status, 130, result)
        document = result.json()
        self.assertEqual(document["accepted"] % SLICE, 0)
        self.assertGreater(document["accepted"], 0)
        self.check(result, document["accepted"], 0, 0, self.RULES - document["accepted"])
        self.assertEqual(document["error"]["name"], "INTERRUPTED")

    def test_sigterm_has_a_status_of_its_own(self):
        result = self.interrupt_load(signal.SIGTERM)
        self.assertEqual(result.status, 143, result)
        self.assertRegex(result.out, r"not sent\naccepted \d+, refused 0, not sent \d+\n$")
        self.assertEqual(result.err, "ofpctl: interrupted\n")

    def test_a_second_interrupt_ends_the_wait(self):
        self.sandbox.start_fake("--silent-after", "1")
        process = self.sandbox.start("flow", "load", "many.flows", "--json")
        time.sleep(0.5)
        interrupt(process)
        time.sleep(0.3)
        self.assertIsNone(process.poll(), "the first one lets the call finish")
        interrupt(process)
        result = self.sandbox.finish(process)
        self.assertEqual(result.status, 130, result)
        self.check(result, 12, 0, SLICE - 12, self.RULES - SLICE)

    def test_a_query_is_interrupted_at_once(self):
        self.sandbox.start_fake("--silent")
        process = self.sandbox.start("flow", "count", "--json")
        time.sleep(0.5)
        begin = time.monotonic()
        interrupt(process)
        result = self.sandbox.finish(process)
        self.assertLess(time.monotonic() - begin, 5)
        self.assertEqual(result.status, 130, result)
        result.json()

    def test_waiting_for_standard_input_is_interrupted_at_once(self):
        self.sandbox.start_fake()
        process = self.sandbox.start("flow", "add", "-", "--json", stdin=subprocess.PIPE)
        time.sleep(0.5)
        interrupt(process)
        self.assertEqual(process.wait(timeout=10), 130)
        out, err = process.communicate()
        self.assertIn('"name":"INTERRUPTED"', out)
        self.assertEqual(err, "ofpctl: interrupted; nothing was sent\n")


class MisbehavingAgentTest(SandboxTest):
    """No wait is without bound, and no answer is believed that makes no sense."""
    agent = False

    def tearDown(self):
        self.sandbox.stop_fake()

    COMMANDS = (["flow", "add", "priority=1,in_port=1,actions=drop"], ["flow", "del", "priority=1"],
                ["flow", "show"], ["flow", "count"], ["group", "add", "group_id=1,type=all,bucket=output:1"],
                ["group", "del", "1"], ["table", "list"], ["instance", "add", "1"], ["smooth", "start"])

    def test_silence_is_no_reply(self):
        self.sandbox.start_fake("--silent")
        for words in self.COMMANDS:
            with self.subTest(" ".join(words)):
                result = self.sandbox.run(*words, "--timeout", "1", "--json")
                self.assertEqual(result.status, 4, result)
                self.assertEqual(result.json()["error"]["code"], "0x22300010")

    def test_client_4097_does_not_wait_for_ever_either(self):
        self.sandbox.start_fake("--silent")
        result = self.sandbox.run("flow", "add", "--client", "4097", "priority=1,actions=drop", "--timeout", "1")
        self.assertEqual(result.status, 4, result)
        self.assertEqual(result.err, "ofpctl: client 4097: the agent did not answer within 1 seconds\n")

    def test_a_stopped_agent_is_no_reply(self):
        self.sandbox.start_fake()
        self.sandbox.freeze_fake()
        result = self.sandbox.run("flow", "show", "--timeout", "1")
        self.assertEqual(result.status, 4, result)

    def test_a_hang_up_is_no_reply(self):
        self.sandbox.start_fake("--hang-up")
        for words in self.COMMANDS:
            with self.subTest(" ".join(words)):
                result = self.sandbox.run(*words, "--json")
                self.assertEqual(result.status, 4, result)
                self.assertIn("closed the connection", result.json()["error"]["message"])

    def test_nonsense_ends_in_a_failure(self):
        self.sandbox.start_fake("--garbage")
        for words in self.COMMANDS:
            with self.subTest(" ".join(words)):
                result = self.sandbox.run(*words, "--timeout", "1", "--json")
                self.assertIn(result.status, (0, 1, 4), result)
                result.json()


if __name__ == "__main__":
    unittest.main()
