"""The commands of the noun "flow" against a real agent: text and JSON to the letter."""
import pathlib
import unittest

from harness import SandboxTest

WEB = "priority=100,in_port=1,ip,nw_dst=10.0.0.0/24,actions=output:2"
WEB_SHOWN = "table=200,priority=100,ip,in_port=1,nw_dst=10.0.0.0/24,actions=write_actions(output:2)"
DROP = "priority=7,in_port=9,actions=drop"
DROP_SHOWN = "table=200,priority=7,in_port=9,actions=drop"
WEB_JSON = {"table": 200, "priority": 100, "match": {"in_port": 1, "eth_type": "0x0800", "ipv4_dst": "10.0.0.0/24"},
            "actions": [{"output": 2}]}
DROP_JSON = {"table": 200, "priority": 7, "match": {"in_port": 9}, "actions": []}
SUMMARY = "accepted {}, refused {}, not sent {}\n"


class FlowTest(SandboxTest):
    def setUp(self):
        self.delete_all()

    def show(self, *words):
        return self.run_ok("flow", "show", *words).out

    def check_rules(self, *shown):
        """The table holds these and no others, in whatever order."""
        self.assertEqual(sorted(self.show().splitlines()), sorted(shown))


class AddTest(FlowTest):
    def test_rules_come_from_arguments_files_and_standard_input(self):
        self.sandbox.write("one.flows", "# a comment\n\npriority=5,in_port=5,actions=drop\n")
        result = self.run_ok("flow", "add", WEB, "-", "-f", "one.flows", given=DROP + "\n")
        self.assertEqual(result.out, SUMMARY.format(3, 0, 0))
        self.assertEqual(result.err, "")
        self.check_rules(WEB_SHOWN, DROP_SHOWN, "table=200,priority=5,in_port=5,actions=drop")

    def test_rules_may_be_json(self):
        self.run_ok("flow", "add", '{"priority":7,"match":{"in_port":9},"actions":[]}')
        self.assertEqual(self.show(), DROP_SHOWN + "\n")

    def test_json_output(self):
        self.assertEqual(self.run_json(0, "flow", "add", WEB),
                         {"schema": "ofpctl/1", "results": [], "accepted": 1, "refused": 0, "unanswered": 0,
                          "not_sent": 0, "ok": True})

    def test_a_refused_rule_is_told_with_place_reason_and_text(self):
        self.run_ok("flow", "add", "priority=100,ip,actions=drop")
        result = self.sandbox.run("flow", "add", WEB, DROP)
        self.assertEqual(result.status, 6, result)
        self.assertEqual(result.out, "argument 1: refused: it overlaps a rule of the same priority\n"
                                     f"    {WEB_SHOWN}\n" + SUMMARY.format(1, 1, 0))
        self.assertEqual(result.err, "ofpctl: 1 of 2 rules was refused, the first at argument 1\n")

    def test_a_single_refused_rule_is_a_failure(self):
        self.run_ok("flow", "add", "priority=100,ip,actions=drop")
        result = self.run_fails(1, "flow", "add", WEB)
        self.assertEqual(result.err, "ofpctl: argument 1: refused: it overlaps a rule of the same priority\n")
        error = self.run_json(1, "flow", "add", WEB)["error"]
        self.assertEqual((error["code"], error["name"]), ("0x40010010", "OFP_RC_STATE"))

    def test_an_unknown_group_is_refused(self):
        result = self.run_fails(1, "flow", "add", "priority=1,in_port=1,actions=group:99")
        self.assertIn("the group it names does not exist", result.err)

    def test_verbose_tells_of_every_rule(self):
        self.assertEqual(self.run_ok("flow", "add", "-v", DROP).out,
                         f"argument 1: accepted\n    {DROP_SHOWN}\n" + SUMMARY.format(1, 0, 0))

    def test_dry_run_sends_nothing(self):
        self.sandbox.rules("r.flows", 25)
        self.assertEqual(self.run_ok("flow", "add", "--dry-run", "-f", "r.flows").out,
                         "would send 25 rules in 3 datagrams\n")
        self.assertEqual(self.run_ok("flow", "add", "-nv", DROP).out,
                         DROP_SHOWN + "\nwould send 1 rules in 1 datagrams\n")
        self.assertEqual(self.run_json(0, "flow", "load", "-n", "r.flows"),
                         {"schema": "ofpctl/1", "rules": 25, "datagrams": 3, "ok": True})
        self.assertEqual(self.show(), "")

    def test_clients_have_rules_of_their_own(self):
        self.run_ok("flow", "add", WEB)
        self.run_ok("flow", "add", "--client", "4097", DROP)
        self.assertEqual(self.show(), WEB_SHOWN + "\n")
        self.assertEqual(self.show("--client", "4097"), DROP_SHOWN + "\n")
        self.assertEqual(self.show("--client", "4099"), "")
        self.run_ok("flow", "del", "--client", "4097", "priority=1")


