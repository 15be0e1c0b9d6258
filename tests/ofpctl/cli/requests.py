"""Requests by hand, for what these tests change behind the back of the program they look at."""
import socket
import struct


def tlv(kind, value):
    return struct.pack(">HH", kind, len(value)) + value


def request(sandbox, code, *tlvs):
    """Sends a request to the agent; the code of its result reply."""
    with socket.socket(socket.AF_UNIX, socket.SOCK_SEQPACKET) as channel:
        channel.settimeout(20)
        channel.connect(str(sandbox.runtime / "agent.sock"))
        channel.send(tlv(1, struct.pack(">I", code)) + b"".join(tlvs))
        reply = channel.recv(8192)
    head, result = struct.unpack(">4xI4xI", reply)
    assert head == 0x20000001, reply
    return result


def add_instance(sandbox, instance):
    assert request(sandbox, 1, tlv(124, struct.pack(">HHI", instance, 0, 0))) == 0


def activate_instance(sandbox, instance):
    assert request(sandbox, 23, tlv(4, struct.pack(">H2x", instance))) == 0


def remove_instance(sandbox, instance):
    assert request(sandbox, 2, tlv(124, struct.pack(">HHI", instance, 0, 0))) == 0


def controller(instance, number, port):
    value = bytearray(156)
    struct.pack_into(">HH4sI", value, 0, instance, 2, bytes([127, 0, 0, 1]), 0)
    struct.pack_into(">H", value, 24, port)
    value[28] = number
    return tlv(7, bytes(value))


def set_controller(sandbox, instance, number, port):
    assert request(sandbox, 5, controller(instance, number, port)) == 0


def unset_controller(sandbox, instance, number):
    assert request(sandbox, 4, controller(instance, number, 0)) == 0
