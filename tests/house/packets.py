"""The little of MQTT 3.1.1 that many boards need at once, ready to be sent."""
import struct

CONNECT, PUBLISH_KEPT, SUBSCRIBE, PING = 0x10, 0x31, 0x82, 0xC0
PONG = b"\xd0\0"


def text(value):
    value = value.encode()
    return struct.pack(">H", len(value)) + value


def packet(kind, body=b""):
    length, left = b"", len(body)
    while left > 127:
        length, left = length + bytes([left % 128 + 128]), left // 128
    return bytes([kind]) + length + bytes([left]) + body
