"""The commands of the noun "packet" against a real agent."""
import unittest

from harness import SandboxTest


class PacketTest(SandboxTest):
    def setUp(self):
        self.delete_all()
        self.run_ok("group", "del", "7")
        self.run_ok("group", "add", "group_id=7,type=all,bucket=output:1,bucket=output:2")
        self.run_ok("flow", "add", "priority=100,ip,nw_dst=10.0.0.0/24,actions=group:7",
                    "priority=200,tcp,tp_dst=80,actions=drop")

    def rule_ids(self):
        """Of the two rules, by priority."""
        rules = self.run_json(0, "flow", "show")["rules"]
        return [rule["id"] for rule in sorted(rules, key=lambda rule: rule["rule"]["priority"])]


class TraceTest(PacketTest):
    packet = "in_port=1,tcp,nw_dst=10.0.0.2,tp_dst=443"

    def test_tells_the_rule_the_better_one_the_actions_and_the_ports(self):
        met, better = self.rule_ids()
        self.assertEqual(self.run_ok("packet", "trace", self.packet).out, f"""\
packet: tcp,in_port=1,nw_dst=10.0.0.2,tp_dst=443
table 200: rule {met} matches, table=200,priority=100,ip,nw_dst=10.0.0.0/24,actions=write_actions(group:7)
    not rule {better}, table=200,priority=200,tcp,tp_dst=80,actions=drop
        tp_dst is 443, not 80
action set: group:7
output: port 1, by group 7, bucket 0; not sent, the packet came from there
output: port 2, by group 7, bucket 1
""")

    def test_json(self):
        met, better = self.rule_ids()
        self.assertEqual(self.run_json(0, "packet", "trace", self.packet), {
            "schema": "ofpctl/1", "ok": True, "packet": "tcp,in_port=1,nw_dst=10.0.0.2,tp_dst=443",
            "end": "carried_out",
            "tables": [{"table": 200, "id": met, "priority": 100,
                        "rule": "table=200,priority=100,ip,nw_dst=10.0.0.0/24,actions=write_actions(group:7)",
                        "better": {"id": better, "priority": 200,
                                   "rule": "table=200,priority=200,tcp,tp_dst=80,actions=drop",
                                   "differing": 1,
                                   "differences": [{"field": "tp_dst", "wanted": "80", "packet": "443"}]}}],
            "action_set": "group:7",
            "outputs": [{"port": "1", "group": 7, "bucket": 0, "sent": False},
                        {"port": "2", "group": 7, "bucket": 1, "sent": True}],
            "output_count": 2})

    def test_a_packet_that_no_rule_matches_is_dropped(self):
        out = self.run_ok("packet", "trace", "in_port=1,arp").out
        self.assertIn("table 200: no rule matches\n", out)
        self.assertTrue(out.endswith("dropped: no rule of table 200 matches\n"), out)
        document = self.run_json(0, "packet", "trace", "in_port=1,arp")
        self.assertEqual((document["end"], document["tables"][0]["id"]), ("no_rule", None))

    def test_fields_that_differ_are_in_the_form_of_rules(self):
        self.delete_all()
        self.run_ok("flow", "add", "priority=9,dl_vlan=5,dl_dst=00:00:5e:00:00:00/ff:ff:ff:00:00:00,actions=output:1")
        out = self.run_ok("packet", "trace", "in_port=1,dl_dst=00:11:22:33:44:55").out
        self.assertIn("dl_dst is 00:11:22:33:44:55, not 00:00:5e:00:00:00/ff:ff:ff:00:00:00", out)
        self.assertIn("vlan_vid is 0x0000, not 0x1005", out)

    def test_what_a_packet_cannot_have_is_wrong_usage(self):
        for packet, what in (("ip,nw_dst=10.0.0.0/8", "nw_dst has a mask; a packet has one value"),
                             ("in_port=1,actions=output:1", "a packet has no actions"),
                             ("batch_if=1-2", "a packet has no batch_if")):
            with self.subTest(packet):
                self.assertIn(what, self.run_fails(2, "packet", "trace", packet).err)
        self.assertIn("argument 1:1:1: unknown field 'inport'", self.run_fails(2, "packet", "trace", "inport=1").err)

    def test_instances_and_tables_that_there_are_not(self):
        self.assertIn("the instance does not exist",
                      self.run_fails(5, "packet", "trace", "in_port=1", "--instance", "77").err)
        self.assertIn("does not have this table",
                      self.run_fails(5, "packet", "trace", "in_port=1", "--table", "9").err)


class SendTest(PacketTest):
    def counters(self):
        return {rule["rule"]["priority"]: (rule["packets"], rule["bytes"])
                for rule in self.run_json(0, "flow", "show", "--stats")["rules"]}

    def test_only_a_packet_that_is_sent_counts(self):
        self.run_ok("packet", "trace", "in_port=1,ip,nw_dst=10.0.0.2")
        self.assertEqual(self.counters(), {100: ("0", "0"), 200: ("0", "0")})
        self.run_ok("packet", "send", "in_port=1,ip,nw_dst=10.0.0.2")
        self.run_ok("packet", "send", "in_port=1,ip,nw_dst=10.0.0.2", "--bytes", "1500")
        self.assertEqual(self.counters(), {100: ("2", "1564"), 200: ("0", "0")})


if __name__ == "__main__":
    unittest.main()