class ModifyAndDeleteTest(FlowTest):
    def test_mod_changes_the_actions(self):
        self.run_ok("flow", "add", WEB, DROP)
        self.assertEqual(self.run_ok("flow", "mod", WEB.replace("output:2", "output:3")).out, SUMMARY.format(1, 0, 0))
        self.check_rules(WEB_SHOWN.replace("output:2", "output:3"), DROP_SHOWN)

    def test_mod_of_a_rule_that_is_not_there_changes_nothing(self):
        self.assertEqual(self.run_ok("flow", "mod", WEB).out, SUMMARY.format(1, 0, 0))
        self.assertEqual(self.show(), "")

    def test_del_takes_all_that_the_match_covers(self):
        self.run_ok("flow", "add", WEB, DROP, "priority=3,in_port=1,arp,actions=drop")
        self.assertEqual(self.run_ok("flow", "del", "in_port=1").out, "removed 2, left 1\n")
        self.assertEqual(self.show(), DROP_SHOWN + "\n")

    def test_strict_takes_the_rule_itself(self):
        self.run_ok("flow", "add", WEB, DROP)
        self.assertEqual(self.run_ok("flow", "del", "--strict", "priority=8,in_port=9").out, "removed 0, left 2\n")
        self.assertEqual(self.run_json(0, "flow", "del", "--strict", "priority=7,in_port=9"),
                         {"schema": "ofpctl/1", "removed": 1, "left": 1, "ok": True})
        self.assertEqual(self.show(), WEB_SHOWN + "\n")

    def test_dry_run_deletes_nothing(self):
        self.run_ok("flow", "add", WEB)
        self.assertEqual(self.run_ok("flow", "del", "-n", "in_port=1").out, "would send 1 rules in 1 datagrams\n")
        self.assertEqual(self.run_ok("flow", "count").out, "1\n")


