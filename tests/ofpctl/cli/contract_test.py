"""What holds of every command: help, examples, one JSON document, exit statuses, broken outputs."""
import json
import os
import pty
import re
import subprocess
import unittest

from harness import OFPCTL, SandboxTest, as_nobody, can_be_nobody


def commands(sandbox):
    """Every (noun, verb), as the help of the program lists them."""
    text = sandbox.run("--help").out
    listing = text[text.index("Commands:"):text.index("\nOptions:")]
    return re.findall(r"^  (\w+) (\w+)  ", listing, re.M)


def examples(text):
    return re.findall(r"^  (\S.*)$", text[text.index("Examples:"):], re.M)


class HelpTest(SandboxTest):
    agent = False

    def test_there_are_the_commands_of_this_version(self):
        self.assertEqual(
            [f"{noun} {verb}" for noun, verb in commands(self.sandbox)],
            ["agent start", "agent stop", "agent status", "agent doctor", "instance add",
             "instance set", "instance apply", "instance show", "instance list", "instance activate",
             "instance deactivate", "instance del", "controller set", "controller list",
             "controller show", "controller reset", "controller del", "vlan set", "port bind", "port unbind",
             "port shutdown", "port start", "port list", "global set", "global show", "debug set",
             "debug test", "debug show", "smooth start", "smooth end", "flow add", "flow mod", "flow del",
             "flow load", "flow replace", "flow diff", "flow show", "flow count", "flow check",
             "flow format", "group add", "group list", "group show", "group del", "meter list",
             "meter show", "table list", "table show", "packet trace", "packet send", "summary show",
             "resource show", "app list", "app show", "event monitor", "msg decode", "completion bash", "completion zsh",
             "completion fish"])

    def test_every_command_explains_itself_in_three_ways(self):
        for noun, verb in commands(self.sandbox):
            with self.subTest(f"{noun} {verb}"):
                long = self.run_ok(noun, verb, "--help")
                self.assertEqual(long.err, "")
                self.assertIn(f"Usage: ofpctl {noun} {verb}", long.out)
                self.assertTrue(examples(long.out))
                self.assertEqual(self.run_ok(noun, verb, "-h").out, long.out)
                self.assertEqual(self.run_ok("help", noun, verb).out, long.out)
                self.assertEqual(self.run_json(0, noun, verb, "--help")["help"], long.out)

    def test_nouns_and_the_program_explain_themselves(self):
        for noun in {noun for noun, _ in commands(self.sandbox)}:
            with self.subTest(noun):
                self.assertIn(f"Usage: ofpctl {noun} COMMAND", self.run_ok(noun, "--help").out)
                self.assertEqual(self.run_ok("help", noun).out, self.run_ok("--help", noun).out)
        self.assertEqual(self.run_ok("help").out, self.run_ok("--help").out)

    def test_version(self):
        self.assertRegex(self.run_ok("--version").out, r"^ofpctl \d+\.\d+\.\d+\n$")
        self.assertEqual(self.run_ok("flow", "show", "-V").out, self.run_ok("-V").out)
        self.assertRegex(self.run_json(0, "--version")["version"], r"^\d+\.\d+\.\d+$")


class ExamplesTest(SandboxTest):
    """Every example of every help is run as it stands, in the order of the commands."""

    # A difference that is shown is no failure; a memory switch has no meter to show.
    STATUS = {("flow", "diff"): 1, ("meter", "show"): 5}

    def setUp(self):
        self.sandbox.write("rules.flows", "priority=7,in_port=7,actions=output:8\n")
        self.sandbox.write("edge.toml", "instance = 1\nfail-open = 'standalone'\n")

    def prepare(self, noun, verb):
        if (noun, verb) == ("agent", "start"):
            self.run_ok("agent", "stop")
        elif (noun, verb) == ("smooth", "end"):
            self.run_ok("smooth", "start")
        elif (noun, verb) in (("agent", "status"), ("agent", "doctor"), ("instance", "add")):
            self.run_ok("agent", "start")
        elif noun in ("instance", "controller", "vlan", "port"):
            self.sandbox.run("instance", "add", "1")
            if verb == "unbind":
                self.sandbox.run("port", "bind", "GE1/0/1", "1")
        elif (noun, verb) == ("app", "show"):
            self.register_application("3")
        elif verb in ("load", "mod", "replace"):
            self.delete_all()

    def register_application(self, number):
        monitor = self.sandbox.start("event", "monitor", "--app", number)
        self.addCleanup(monitor.communicate)
        self.addCleanup(monitor.kill)
        self.wait_until(lambda: self.sandbox.run("app", "show", number).status == 0)

    def test_every_example(self):
        for noun, verb in commands(self.sandbox):
            for example in examples(self.sandbox.run(noun, verb, "--help").out):
                with self.subTest(example):
                    self.prepare(noun, verb)
                    result = self.sandbox.shell(example)
                    self.assertEqual(result.status, self.STATUS.get((noun, verb), 0), result)
                    if "--json" in example:
                        result.json()

    def test_examples_of_the_program(self):
        for example in examples(self.sandbox.run("--help").out)[:3]:
            with self.subTest(example):
                self.assertEqual(self.sandbox.shell(example).status, 0)


