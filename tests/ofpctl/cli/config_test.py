"""Configuration through ofpctl: what is checked before anything is sent, what a failure leaves behind."""
import json
import os
import re
import signal
import unittest

from harness import SandboxTest, interrupt


def settings(sandbox, noun, verb):
    """NAME=VALUE forms as the help of the command lists them."""
    text = sandbox.run(noun, verb, "--help").out
    listing = text[text.index("Names and values:"):text.index("Examples:")]
    return re.findall(r"^  (\S+=\S*)", listing, re.M)


# A value for each form that is not a choice.
SAMPLES = {
    "VALUE": "5", "TEXT": "text", "NAME": "name", "ID": "7", "NUMBER": "3", "SECONDS": "9", "DSCP": "46", "ENTRIES": "100",
    "BITS": "0x3", "MODE": "1", "VLANS": "1-10,20", "ID[/MASK][,loose]": "96/0xff0", "ID:KIND,...": "10:2,12:2",
    "ID,...": "0,2", "U64:U64:U8:U16": "1:2:3:4", "EVENT": "5",
}


def sample(form):
    name, value = form.split("=", 1)
    return f"{name}={SAMPLES[value] if value in SAMPLES else value.split('|')[-1]}"


class EverySettingTest(SandboxTest):
    """Each setting that the help lists is taken by the agent, and by itself."""

    def test_of_an_instance(self):
        self.run_ok("instance", "add", "1")
        for form in settings(self.sandbox, "instance", "set"):
            with self.subTest(form):
                self.run_ok("instance", "set", "1", sample(form))

    def test_of_the_switch(self):
        for form in settings(self.sandbox, "global", "set"):
            with self.subTest(form):
                self.run_ok("global", "set", sample(form))

    def test_what_the_agent_reports_is_what_was_set(self):
        self.run_ok("instance", "add", "2")
        words = [sample(form) for form in settings(self.sandbox, "instance", "set")]
        document = self.run_json(0, "instance", "set", "--verify", "2", *words)
        outcomes = {change["name"]: change["outcome"] for change in document["changes"]}
        self.assertEqual(set(outcomes), {word.split("=")[0] for word in words})
        self.assertLessEqual(set(outcomes.values()), {"verified", "not reported"})
        self.assertEqual(outcomes["fail-open"], "verified")
        self.assertEqual(outcomes["management-vlans"], "verified")

    def test_actions_are_read_back(self):
        for words in ("instance add --verify 20", "instance activate --verify 20", "instance deactivate --verify 20",
                      "controller set --verify 20 1 address=2001:db8::1 port=6653 role=slave vrf=a tls-policy=b",
                      "controller set --verify --aux 2 20 1 port=7", "controller del --verify --aux 2 20 1",
                      "controller del --verify 20 1", "port bind --verify GE1/0/20 20",
                      "port unbind --verify GE1/0/20 20", "debug set --verify key0=5 u64-16=9 u32-88=1",
                      "instance del --verify 20"):
            with self.subTest(words):
                self.assertTrue(self.run_ok(*words.split()).out.endswith(" (verified)\n"))

    def test_settings_survive_a_killed_agent(self):
        self.run_ok("instance", "add", "3")
        self.run_ok("instance", "set", "3", "fail-open=standalone", "description=kept", "management-vlans=5-9")
        before = self.run_json(0, "instance", "show", "3")
        os.kill(self.sandbox.agent_pid(), signal.SIGKILL)
        self.wait_until(lambda: self.sandbox.run("agent", "status").status == 3)
        self.sandbox.start_agent()
        self.assertEqual(self.run_json(0, "instance", "show", "3"), before)
        self.assertEqual(before["configured"]["fail-open"], "standalone")
        self.assertEqual(before["configured"]["description"], "kept")