class LoadTest(FlowTest):
    def test_refused_rules_come_in_input_order_and_then_the_summary(self):
        self.run_ok("flow", "add", "priority=50,ip,nw_dst=10.0.3.0/24,actions=drop")
        rules = [f"priority=50,ip,nw_dst=10.0.{n}.1,actions=output:1\n" for n in range(10)]
        rules[7] = "priority=50,ip,nw_src=10.0.0.1,nw_dst=10.0.3.9,actions=output:1\n"
        self.sandbox.write("some.flows", "".join(rules))
        result = self.sandbox.run("flow", "load", "some.flows")
        self.assertEqual(result.status, 6, result)
        self.assertEqual(result.out,
                         "some.flows:4: refused: it overlaps a rule of the same priority\n"
                         "    table=200,priority=50,ip,nw_dst=10.0.3.1,actions=write_actions(output:1)\n"
                         "some.flows:8: refused: it overlaps a rule of the same priority\n"
                         "    table=200,priority=50,ip,nw_src=10.0.0.1,nw_dst=10.0.3.9,actions=write_actions(output:1)\n"
                         + SUMMARY.format(8, 2, 0))
        self.assertEqual(self.run_ok("flow", "count").out, "9\n")
        self.delete_all()
        self.run_ok("flow", "add", "priority=50,ip,nw_dst=10.0.3.0/24,actions=drop")
        document = self.run_json(6, "flow", "load", "some.flows")
        self.assertEqual((document["accepted"], document["refused"], document["not_sent"]), (8, 2, 0))
        self.assertEqual(document["results"][0],
                         {"rule": "some.flows:4", "count": 1, "outcome": "refused", "code": "0x40010010",
                          "name": "OFP_RC_STATE", "message": "it overlaps a rule of the same priority",
                          "text": "table=200,priority=50,ip,nw_dst=10.0.3.1,actions=write_actions(output:1)"})
        self.assertEqual(document["error"]["message"], "2 of 10 rules were refused, the first at some.flows:4")

    def test_when_all_are_refused_it_is_a_failure(self):
        self.run_ok("flow", "add", "priority=50,ip,actions=drop")
        self.sandbox.write("two.flows", "priority=50,ip,nw_dst=10.0.0.1,actions=drop\npriority=50,tcp,actions=drop\n")
        self.run_fails(1, "flow", "load", "two.flows")

    def test_several_files_and_standard_input_keep_their_places(self):
        self.run_ok("flow", "add", "priority=50,ip,actions=drop")
        self.sandbox.write("a.flows", "priority=1,in_port=1,actions=drop\npriority=50,tcp,actions=drop\n")
        self.sandbox.write("b.flows", "\npriority=50,udp,actions=drop\n")
        result = self.sandbox.run("flow", "load", "a.flows", "b.flows", "-", given="priority=50,sctp,actions=drop\n")
        self.assertEqual([line.split(" refused")[0] for line in result.out.splitlines() if "refused:" in line],
                         ["a.flows:2:", "b.flows:2:", "standard input:1:"], result)

    def test_the_example_switch_loads_and_shows_and_loads_again(self):
        edge = pathlib.Path(__file__).resolve().parents[3] / "examples/rules/edge.flows"
        self.run_ok("flow", "load", str(edge))
        for words in ((), ("--stats",), ("--json",), ("--json", "--stats")):
            with self.subTest(words):
                shown = self.show(*words)
                self.delete_all()
                self.run_ok("flow", "load", "-", given=shown)
                self.assertEqual(self.run_ok("flow", "diff", str(edge)).out, "")


class SyntaxTest(FlowTest):
    """One bad line: nothing is sent, status 2, place and remedy of each error."""

    def test_errors_have_file_line_column_text_and_caret(self):
        self.sandbox.write("bad.flows", DROP + "\npriorty=5,in_port=1,actions=drop\n\npriority=9,in_port=x,actions=drop\n")
        result = self.run_fails(2, "flow", "load", "bad.flows")
        self.assertEqual(result.out, "")
        lines = result.err.splitlines()
        self.assertRegex(lines[0], r"^bad\.flows:2:1: .*priorty.*; did you mean priority\?$")
        self.assertEqual(lines[1:3], ["  priorty=5,in_port=1,actions=drop", "  ^~~~~~~"])
        self.assertTrue(lines[3].startswith("bad.flows:4:20: "), lines[3])
        self.assertEqual(lines[-1], "ofpctl: 2 errors in the input; nothing was sent")
        self.assertEqual(self.show(), "")
        errors = self.run_json(2, "flow", "load", "bad.flows")["errors"]
        self.assertEqual([(e["source"], e["line"], e["column"]) for e in errors],
                         [("bad.flows", 2, 1), ("bad.flows", 4, 20)])

    def test_an_argument_has_a_place_too(self):
        result = self.run_fails(2, "flow", "add", DROP, "priority=5,in_prt=1,actions=drop")
        self.assertIn("argument 2:1:12: ", result.err)

    def test_errors_end_at_a_limit(self):
        self.sandbox.write("worse.flows", "nonsense=1\n" * 1000)
        result = self.run_fails(2, "flow", "check", "worse.flows", "worse.flows")
        self.assertEqual(result.err.count("worse.flows:"), 20)
        self.assertTrue(result.err.endswith("ofpctl: 20 errors or more in the input; nothing was sent\n"))

    def test_an_empty_input_is_an_error(self):
        self.sandbox.write("empty.flows", "# nothing\n")
        self.assertEqual(self.run_fails(2, "flow", "load", "empty.flows").err,
                         "ofpctl: there is no rule in the input\n")