class UsageTest(SandboxTest):
    """Wrong usage: status 2, one line, the nearest valid word."""
    agent = False

    def check(self, words, line):
        result = self.run_fails(2, *words)
        self.assertEqual(result.out, "")
        self.assertEqual(result.err, f"ofpctl: {line}\n")

    def test_wrong_words_get_one_line_and_the_nearest_word(self):
        self.check(["flw"], "flw: no such object; did you mean flow?")
        self.check(["flow", "repalce", "x"], "flow repalce: no such command; did you mean replace?")
        self.check(["flow", "show", "--clinet", "4097"], "--clinet: no such option; did you mean --client?")
        self.check(["flow", "show", "--clinet=4097"], "--clinet: no such option; did you mean --client?")
        self.check(["--jsn", "flow", "show"], "--jsn: no such option; ofpctl --help lists them")
        self.check(["instance", "set", "1", "fail-opn=secure"], "fail-opn: no such setting; did you mean fail-open?")
        self.check(["instance", "set", "1", "fail-open=secur"],
                   'fail-open: "secur" is none of secure, standalone; did you mean secure?')
        self.check(["vlan", "set", "management-vlan=1"],
                   "management-vlan: no such setting; did you mean management-vlans?")
        self.check(["vlan", "set", "qinq=on"], "qinq is an instance's: --instance ID is missing")
        self.check(["controller", "set", "1", "0", "port=1"], "address is missing: address=ADDRESS")
        self.check(["controller", "set", "--aux", "1", "1", "0", "role=master"],
                   "role: no such setting; one of address, port, vrf")
        self.check(["smooth", "strt"], "smooth strt: no such command; did you mean start?")

    def test_without_a_near_word_all_are_listed(self):
        self.check(["group", "xyzzy"], "group xyzzy: no such command; one of add, list, show, del")

    def test_values_out_of_range_are_told_with_the_range(self):
        self.check(["flow", "show", "--client", "4098"], '--client: "4098" is none of 4096, 4097, 4099')
        self.check(["smooth", "end", "--id", "0"], '--id: "0" is not a number from 1 to 4294967294')
        self.check(["instance", "add", "0"], 'ID: "0" is not a number from 1 to 65535')
        self.check(["instance", "add", "65536"], 'ID: "65536" is not a number from 1 to 65535')
        self.check(["flow", "count", "--timeout", "0"], '--timeout: "0" is not a number from 1 to 3600')

    def test_missing_and_superfluous_words(self):
        self.check(["flow", "load"], "FILE... is missing")
        self.check(["flow", "diff", "a", "b"], '"b": one thing too many')
        self.check(["flow", "count", "now"], '"now": nothing is expected here')
        self.check(["flow", "add"], "a rule is missing: as an argument, with --file FILE, or - for standard input")
        self.check(["table"], "table: which command? one of list, show")
        self.check([], "nothing to do; ofpctl --help lists the commands")

    def test_options_without_a_value(self):
        self.assertIn("a value is missing: --client", self.run_fails(2, "flow", "show", "--client").err)

    def test_an_empty_word_is_no_command(self):
        self.run_fails(2, "")
        self.run_fails(2, "flow", "")

    def test_json_after_two_minuses_is_a_word_like_others(self):
        result = self.sandbox.run("flow", "count", "--", "--json")
        self.assertEqual((result.status, result.out), (2, ""))


