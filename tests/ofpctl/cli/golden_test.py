"""What each command of the configuration prints, text and JSON, kept in golden/ for a person to read.

The commands run in order against one agent. OFPCTL_GOLDEN=write puts down what they print now.
"""
import json
import os
import pathlib
import unittest

from harness import SandboxTest

GOLDEN = pathlib.Path(__file__).resolve().parent / "golden"

EDGE = """\
instance = 7
active = true
description = "edge"
fail-open = "standalone"
flow-tables = ["10:2", "11:2"]
management-vlans = ["100-199", 300]
ports = ["GE1/0/9"]

[[controller]]
id = 0
address = "192.0.2.7"
port = 6653
"""

# Name of the files, exit status, words. A name that stands twice must print the same again.
OFFLINE = (
    ("dry-run-set", 0, "instance set --dry-run 1 echo-interval=5 management-vlans=1-10,20"),
    ("dry-run-controller", 0, "controller set -n 1 0 address=192.0.2.1 port=6653 vrf=mgmt role=master"),
    ("dry-run-apply", 0, "instance apply --dry-run edge.toml"),
    ("dry-run-vlan", 0, "vlan set -n --instance 1 vlan=96/0xff0,loose normal-forward-vlans=7"),
    ("dry-run-port", 0, "port bind -n GE1/0/2 1"),
    ("dry-run-global", 0, "global set -n ipv6-enhanced=on flow-monitor-action=1:2:3:4"),
    ("dry-run-debug", 0, "debug set -n key0=1 u32-8=0x3"),
    ("dry-run-debug-test", 0, "debug test -n 000102030405060708090a0b0c0d0e0f"),
    ("wrong-bytes", 2, "debug test 0001"),
    ("port-list", 0, "port list"),
    ("msg-decode", 0, "msg decode 00010004 20000001 00020004 42300115"),
    ("wrong-name", 2, "instance set 1 echo-intervall=5"),
    ("wrong-word", 2, "instance set 1 fail-open=secur"),
    ("wrong-number", 2, "instance set 1 echo-interval=0"),
    ("wrong-file", 2, "instance apply wrong.toml"),
    ("wrong-port", 5, "port bind GE1/0/222 1"),
    ("no-agent", 3, "instance set 1 echo-interval=5"),
)

ONLINE = (
    ("instance-add", 0, "instance add 1"),
    ("instance-set", 0, "instance set 1 echo-interval=7 fail-open=standalone datapath-id=0x10"),
    ("instance-set-verify", 0, "instance set --verify 1 connection-mode=single echo-interval=9"),
    ("instance-set-missing", 5, "instance set 99 echo-interval=7"),
    ("instance-set-all-refused", 5, "instance set 99 echo-interval=7 qinq=on"),
    ("controller-set", 0, "controller set 1 0 address=192.0.2.1 port=6653 vrf=mgmt tls-policy=strict"),
    ("auxiliary-set", 0, "controller set --aux 3 1 0 address=192.0.2.1 port=6654"),
    ("vlan-set", 0, "vlan set --verify --instance 1 management-vlans=1-10,20 normal-forward-vlans=7-9"),
    ("port-bind", 0, "port bind GE1/0/2 1"),
    ("instance-add-another", 0, "instance add 2"),
    ("port-bind-in-use", 1, "port bind GE1/0/2 2"),
    ("port-shutdown", 0, "port shutdown GE1/0/3"),
    ("port-start", 0, "port start GE1/0/3"),
    ("global-set", 0, "global set ignore=2 reserved-acl=3"),
    ("global-show", 0, "global show"),
    ("debug-set", 0, "debug set key0=1 u32-8=0x3"),
    ("instance-show", 0, "instance show 1"),
    ("instance-activate", 0, "instance activate 1"),
    ("instance-show-active", 0, "instance show 1"),
    ("instance-apply", 0, "instance apply edge.toml"),
    ("instance-apply-again", 0, "instance apply edge-without-unknown.toml"),
    ("instance-list", 0, "instance list"),
    ("instance-deactivate", 0, "instance deactivate 1"),
    ("port-unbind", 0, "port unbind GE1/0/2 1"),
    ("auxiliary-del", 0, "controller del --aux 3 1 0"),
    ("controller-del", 0, "controller del 1 0"),
    ("controller-del-missing", 5, "controller del 1 0"),
    ("instance-del", 0, "instance del 1"),
    ("instance-show-missing", 5, "instance show 1"),
)


class GoldenTest(SandboxTest):
    agent = False

    def check(self, name, text):
        path = GOLDEN / name
        if os.environ.get("OFPCTL_GOLDEN") == "write":
            GOLDEN.mkdir(exist_ok=True)
            path.write_text(text, encoding="utf-8")
        self.assertTrue(path.exists(), f"{path} is missing")
        self.assertEqual(text, path.read_text(encoding="utf-8"), f"{name} differs")

    def run_both(self, name, status, command):
        words = command.split()
        with self.subTest(command):
            result = self.sandbox.run(*words)
            self.assertEqual(result.status, status, result)
            shown = f"$ ofpctl {command}\n{result.out}"
            if result.err:
                shown += f"--- standard error\n{result.err}"
            if status:
                shown += f"--- status {status}\n"
            self.check(f"{name}.txt", shown)
        with self.subTest(f"{command} --json"):
            if name in self.undone:
                self.sandbox.run(*self.undone[name].split())
            result = self.sandbox.run("--json", *words)
            self.assertEqual(result.status, status, result)
            document = json.dumps(result.json(), indent=2, ensure_ascii=False) + "\n"
            self.check(f"{name}.json", document)

    # What must be undone between the two runs of a command.
    undone = {
        "instance-add": "instance del 1",
        "port-unbind": "port bind GE1/0/2 1",
        "auxiliary-del": "controller set --aux 3 1 0 address=192.0.2.1 port=6654",
        "controller-del": "controller set 1 0 address=192.0.2.1",
        "instance-del": "instance add 1",
        "instance-apply": "instance del 7",
    }

    def test_commands_that_need_no_agent(self):
        self.sandbox.write("edge.toml", EDGE)
        self.sandbox.write("wrong.toml", EDGE.replace('"standalone"', '"standalon"').replace("port = ", "prt = "))
        for name, status, command in OFFLINE:
            self.run_both(name, status, command)

    def test_commands_in_order(self):
        self.sandbox.write("edge.toml", EDGE)
        self.sandbox.write("edge-without-unknown.toml", EDGE)
        self.sandbox.start_agent()
        for name, status, command in ONLINE:
            self.run_both(name, status, command)
        self.run_ok("agent", "stop")

    def test_no_golden_file_is_left_over(self):
        names = {name for name, _, _ in OFFLINE + ONLINE}
        for path in GOLDEN.iterdir():
            self.assertIn(path.stem, names)


if __name__ == "__main__":
    unittest.main()