class CompareTest(FlowTest):
    def setUp(self):
        super().setUp()
        self.run_ok("flow", "add", WEB, DROP, "priority=5,in_port=5,actions=output:1")
        self.sandbox.write("wanted.flows", f"{WEB}\npriority=5,in_port=5,actions=output:6\npriority=4,arp,actions=drop\n")

    def test_diff_shows_what_differs(self):
        result = self.sandbox.run("flow", "diff", "wanted.flows")
        self.assertEqual((result.status, result.err), (1, ""))
        self.assertEqual(result.out,
                         f"-{DROP_SHOWN}\n"
                         "~table=200,priority=5,in_port=5,actions=write_actions(output:6) # was write_actions(output:1)\n"
                         "+table=200,priority=4,arp,actions=drop\n")

    def test_diff_as_json(self):
        result = self.sandbox.run("flow", "diff", "wanted.flows", "--json")
        self.assertEqual(result.status, 1)
        document = result.json()
        self.assertTrue(document["ok"], "a difference is no failure")
        self.assertFalse(document["equal"])
        self.assertEqual(document["removed"], [DROP_JSON])
        self.assertEqual([(c["from"]["actions"], c["to"]["actions"]) for c in document["changed"]],
                         [([{"output": 1}], [{"output": 6}])])
        self.assertEqual(document["added"][0]["match"], {"eth_type": "0x0806"})

    def test_without_a_difference_diff_is_silent(self):
        self.sandbox.write("same.flows", self.show())
        self.assertEqual(self.run_ok("flow", "diff", "same.flows").out, "")
        self.assertTrue(self.run_json(0, "flow", "diff", "same.flows")["equal"])

    def test_replace_sends_the_difference_and_the_table_is_the_file(self):
        result = self.run_ok("flow", "replace", "wanted.flows")
        self.assertEqual(result.out, "unchanged 1, to remove 1, to change 1, to add 1\n" + SUMMARY.format(3, 0, 0))
        self.assertEqual(self.run_ok("flow", "diff", "wanted.flows").out, "")
        self.assertEqual(self.run_ok("flow", "replace", "wanted.flows").out,
                         "unchanged 3, to remove 0, to change 0, to add 0\n")

    def test_replace_leaves_the_unchanged_rules_as_they_are(self):
        def web():
            rules = self.run_json(0, "flow", "show")["rules"]
            return next(rule["id"] for rule in rules if rule["rule"] == WEB_JSON)
        before = web()
        self.run_ok("flow", "replace", "wanted.flows")
        self.assertEqual(web(), before)

    def test_replace_removes_before_it_adds_what_overlaps(self):
        self.sandbox.write("over.flows", "priority=7,in_port=9,arp,actions=drop\n")
        self.run_ok("flow", "replace", "over.flows")
        self.assertEqual(self.show(), "table=200,priority=7,arp,in_port=9,actions=drop\n")

    def test_replace_dry_run_shows_the_difference_and_sends_nothing(self):
        before = self.show()
        result = self.run_ok("flow", "replace", "--dry-run", "wanted.flows")
        self.assertIn(f"-{DROP_SHOWN}\n", result.out)
        self.assertTrue(result.out.endswith("unchanged 1, to remove 1, to change 1, to add 1\n"))
        self.assertEqual(self.show(), before)
        document = self.run_json(0, "flow", "replace", "--dry-run", "wanted.flows")
        self.assertEqual((document["unchanged"], document["to_add"]), (1, 1))

    def test_the_same_rule_twice_in_a_file_is_an_error(self):
        self.sandbox.write("twice.flows", f"{WEB}\n{DROP}\n{WEB.replace('output:2', 'output:3')}\n")
        for verb in ("diff", "replace"):
            self.assertEqual(self.run_fails(2, "flow", verb, "twice.flows").err,
                             "ofpctl: twice.flows:3: the match and priority of twice.flows:1 again; "
                             "one of the two has to go\n")

    def test_replace_with_a_refused_rule_says_so(self):
        self.sandbox.write("clash.flows", "priority=60,ip,actions=drop\npriority=60,tcp,actions=drop\n")
        result = self.sandbox.run("flow", "replace", "clash.flows")
        self.assertEqual(result.status, 6, result)
        self.assertIn("clash.flows:2: refused: it overlaps", result.out)
        self.assertTrue(result.out.endswith(SUMMARY.format(4, 1, 0)), "three deletions and one addition")