class NoAgentTest(SandboxTest):
    """Status 3, the remedy, and no agent started on the sly."""
    agent = False

    def test_whatever_needs_the_agent_says_how_to_start_it(self):
        self.sandbox.write("rules.flows", "priority=7,in_port=7,actions=output:8\n")
        before = sorted(self.sandbox.runtime.iterdir())
        for words in (["flow", "add", "priority=1,in_port=1,actions=drop"], ["flow", "mod", "priority=1,actions=drop"],
                      ["flow", "del", "priority=1"], ["flow", "load", "rules.flows"],
                      ["flow", "replace", "rules.flows"], ["flow", "diff", "rules.flows"], ["flow", "show"],
                      ["flow", "count"], ["group", "add", "group_id=1,type=all,bucket=output:1"],
                      ["group", "del", "1"], ["table", "list"], ["instance", "add", "1"],
                      ["instance", "set", "1", "echo-interval=5"], ["instance", "del", "1"],
                      ["instance", "activate", "1"], ["instance", "deactivate", "1"],
                      ["instance", "list"], ["instance", "show", "1"],
                      ["controller", "set", "1", "0", "address=192.0.2.1"], ["controller", "del", "1", "0"],
                      ["vlan", "set", "--instance", "1", "qinq=on"], ["port", "bind", "1", "1"],
                      ["port", "unbind", "1", "1"], ["port", "shutdown", "1"], ["port", "start", "1"],
                      ["global", "set", "ignore=1"], ["global", "show"], ["debug", "set", "key0=1"],
                      ["debug", "show", "1", "0"], ["controller", "list", "1"], ["controller", "show", "1", "0"],
                      ["group", "list"], ["group", "show", "1"], ["meter", "list"], ["meter", "show", "1"],
                      ["table", "show", "200"], ["summary"], ["resource", "show"],
                      ["app", "list"], ["app", "show", "3"], ["event", "monitor"],
                      ["smooth", "start"], ["smooth", "end"]):
            with self.subTest(" ".join(words)):
                result = self.run_fails(3, *words)
                self.assertEqual(result.err, "ofpctl: the agent is not running; start it with: ofpctl agent start\n")
                self.assertEqual(result.out, "")
        self.assertEqual(self.sandbox.run("agent", "status").status, 3)
        self.assertEqual(sorted(self.sandbox.runtime.iterdir()), before)

    def test_a_socket_left_behind_is_no_agent(self):
        self.sandbox.start_fake()
        self.sandbox.stop_fake()
        self.assertTrue((self.sandbox.runtime / "agent.sock").exists())
        self.run_fails(3, "flow", "show")

    @unittest.skipUnless(can_be_nobody() or os.getuid() != 0, "root always has one")
    def test_without_a_runtime_directory_the_remedy_is_told(self):
        environment = {"OFP_RUNTIME_DIR": "", "XDG_RUNTIME_DIR": ""}
        result = self.sandbox.run("flow", "show", environment=environment,
                                  preexec_fn=as_nobody if can_be_nobody() else None)
        self.assertEqual(result.status, 1, result)
        self.assertIn("OFP_RUNTIME_DIR", result.err)

    def test_what_needs_no_agent_works(self):
        self.sandbox.write("rules.flows", "priority=7,in_port=7,actions=output:8\n")
        self.run_ok("flow", "check", "rules.flows")
        self.run_ok("flow", "format", "rules.flows")
        self.run_ok("flow", "add", "--dry-run", "priority=1,in_port=1,actions=drop")
        self.run_ok("completion", "bash")