class DryRunTest(SandboxTest):
    """A dry run needs no agent, starts none and sends nothing."""
    agent = False

    def test_it_shows_what_is_really_sent(self):
        words = ["instance", "set", "1", "echo-interval=5", "description=a", "management-vlans=2-4"]
        shown = [datagram["hex"] for datagram in self.run_json(0, *words, "--dry-run")["datagrams"]]
        self.sandbox.start_fake("--record", str(self.sandbox.folder / "record"))
        self.run_ok(*words)
        self.sandbox.stop_fake()
        self.assertEqual(shown, (self.sandbox.folder / "record").read_text().split())
        self.assertEqual(len(shown), 3)

    def test_every_setting_can_be_shown(self):
        for noun, key in (("instance", ["1"]), ("global", []), ("debug", []), ("controller", ["1", "0"])):
            for form in settings(self.sandbox, noun, "set"):
                if form.startswith(("address=", "port=", "vrf=", "role=", "tls-policy=")):
                    words = ["address=192.0.2.1"]
                else:
                    words = [sample(form.replace("=VALUE", "=NUMBER"))]
                with self.subTest(form):
                    document = self.run_json(0, noun, "set", "--dry-run", *key, *words)
                    self.assertEqual(len(document["datagrams"]), 1)
        self.assertEqual(list(self.sandbox.runtime.iterdir()), [])

    def test_what_it_prints_can_be_decoded_again(self):
        document = self.run_json(0, "instance", "set", "-n", "1", "flow-tables=1,2")
        again = self.run_json(0, "msg", "decode", document["datagrams"][0]["hex"])
        self.assertEqual(again["datagrams"], document["datagrams"])


