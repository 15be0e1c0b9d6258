"""An agent that misbehaves as it is told, for what a real one does not do on demand.

    fake_agent.py RUNTIME_DIR [--silent] [--hang-up] [--garbage] [--die-after N] [--silent-after N]
                  [--delay SECONDS] [--refuse N] [--result CODE=RESULT] [--answer CODE=HEX] [--record FILE]

It takes smooth starts, rules and queries; N counts datagrams of rules, --refuse every Nth rule.
--result answers a message with a result code, --answer with bytes, --record keeps what came.
"""
import argparse
import fcntl
import os
import selectors
import socket
import struct
import sys
import time

SMOOTH_START, FLOW_RULE, RESULT = 0x50000005, 0x50000001, 0x20000001
FLOW_MOD, BARRIER_REQUEST, BARRIER_REPLY, ERROR = 14, 20, 21, 1


def tlvs(data):
    while len(data) >= 4:
        kind, length = struct.unpack_from(">HH", data)
        yield kind, data[4:4 + length]
        data = data[4 + length:]


def tlv(kind, value):
    return struct.pack(">HH", kind, len(value)) + value


def openflow(kind, xid, body=b""):
    return struct.pack(">BBHI", 4, kind, 8 + len(body), xid) + body


def pair(text):
    return text.partition("=")


class FakeAgent:
    def __init__(self, options):
        self.options = options
        self.results = {int(code, 0): int(result, 0) for code, _, result in map(pair, options.result)}
        self.answers = {int(code, 0): bytes.fromhex(answer) for code, _, answer in map(pair, options.answer)}
        self.batches = 0
        self.rules = 0
        self.lock = open(os.path.join(options.runtime, "agent.lock"), "w")
        fcntl.lockf(self.lock, fcntl.LOCK_EX | fcntl.LOCK_NB, 2, 0)
        path = os.path.join(options.runtime, "agent.sock")
        if os.path.exists(path):
            os.unlink(path)
        self.listener = socket.socket(socket.AF_UNIX, socket.SOCK_SEQPACKET)
        self.listener.bind(path)
        self.listener.listen(16)
        self.selector = selectors.DefaultSelector()
        self.selector.register(self.listener, selectors.EVENT_READ)

    def run(self):
        print("ready", flush=True)
        while True:
            for key, _ in self.selector.select():
                if key.fileobj is self.listener:
                    channel, _ = self.listener.accept()
                    self.selector.register(channel, selectors.EVENT_READ)
                else:
                    self.serve(key.fileobj)

    def serve(self, channel):
        try:
            request = channel.recv(65536)
        except ConnectionError:
            request = b""
        if not request or self.options.hang_up:
            self.selector.unregister(channel)
            channel.close()
            return
        try:
            self.answer(channel, request)
        except (BrokenPipeError, ConnectionError):
            pass

    def answer(self, channel, request):
        code = struct.unpack_from(">I", request, 4)[0]
        if self.options.record:
            with open(self.options.record, "a", encoding="ascii") as record:
                record.write(request.hex() + "\n")
        if self.options.silent:
            return
        if self.options.garbage:
            channel.send(bytes(range(200, 256)) * 7)
        elif code == SMOOTH_START:
            channel.send(openflow(BARRIER_REPLY, 0))
        elif code == FLOW_RULE:
            self.answer_rules(channel, request)
        elif code in self.answers:
            channel.send(self.answers[code])
        else:
            channel.send(tlv(1, struct.pack(">I", RESULT)) + tlv(2, struct.pack(">I", self.results.get(code, 0))))

    def answer_rules(self, channel, request):
        options = self.options
        if options.die_after is not None and self.batches == options.die_after:
            os._exit(9)
        if options.silent_after is not None and self.batches >= options.silent_after:
            return
        self.batches += 1
        time.sleep(options.delay)
        for kind, message in tlvs(request):
            if kind != 122:
                continue
            xid = struct.unpack_from(">I", message, 4)[0]
            if message[1] == FLOW_MOD:
                self.rules += 1
                if options.refuse and self.rules % options.refuse == 0:
                    channel.send(openflow(ERROR, xid, struct.pack(">HH", 5, 3) + message[:64]))
            elif message[1] == BARRIER_REQUEST:
                channel.send(openflow(BARRIER_REPLY, xid))


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("runtime")
    parser.add_argument("--silent", action="store_true")
    parser.add_argument("--hang-up", action="store_true")
    parser.add_argument("--garbage", action="store_true")
    parser.add_argument("--die-after", type=int)
    parser.add_argument("--silent-after", type=int)
    parser.add_argument("--delay", type=float, default=0)
    parser.add_argument("--refuse", type=int, default=0)
    parser.add_argument("--result", action="append", default=[])
    parser.add_argument("--answer", action="append", default=[])
    parser.add_argument("--record")
    FakeAgent(parser.parse_args()).run()


if __name__ == "__main__":
    try:
        main()
    except KeyboardInterrupt:
        sys.exit(0)