class OutputTest(SandboxTest):
    """Data that cannot be written is never lost in silence."""
    agent = False

    def run_to(self, out, *words):
        return self.sandbox.finish(self.sandbox.start(*words, stdout=out))

    def test_a_full_disk_is_a_failure(self):
        for words in (["--help"], ["--version", "--json"], ["completion", "bash"], ["agent", "status"]):
            with self.subTest(" ".join(words)), open("/dev/full", "w") as full:
                result = self.run_to(full, *words)
                self.assertEqual(result.status, 1, result)
                self.assertEqual(result.err, "ofpctl: standard output: No space left on device\n")

    def test_a_closed_pipe_is_a_failure(self):
        read_end, write_end = os.pipe()
        os.close(read_end)
        result = self.run_to(write_end, "--help")
        os.close(write_end)
        self.assertEqual((result.status, result.err), (1, "ofpctl: standard output: Broken pipe\n"))

    def test_a_closed_descriptor_is_a_failure(self):
        result = self.sandbox.shell("ofpctl --help >&-")
        self.assertEqual(result.status, 1, result)
        self.assertIn("standard output: ", result.err)

    def test_the_status_of_a_failure_stays_when_its_report_cannot_be_written(self):
        with open("/dev/full", "w") as full:
            self.assertEqual(self.run_to(full, "flow", "show", "--json").status, 3)

    def test_a_closed_standard_error_is_no_failure(self):
        self.assertEqual(self.sandbox.shell("ofpctl --version 2>&-").out[:7], "ofpctl ")
        self.assertEqual(self.sandbox.shell("ofpctl flow show 2>&-").status, 3)

    def test_closed_standard_descriptors_never_become_the_socket(self):
        self.sandbox.start_agent()
        result = self.sandbox.shell("ofpctl flow add 'priority=1,in_port=1,actions=drop' <&- >&- 2>&-")
        self.assertEqual(result.status, 1)
        self.assertEqual(self.run_ok("flow", "count").out, "1\n")
        self.run_ok("agent", "stop")


class TerminalTest(SandboxTest):
    """Colour and progress: on standard error, when it is a terminal, and never with NO_COLOR."""
    agent = False

    def on_terminal(self, *words, environment=None):
        """Runs with standard error on a terminal; returns status, stdout and what the terminal got."""
        control, terminal = pty.openpty()
        process = self.sandbox.start(*words, stderr=terminal, environment=environment or {})
        os.close(terminal)
        seen = b""
        while True:
            try:
                chunk = os.read(control, 4096)
            except OSError:     # the last writer has gone
                break
            if not chunk:
                break
            seen += chunk
        os.close(control)
        out, _ = process.communicate(timeout=60)
        return process.returncode, out, seen.decode()

    def test_errors_are_coloured_on_a_terminal_only(self):
        self.assertIn("\033[31m", self.on_terminal("flw")[2])
        self.assertNotIn("\033", self.on_terminal("flw", environment={"NO_COLOR": "1"})[2])
        self.assertIn("\033[31m", self.on_terminal("flw", environment={"NO_COLOR": ""})[2])
        self.assertNotIn("\033", self.sandbox.run("flw").err)

    def test_long_work_shows_its_progress_on_a_terminal_only(self):
        self.sandbox.rules("many.flows", 2400)
        self.sandbox.start_fake("--delay", "0.01")
        status, out, seen = self.on_terminal("flow", "load", "many.flows")
        self.assertEqual((status, out), (0, "accepted 2400, refused 0, not sent 0\n"))
        self.assertRegex(seen, r"adding \d+ of 2400 \[#+\.*\] \d+%")
        self.assertTrue(seen.endswith("\r\033[K"), "the bar is wiped at the end")
        self.assertEqual(self.run_ok("flow", "load", "many.flows").err, "")


class PermissionTest(SandboxTest):
    """Status 7: another user's agent."""

    @unittest.skipUnless(can_be_nobody(), "takes root to become another user")
    def test_another_user_is_refused_with_a_reason(self):
        os.chmod(self.sandbox.folder, 0o755)
        result = self.sandbox.run("flow", "show", preexec_fn=as_nobody)
        self.assertEqual(result.status, 7, result)
        self.assertIn("Permission denied", result.err)
        os.chmod(self.sandbox.runtime, 0o755)
        result = self.sandbox.run("flow", "show", "--json", preexec_fn=as_nobody)
        os.chmod(self.sandbox.runtime, 0o700)
        self.assertEqual(result.status, 7, result)
        self.assertEqual(result.json()["error"]["name"], "DENIED")

    def test_the_owner_is_served(self):
        self.run_ok("flow", "show")


if __name__ == "__main__":
    unittest.main()