class ApplyTest(SandboxTest):
    """instance apply: nothing is sent when anything is wrong; the difference alone is sent."""

    EDGE = ('instance = {id}\ndescription = "edge"\nfail-open = "standalone"\nports = ["GE1/0/{id}"]\n'
            '[[controller]]\nid = 1\naddress = "192.0.2.1"\nport = 6653\n')

    def apply(self, status, text, *options, name="instance.toml"):
        self.sandbox.write(name, text)
        result = self.sandbox.run("instance", "apply", *options, name)
        self.assertEqual(result.status, status, result)
        return result

    def test_a_new_instance_is_made(self):
        result = self.apply(0, self.EDGE.format(id=11))
        self.assertIn("+ instance 11\n", result.out)
        self.assertTrue(result.out.endswith("5 changes made\n"), result)
        self.assertEqual(self.run_json(0, "instance", "show", "11")["configured"]["description"], "edge")

    def test_the_second_time_there_is_nothing_to_do(self):
        self.apply(0, self.EDGE.format(id=12))
        self.assertEqual(self.apply(0, self.EDGE.format(id=12)).out, "instance 12 is as the file says\n")

    def test_only_the_difference_is_sent(self):
        self.apply(0, self.EDGE.format(id=13))
        changed = self.EDGE.format(id=13).replace('"edge"', '"core"').replace("id = 1\n", "id = 2\n")
        result = self.apply(0, changed, "--verify")
        self.assertEqual(result.out, '~ description: edge -> core\n- controller 1\n'
                                     '+ controller 2: address=192.0.2.1 port=6653\n'
                                     '3 changes made\n')
        document = self.sandbox.run("--json", "instance", "apply", "--verify", "instance.toml").json()
        self.assertEqual((document["difference"], document["changes"]), ([], []))

    def test_ports_and_activity(self):
        self.apply(0, self.EDGE.format(id=14))
        self.apply(0, 'instance = 14\nactive = true\nports = ["GE1/0/15"]\n')
        shown = self.run_json(0, "instance", "show", "14")
        self.assertEqual([port["name"] for port in shown["ports"]], ["GE1/0/15"])
        self.assertTrue(shown["active"])
        self.assertEqual(self.apply(0, "instance = 14\nactive = false\n").out, "~ active -> inactive\n1 change made\n")

    def test_options_are_set_in_an_order_that_keeps_all_of_them(self):
        self.apply(0, "instance = 18\nextension = 5\nvlan = '100-199'\n", "--verify")
        self.assertEqual(self.run_json(0, "instance", "show", "18")["configured"]["extension"], "0x5")

    def test_json_says_the_same(self):
        self.apply(0, self.EDGE.format(id=16))
        document = {"instance": 16, "description": "edge", "fail-open": "standalone", "ports": ["GE1/0/16"],
                    "controller": [{"id": 1, "address": "192.0.2.1", "port": 6653}]}
        self.assertEqual(self.apply(0, json.dumps(document), name="i.json").out, "instance 16 is as the file says\n")

    def test_a_wrong_value_changes_nothing(self):
        self.run_ok("instance", "add", "17")
        before = self.run_json(0, "instance", "show", "17")
        for wrong in ("echo-interval = 0", "fail-open = 'x'", "qinq = 2", "flow-tables = ['1', '1']",
                      "vlan = '4095'", "management-vlans = ['0']", "ports = ['GE9/9/9']", "active = 1", "unknown = 1",
                      "[[controller]]\nid = 1", "[[controller]]\naddress = '192.0.2.1'", "controller = 1",
                      "qinq = 1.5", "qinq = 1979-05-27", "precedence = [[1]]", "precedence = {a = 1}"):
            with self.subTest(wrong):
                result = self.apply(2, f"instance = 17\ndescription = 'other'\n{wrong}\n")
                self.assertRegex(result.err, r"^instance.toml:3:\d+: ")
                self.assertIn("; nothing was sent", result.err)
                self.assertEqual(result.out, "")
                self.assertEqual(self.run_json(0, "instance", "show", "17"), before)

    def test_every_error_is_told_at_once(self):
        result = self.apply(2, "echo-interval = 0\nfail-open = 'x'\n")
        self.assertEqual(re.findall(r"^instance.toml:(\d+):", result.err, re.M), ["1", "1", "2"])
        self.assertIn("instance is missing", result.err)
        many = "instance = 1\n" + "".join(f"unknown{n} = 1\n" for n in range(50))
        self.assertEqual(len(re.findall("no such setting", self.apply(2, many).err)), 20)

    def test_bad_files(self):
        for text, message in (("instance = 1\ninstance = 2\n", "instance.toml:2:"), ("{", "instance.toml:1:"),
                              ("instance = \n", "instance.toml:1:"), ("", "instance is missing"),
                              ("[=a]\n", "this is no TOML"), ("[[[a]]]\n", "instance.toml:1:"),
                              ('{"instance": 1, "instance": 2}', "instance is set twice"), (b"\xff\xfe\0\0", ":1:"),
                              ("a = 1\n" * 300_000, "larger than 1 MiB"), ("a = " + "[" * 100_000, ":1:"),
                              ('{"a": ' + "[" * 100_000, ":1:")):
            with self.subTest(text[:40]):
                self.assertIn(message, self.apply(2, text).err)
        self.assertEqual(self.run_fails(2, "instance", "apply", "no-such.toml").err,
                         "ofpctl: no-such.toml: No such file or directory\n")
        self.run_fails(2, "instance", "apply", ".")


