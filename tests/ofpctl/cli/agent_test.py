"""Agent, instance, smooth, group and table commands against a real agent."""
import os
import signal
import unittest

from harness import Sandbox, SandboxTest, is_running


class AgentTest(SandboxTest):
    agent = False

    def tearDown(self):
        self.sandbox.run("agent", "stop")

    def test_start_status_stop(self):
        self.assertEqual(self.sandbox.run("agent", "status").out.splitlines()[0], "not running")
        started = self.run_json(0, "agent", "start")
        self.assertEqual((started["agent"], started["node"]), ("started", 0))
        pid = started["pid"]
        self.assertTrue(is_running(pid))
        again = self.run_json(0, "agent", "start")
        self.assertEqual((again["agent"], again["pid"]), ("already running", pid))

        self.assertRegex(self.run_ok("agent", "status").out,
                         rf"^running \(process {pid}\)\nup      \d+s\nnode    0\nsocket  "
                         rf"{self.sandbox.runtime}/agent.sock\nlog     {self.sandbox.runtime}/agent.log\n$")
        status = self.run_json(0, "agent", "status")
        self.assertEqual((status["running"], status["pid"], status["socket"]),
                         (True, pid, f"{self.sandbox.runtime}/agent.sock"))
        self.assertIsInstance(status["uptime"], str)

        self.assertEqual(self.run_ok("agent", "stop").out, f"agent stopped (process {pid})\n")
        self.wait_until(lambda: not is_running(pid))
        self.assertEqual(self.run_ok("agent", "stop").out, "the agent is not running\n")
        self.assertEqual(self.run_json(3, "agent", "status"),
                         {"schema": "ofpctl/1", "node": 0, "running": False,
                          "socket": f"{self.sandbox.runtime}/agent.sock",
                          "log": f"{self.sandbox.runtime}/agent.log", "ok": True})

    def test_start_hands_options_to_the_agent(self):
        pid = self.run_json(0, "agent", "start", "--", "--SmartGroup=1", "--TTPEnable=1")["pid"]
        with open(f"/proc/{pid}/cmdline", encoding="utf-8") as file:
            self.assertEqual(file.read().split("\0")[-3:-1], ["--SmartGroup=1", "--TTPEnable=1"])

    def test_start_with_an_option_the_agent_does_not_know_says_so(self):
        result = self.run_fails(1, "agent", "start", "--", "--Nonsense=1")
        self.assertIn("Nonsense", result.err)
        self.assertEqual(self.sandbox.run("agent", "status").status, 3)

    def test_start_without_a_program_says_where_it_looked(self):
        result = self.run_fails(1, "agent", "start", environment={"OFP_AGENT": "/nonexistent/ofp-agent"})
        self.assertIn("OFP_AGENT=/nonexistent/ofp-agent: No such file or directory", result.err)

    def test_start_of_something_that_never_gets_ready_ends(self):
        self.sandbox.write("sleeper", "#!/bin/sh\nexec sleep 100\n")
        program = self.sandbox.folder / "sleeper"
        program.chmod(0o755)
        result = self.sandbox.run("agent", "start", "--timeout", "1", environment={"OFP_AGENT": str(program)})
        self.assertEqual(result.status, 1, result)
        self.assertIn("did not become ready in time", result.err)

    def test_stop_is_bounded(self):
        self.sandbox.start_fake()
        self.sandbox.freeze_fake()
        result = self.sandbox.run("agent", "stop", "--timeout", "1")
        self.assertEqual(result.status, 4, result)
        self.assertIn(f"kill -9 {self.sandbox.fake.pid}", result.err)
        self.sandbox.stop_fake()

    def test_an_agent_killed_hard_leaves_nothing_in_the_way(self):
        pid = self.sandbox.start_agent()
        os.kill(pid, signal.SIGKILL)
        self.wait_until(lambda: self.sandbox.run("agent", "status").status == 3)
        self.assertNotEqual(self.sandbox.start_agent(), pid)

    def test_two_starts_at_once_make_one_agent(self):
        starts = [self.sandbox.start("agent", "start", "--json") for _ in range(2)]
        pids = {self.sandbox.finish(start).json()["pid"] for start in starts}
        self.assertEqual(len(pids), 1)


