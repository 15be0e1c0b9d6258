"""A controller for osken-manager: asks a switch all that it answers and writes down what it said,
one line an answer, into the file that $ANSWERS names."""
import os

from os_ken.base import app_manager
from os_ken.controller import ofp_event
from os_ken.controller.handler import CONFIG_DISPATCHER, MAIN_DISPATCHER, set_ev_cls
from os_ken.ofproto import ofproto_v1_3

BOTH = [CONFIG_DISPATCHER, MAIN_DISPATCHER]


def note(line):
    with open(os.environ["ANSWERS"], "a", encoding="utf-8") as file:
        file.write(line + "\n")


class Questions(app_manager.OSKenApp):
    OFP_VERSIONS = [ofproto_v1_3.OFP_VERSION]

    @set_ev_cls(ofp_event.EventOFPSwitchFeatures, CONFIG_DISPATCHER)
    def features(self, event):
        switch = event.msg.datapath
        note(f"features {switch.id:#x} tables {event.msg.n_tables}")
        numbers, parser = switch.ofproto, switch.ofproto_parser
        switch.send_msg(parser.OFPRoleRequest(switch, numbers.OFPCR_ROLE_MASTER, 5))
        switch.send_msg(parser.OFPGetConfigRequest(switch))
        switch.send_msg(parser.OFPDescStatsRequest(switch, 0))
        switch.send_msg(parser.OFPTableStatsRequest(switch, 0))
        switch.send_msg(parser.OFPGetAsyncRequest(switch))
        actions = [parser.OFPActionOutput(2)]
        write = [parser.OFPInstructionActions(numbers.OFPIT_WRITE_ACTIONS, actions)]
        buckets = [parser.OFPBucket(actions=actions)]
        switch.send_msg(parser.OFPGroupMod(switch, numbers.OFPGC_ADD, numbers.OFPGT_ALL, 9, buckets))
        for port in range(1, 101):
            switch.send_msg(parser.OFPFlowMod(switch, table_id=0, priority=7, instructions=write,
                                              match=parser.OFPMatch(in_port=port)))
        switch.send_msg(parser.OFPFlowMod(switch, table_id=77, instructions=write,
                                          match=parser.OFPMatch(in_port=1)))
        switch.send_msg(parser.OFPBarrierRequest(switch))

    @set_ev_cls(ofp_event.EventOFPRoleReply, BOTH)
    def role(self, event):
        note(f"role {event.msg.role} generation {event.msg.generation_id}")

    @set_ev_cls(ofp_event.EventOFPGetConfigReply, BOTH)
    def config(self, event):
        note(f"config {event.msg.flags} {event.msg.miss_send_len}")

    @set_ev_cls(ofp_event.EventOFPDescStatsReply, BOTH)
    def description(self, event):
        note(f"description {event.msg.body.hw_desc.decode()}, {event.msg.body.dp_desc.decode()}")

    @set_ev_cls(ofp_event.EventOFPTableStatsReply, BOTH)
    def tables(self, event):
        for table in event.msg.body:
            note(f"table {table.table_id} rules {table.active_count}")

    @set_ev_cls(ofp_event.EventOFPPortDescStatsReply, BOTH)
    def ports(self, event):
        note("ports " + ("known" if event.msg.body[0].name else "without names"))

    @set_ev_cls(ofp_event.EventOFPGetAsyncReply, BOTH)
    def masks(self, event):
        note(f"masks {event.msg.packet_in_mask}")

    @set_ev_cls(ofp_event.EventOFPBarrierReply, BOTH)
    def barrier(self, _event):
        note("barrier")

    @set_ev_cls(ofp_event.EventOFPErrorMsg, BOTH)
    def error(self, event):
        note(f"error {event.msg.type} {event.msg.code}")