class ListTest(FlowTest):
    def test_show_as_json(self):
        self.run_ok("flow", "add", WEB, DROP)
        document = self.run_json(0, "flow", "show")
        self.assertEqual(document["client"], 4096)
        rules = sorted((rule["rule"] for rule in document["rules"]), key=lambda rule: -rule["priority"])
        self.assertEqual(rules, [WEB_JSON, DROP_JSON])
        self.assertEqual(list(document["rules"][0]), ["id", "rule"])

    def test_counters_are_strings_in_json(self):
        self.run_ok("flow", "add", WEB)
        rule = self.run_json(0, "flow", "show", "--stats")["rules"][0]
        self.assertEqual((rule["packets"], rule["bytes"]), ("0", "0"))
        self.assertIsInstance(rule["age"], int)

    def test_counters_in_text_stand_before_the_rule(self):
        self.run_ok("flow", "add", WEB)
        self.assertRegex(self.show("--stats"), r"^duration=\d+s, n_packets=0, n_bytes=0, table=200,priority=100,")

    def test_show_finds_its_way_over_gaps(self):
        self.sandbox.rules("many.flows", 300)
        self.run_ok("flow", "load", "many.flows")
        self.run_ok("flow", "del", "ip,nw_dst=10.0.16.0/20")
        self.assertEqual(self.show().count("\n"), 284)
        self.assertEqual(self.run_ok("flow", "count").out, "284\n")

    def test_count(self):
        self.assertEqual(self.run_ok("flow", "count").out, "0\n")
        self.assertEqual(self.run_json(0, "flow", "count"),
                         {"schema": "ofpctl/1", "client": 4096, "rules": 0, "ok": True})


class OfflineTest(SandboxTest):
    agent = False

    def test_check(self):
        self.sandbox.write("r.flows", f"{WEB}\n{DROP}\n")
        self.assertEqual(self.run_ok("flow", "check", "r.flows").out, "2 rules, all well formed\n")
        self.assertEqual(self.run_json(0, "flow", "check", "r.flows"), {"schema": "ofpctl/1", "rules": 2, "ok": True})
        self.run_fails(2, "flow", "check", "-", given="priority=70000,actions=drop\n")

    def test_format_is_stable(self):
        once = self.run_ok("flow", "format", "-", given=f"{WEB}\n{DROP}\n").out
        self.assertEqual(once, f"{WEB_SHOWN}\n{DROP_SHOWN}\n")
        self.assertEqual(self.run_ok("flow", "format", "-", given=once).out, once)

    def test_format_to_json_and_back(self):
        out = self.run_ok("flow", "format", "--json", "-", given=f"{WEB}\n{DROP}\n").out
        self.assertEqual(self.run_ok("flow", "format", "-", given=out).out, f"{WEB_SHOWN}\n{DROP_SHOWN}\n")


if __name__ == "__main__":
    unittest.main()