class DoctorTest(SandboxTest):
    agent = False

    def tearDown(self):
        self.sandbox.stop_fake()
        self.sandbox.run("agent", "stop")

    def diagnose(self, **environment):
        result = self.sandbox.run("agent", "doctor", "--json", environment=environment)
        checks = result.json()["checks"]
        return result.status, {check["subject"]: check for check in checks}

    def test_all_is_well(self):
        self.sandbox.start_agent()
        result = self.run_ok("agent", "doctor")
        self.assertNotIn("PROBLEM", result.out)
        status, checks = self.diagnose()
        self.assertEqual(status, 0)
        self.assertTrue(all(check["well"] and "remedy" not in check for check in checks.values()))
        self.assertEqual(list(checks), ["runtime directory", "described switch", "agent program", "agent version",
                                        "agent process", "socket", "answer"])

    def check_problem(self, subject, finding, remedy, **environment):
        status, checks = self.diagnose(**environment)
        self.assertEqual(status, 1)
        self.assertFalse(checks[subject]["well"], checks)
        self.assertIn(finding, checks[subject]["finding"])
        self.assertIn(remedy, checks[subject]["remedy"])

    def test_not_running(self):
        self.check_problem("agent process", "not running", "ofpctl agent start")
        text = self.sandbox.run("agent", "doctor").out
        self.assertIn("PROBLEM  agent process      not running", text)
        self.assertIn("-> ofpctl agent start\n", text)

    def test_no_program(self):
        self.check_problem("agent program", "/nowhere", "OFP_AGENT", OFP_AGENT="/nowhere")

    def test_a_program_that_is_no_agent(self):
        self.check_problem("agent version", "--version", "OFP_AGENT", OFP_AGENT="/bin/false")
        self.check_problem("agent version", "and this is ofpctl", "one version", OFP_AGENT="/bin/bash")

    def test_a_wrong_description(self):
        self.sandbox.write("switch.toml", "bridge_mac = [\n")
        self.check_problem("described switch", "switch.toml", "OFP_HOST_CONFIG",
                           OFP_HOST_CONFIG=str(self.sandbox.folder / "switch.toml"))

    def test_a_runtime_directory_open_to_others(self):
        other = self.sandbox.folder / "open"
        other.mkdir(exist_ok=True)
        other.chmod(0o755)
        self.check_problem("runtime directory", "open to others", "0700", OFP_RUNTIME_DIR=str(other))

    def test_a_socket_that_was_removed(self):
        self.sandbox.start_agent()
        (self.sandbox.runtime / "agent.sock").unlink()
        self.check_problem("socket", "was removed", "agent stop")

    def test_an_agent_that_does_not_answer(self):
        self.sandbox.start_fake("--hang-up")
        self.check_problem("answer", "answers nothing", "log")


class InstanceAndTableTest(SandboxTest):
    def test_an_instance_has_its_default_tables(self):
        self.assertEqual(self.run_ok("instance", "add", "5").out, "instance 5 added\n")
        self.assertEqual(self.run_json(0, "instance", "add", "0x6"), {"schema": "ofpctl/1", "instance": 6, "ok": True})
        document = self.run_json(0, "table", "list", "--instance", "5")
        self.assertEqual([table["table"] for table in document["tables"]], [10, 11, 20, 21, 30])
        self.assertEqual(document["instance"], 5)

    def test_table_zero_of_instance_4101(self):
        self.run_ok("instance", "add", "4101")
        self.assertEqual([table["table"] for table in self.run_json(0, "table", "list", "--instance", "4101")["tables"]],
                         [0])

    def test_the_tables_of_a_client(self):
        self.run_ok("flow", "add", "priority=1,in_port=1,actions=drop")
        lines = self.run_ok("table", "list").out.splitlines()
        self.assertEqual(lines[0].split(), ["TABLE", "RULES", "MAX", "RULES"])
        self.assertEqual(lines[1].split()[:2], ["200", "1"])
        self.assertEqual(len(lines), 2)

    def test_an_instance_that_does_not_exist(self):
        result = self.run_fails(5, "table", "list", "--instance", "77")
        self.assertEqual(result.err, "ofpctl: instance 77: the instance does not exist\n")
        self.assertEqual(self.run_json(5, "table", "list", "--instance", "77")["error"]["name"], "AGENT_NO_INSTANCE")