class FailureTest(SandboxTest):
    """What is told when the agent refuses, vanishes or answers nonsense."""
    agent = False

    def tearDown(self):
        self.sandbox.stop_fake()

    def test_part_of_the_changes_may_be_refused(self):
        self.sandbox.start_fake("--result", "25=0x42300141")
        result = self.sandbox.run("instance", "set", "1", "qinq=on", "echo-interval=5")
        self.assertEqual(result.status, 6, result)
        self.assertEqual(result.out, "instance 1: qinq=on: refused: a value is out of its range\n"
                                     "instance 1: echo-interval=5\n")
        self.assertIn("1 of 2 changes was refused", result.err)
        document = self.run_json(6, "instance", "set", "1", "qinq=on", "echo-interval=5")
        self.assertEqual([change["outcome"] for change in document["changes"]], ["refused", "done"])
        self.assertEqual(document["changes"][0]["code"], "0x42300141")

    def test_a_single_refusal_is_the_failure(self):
        self.sandbox.start_fake("--result", "6=0x42300115")
        result = self.run_fails(5, "instance", "set", "1", "echo-interval=5")
        self.assertIn("instance 1: echo-interval=5: the instance does not exist", result.err)

    def test_an_agent_that_hangs_up_leaves_the_rest_unsent(self):
        self.sandbox.start_fake("--hang-up")
        result = self.run_fails(4, "instance", "set", "1", "qinq=on", "echo-interval=5")
        self.assertIn("instance 1: echo-interval=5: not sent\n", result.out)

    def test_an_agent_that_does_not_answer(self):
        self.sandbox.start_fake("--silent")
        self.run_fails(4, "instance", "set", "--timeout", "1", "1", "qinq=on")
        self.run_fails(4, "instance", "show", "--timeout", "1", "1")

    def test_an_interrupt_leaves_the_rest_unsent(self):
        self.sandbox.start_fake("--silent", "--record", str(self.sandbox.folder / "interrupted"))
        process = self.sandbox.start("instance", "set", "1", "qinq=on", "echo-interval=5")
        self.wait_until((self.sandbox.folder / "interrupted").exists)
        interrupt(process)
        result = self.sandbox.finish(process)
        self.assertEqual(result.status, 130, result)
        self.assertIn("instance 1: echo-interval=5: not sent\n", result.out)

    def test_an_undecodable_answer_is_noticed_by_verify_alone(self):
        self.sandbox.start_fake("--garbage")
        self.assertEqual(self.run_ok("instance", "set", "1", "echo-interval=5").out, "instance 1: echo-interval=5\n")
        result = self.run_fails(1, "instance", "set", "--verify", "1", "echo-interval=5")
        self.assertEqual(result.out, "instance 1: echo-interval=5: the answer was no result\n")

    def test_an_agent_that_cannot_be_asked_again(self):
        self.sandbox.start_fake("--answer", "0x10000001=00010004200000020005000400010000",
                                "--result", "0x10000005=0x42300104")
        result = self.run_fails(1, "instance", "set", "--verify", "1", "fail-open=secure", "qinq=on")
        self.assertEqual(result.err, "ofpctl: set, but it cannot be read back: instance 1: this agent does not "
                                     "answer this message\n")
        self.assertEqual(result.out, "instance 1: fail-open=secure\ninstance 1: qinq=on\n")

    def test_an_action_that_was_not_done_is_noticed_by_verify(self):
        # Every change is a success, and nothing is there.
        empty = "0001000420000007"
        self.sandbox.start_fake("--answer", "0x10000001=00010004200000020005000400000000",
                                "--answer", f"0x10000004={empty}", "--answer", f"0x10000023={empty}",
                                "--answer", f"0x10000024={empty}", "--answer", f"0x10000027={empty}",
                                "--answer", "0x10000010=00010004200000110043000400000000")
        for words in ("instance add 1", "instance activate 1", "controller set 1 0 address=192.0.2.1",
                      "controller set --aux 1 1 0 port=1", "port bind 1 1"):
            with self.subTest(words):
                noun, verb, *rest = words.split()
                self.run_ok(noun, verb, *rest)
                result = self.run_fails(1, noun, verb, "--verify", *rest)
                self.assertIn("did not refuse, but does not report it done", result.err)

    def test_a_value_that_did_not_arrive_is_noticed_by_verify(self):
        # The agent says yes to everything, has the instance, and reports nothing of it.
        empty = "0001000420000007"
        self.sandbox.start_fake("--answer", "0x10000001=00010004200000020005000400010000",
                                *[word for code in range(5, 9) for word in ("--answer", f"0x1000000{code}={empty}")],
                                "--answer", f"0x10000004={empty}")
        result = self.run_fails(1, "instance", "set", "--verify", "1", "fail-open=standalone", "echo-interval=5")
        self.assertEqual(result.out, "instance 1: fail-open=standalone: the agent reports secure\n"
                                     "instance 1: echo-interval=5 (the agent does not report it)\n")
        self.assertEqual(result.err, "ofpctl: 1 of 2 changes not as set\n")
        document = self.run_json(1, "instance", "set", "--verify", "1", "fail-open=standalone")
        self.assertEqual(document["changes"][0]["outcome"], "differs")
        self.assertEqual(document["changes"][0]["reported"], "secure")


if __name__ == "__main__":
    unittest.main()
