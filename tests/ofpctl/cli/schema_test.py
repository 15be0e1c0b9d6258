"""The documents of --json are what docs/schema says."""
import json
import unittest

import json_schema
from harness import SandboxTest, interrupt

CONFIGURED = (
    "instance add 1", "controller set 1 0 address=192.0.2.1 port=6653 role=master", "controller set --aux 1 1 0 port=1",
    "instance set 1 datapath-id=0x1 description=x", "port bind GE1/0/1 1", "instance activate 1", "debug set key0=1 u32-8=3",
    "group add group_id=7,type=all,bucket=output:1,bucket=output:FLOOD group_id=8,type=ff,bucket=output:3",
    "flow add priority=1,in_port=1,actions=group:7",
)

# Commands, and the schema where it is not named for the command.
COMMANDS = (
    ("instance list", None), ("instance show 1", None), ("controller list 1", None), ("controller show 1 0", None),
    ("group list", None), ("group show 7", None), ("meter list", None), ("table list", None), ("table show 200", None),
    ("port list", None), ("resource show", None), ("summary show", None), ("summary", "summary-show"),
    ("debug show 1 0", None), ("global show", None),
    ("packet trace in_port=1", None), ("packet trace arp,in_port=2", None), ("packet send in_port=1", "packet-trace"),
    ("packet trace in_port=1 --instance 1", "packet-trace"),
    ("app list", None), ("app show 5", None),
    ("instance set 1 echo-interval=5 fail-open=secure", "changes"), ("instance set --verify 1 fail-open=secure", "changes"),
    ("instance apply some.toml", "changes"), ("global set ignore=1", "changes"),
    ("vlan set --verify --instance 1 vlan=7 normal-forward-vlans=1", "changes"),
    ("instance set -n 1 description=x", "datagrams"), ("instance apply -n some.toml", "datagrams"),
    ("msg decode 00 01 02 03 04", "datagrams"),
)

FAILURES = ("instance show 99", "instance set 99 qinq=on", "instance set 1 qinq=perhaps", "group show 99", "meter show 1",
            "table show --instance 1 99", "controller show 1 9", "app show 3", "flow show --timeout x", "flw")


class SchemaTest(SandboxTest):
    @classmethod
    def setUpClass(cls):
        super().setUpClass()
        cls.sandbox.write("some.toml", "instance = 1\ndescription = 'y'\n")
        for command in CONFIGURED:
            result = cls.sandbox.run(*command.split())
            assert result.status == 0, (command, result)
        cls.listener = cls.sandbox.start("event", "monitor", "--app", "5")
        cls.wait_until(lambda: cls.sandbox.run("app", "show", "5").status == 0)

    @classmethod
    def tearDownClass(cls):
        interrupt(cls.listener)
        cls.sandbox.finish(cls.listener)
        super().tearDownClass()

    def test_what_commands_print(self):
        for command, name in COMMANDS:
            with self.subTest(command):
                words = command.split()
                json_schema.check(self.run_json(0, *words), name or "-".join(words[:2]))

    def test_failures(self):
        for command in FAILURES:
            with self.subTest(command):
                result = self.sandbox.run("--json", *command.split())
                self.assertNotEqual(result.status, 0)
                json_schema.check(result.json(), "failure")

    def test_watching_prints_a_document_a_round(self):
        for command in ("table list", "summary", "group list", "instance show 1"):
            with self.subTest(command):
                result = self.sandbox.run("--json", *command.split(), "--watch", "1", "--rounds", "2")
                self.assertEqual(result.status, 0, result)
                lines = result.out.splitlines()
                self.assertEqual(len(lines), 2)
                words = (command + " show").split()[:2]
                for line in lines:
                    json_schema.check(json.loads(line), "-".join(words))

    def test_every_schema_is_used(self):
        used = {name or "-".join(command.split()[:2]) for command, name in COMMANDS} | {"failure", "meter-show"}
        self.assertEqual({path.stem for path in json_schema.FOLDER.iterdir()}, used)


class ValidatorTest(unittest.TestCase):
    """The validator itself: it must be able to say no."""

    def wrong(self, value, schema):
        return list(json_schema.problems(value, schema))

    def test_it_finds_what_is_wrong(self):
        schema = {"type": "object", "required": ["a"], "additionalProperties": False,
                  "properties": {"a": {"type": "integer", "minimum": 0}, "b": {"type": "array", "items": {"const": 1}}}}
        self.assertEqual(self.wrong({"a": 1, "b": [1]}, schema), [])
        for value in ({}, {"a": "1"}, {"a": True}, {"a": -1}, {"a": 1, "c": 1}, {"a": 1, "b": [2]}, [], None):
            self.assertTrue(self.wrong(value, schema), value)
        self.assertTrue(self.wrong("x", {"pattern": "^y$"}))
        self.assertTrue(self.wrong("x", {"enum": ["y"]}))
        with self.assertRaises(AssertionError):
            self.wrong(1, {"oneOf": []})


if __name__ == "__main__":
    unittest.main()