class SmoothTest(SandboxTest):
    """The end of a period removes what was not programmed since its beginning, and only then."""
    OLD = ["priority=1,in_port=1,actions=drop", "priority=1,in_port=2,actions=drop"]

    def setUp(self):
        self.delete_all()
        self.run_ok("flow", "add", *self.OLD)

    def test_a_period(self):
        self.assertEqual(self.run_ok("smooth", "start").out, "smooth period 1 of client 4096 open\n")
        self.run_ok("flow", "add", self.OLD[0])
        self.assertEqual(self.run_ok("smooth", "end").out,
                         "smooth period 1 of client 4096 ended: 2 rules before, 1 after\n")
        self.assertEqual(self.run_ok("flow", "show").out, "table=200,priority=1,in_port=1,actions=drop\n")

    def test_json(self):
        self.assertEqual(self.run_json(0, "smooth", "start", "--id", "7", "--mode", "1"),
                         {"schema": "ofpctl/1", "client": 4096, "id": 7, "mode": 1, "ok": True})
        self.assertEqual(self.run_json(0, "smooth", "end", "--id", "7"),
                         {"schema": "ofpctl/1", "client": 4096, "id": 7, "rules_before": 2, "rules_after": 0, "ok": True})

    def test_an_end_without_a_start_sends_nothing(self):
        result = self.run_fails(5, "smooth", "end", "--id", "3")
        self.assertEqual(result.err, "ofpctl: smooth period 3 of client 4096 was not started; nothing was sent; "
                                     "begin with: ofpctl smooth start --client 4096 --id 3\n")
        self.assertEqual(self.run_ok("flow", "count").out, "2\n")

    def test_a_second_end_sends_nothing(self):
        self.run_ok("smooth", "start")
        self.run_ok("flow", "add", *self.OLD)
        self.run_ok("smooth", "end")
        self.run_fails(5, "smooth", "end")
        self.assertEqual(self.run_ok("flow", "count").out, "2\n")

    def test_a_period_belongs_to_its_client(self):
        self.run_ok("smooth", "start", "--client", "4097")
        self.run_fails(5, "smooth", "end", "--client", "4096")
        self.run_ok("smooth", "end", "--client", "4097")
        self.assertEqual(self.run_ok("flow", "count").out, "2\n")

    def test_opening_again_changes_nothing(self):
        self.run_ok("smooth", "start")
        self.run_ok("flow", "add", self.OLD[1])
        self.run_ok("smooth", "start")
        self.run_ok("smooth", "end")
        self.assertEqual(self.run_ok("flow", "show").out, "table=200,priority=1,in_port=2,actions=drop\n")

    def test_an_open_period_keeps_its_mode(self):
        self.run_ok("smooth", "start", "--id", "9", "--mode", "1")
        self.assertEqual(self.run_fails(1, "smooth", "start", "--id", "9").err,
                         "ofpctl: smooth period 9 of client 4096 is open with mode 1\n")
        self.run_ok("flow", "add", *self.OLD)
        self.run_ok("smooth", "end", "--id", "9")

    def test_after_a_restart_of_the_agent_an_end_sends_nothing(self):
        self.run_ok("smooth", "start", "--id", "4")
        self.run_ok("agent", "stop")
        self.run_ok("agent", "start")
        self.run_ok("flow", "add", *self.OLD)
        result = self.run_fails(5, "smooth", "end", "--id", "4")
        self.assertIn("was started with another agent process", result.err)
        self.assertEqual(self.run_ok("flow", "count").out, "2\n")

    def test_a_start_that_fails_leaves_no_note(self):
        sandbox = Sandbox()
        self.addCleanup(sandbox.close)
        sandbox.start_fake("--silent")
        self.assertEqual(sandbox.run("smooth", "start", "--timeout", "1").status, 4)
        self.assertEqual(list(sandbox.runtime.glob("smooth*")), [])


class GroupTest(SandboxTest):
    TWO = "group_id=7,type=all,bucket=output:1,bucket=output:2"

    def tearDown(self):
        self.run_ok("group", "del", "7", "8")

    def test_groups_come_and_go(self):
        result = self.run_ok("group", "add", self.TWO, "group_id=8,type=ff,bucket=output:3")
        self.assertEqual(result.out, "group 7 added\ngroup 8 added\n")
        self.run_ok("flow", "add", "priority=9,in_port=1,actions=group:7")
        self.assertEqual(self.run_ok("group", "del", "7").out, "group 7 deleted\n")
        self.assertEqual(self.run_ok("flow", "count").out, "0\n", "rules go with their group")

    def test_json(self):
        self.assertEqual(self.run_json(0, "group", "add", self.TWO),
                         {"schema": "ofpctl/1", "done": "added", "groups": [7], "ok": True})
        self.assertEqual(self.run_json(0, "group", "del", "7"),
                         {"schema": "ofpctl/1", "done": "deleted", "groups": [7], "ok": True})

    def test_a_group_that_exists_is_refused(self):
        self.run_ok("group", "add", self.TWO)
        result = self.sandbox.run("group", "add", "group_id=8,type=all,bucket=output:1", self.TWO,
                                  "group_id=9,type=all,bucket=output:1")
        self.assertEqual((result.status, result.out), (1, "group 8 added\n"))
        self.assertEqual(result.err, "ofpctl: group 7: refused; the agent's log has the reason. "
                                     "Most often the group exists already.\n")

    def test_malformed_groups_are_not_sent(self):
        result = self.run_fails(2, "group", "add", self.TWO, "group_id=8,tpe=all,bucket=output:1")
        self.assertEqual(result.err.splitlines(),
                         ["argument 2:1:12: 'tpe' is nothing that a group has; did you mean type?",
                          "  group_id=8,tpe=all,bucket=output:1", "             ^~~",
                          "ofpctl: 1 error in the groups; nothing was sent"])
        self.run_ok("group", "add", self.TWO)

    def test_dry_run_sends_nothing(self):
        self.assertEqual(self.run_ok("group", "add", "-n", self.TWO).out, "group 7 would be sent\n")
        self.run_ok("group", "add", self.TWO)

    def test_ids_are_checked(self):
        self.run_fails(2, "group", "del", "4294967295")
        self.run_fails(2, "group", "del", "seven")

    def test_the_largest_group(self):
        buckets = ",bucket=output:1" * 254
        self.run_ok("group", "add", f"group_id=8,type=all{buckets}")
        self.run_fails(2, "group", "add", f"group_id=9,type=all{buckets},bucket=output:1")


if __name__ == "__main__":
    unittest.main()
