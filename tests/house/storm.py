#!/usr/bin/python3 -B
"""Many boards on one broker that is started again: how soon a hub that shows them knows all anew.

    tools/storm [BOARDS [TIMES [BUILD]]]       200 boards, 3 times and build-release without them

One board is a real one, whose hub shows the others. They are alike: each has a connection of its own
and tells the broker what a real hub does, with a value that is another one after each restart.
"""
import asyncio
import json
import pathlib
import random
import subprocess
import sys
import tempfile
import time

import paho.mqtt.client as mqtt
from board import Board, Failure, until
from packets import CONNECT, PING, PONG, PUBLISH_KEPT, packet, text

KNOB = "F/3"
BACK = 1.5  # seconds within which a hub comes back to a broker that was away for less


def kept():
    """What the broker keeps of the real board, by topic."""
    messages = {}
    client = mqtt.Client()
    client.on_message = lambda _, __, message: messages.update({message.topic: message.payload})
    client.connect("127.0.0.1")
    client.subscribe("qelm/#")
    end = time.monotonic() + 3
    while time.monotonic() < end:
        client.loop(0.1)
    client.disconnect()
    return messages


class Pretended:
    """A board of which there are only its messages."""

    def __init__(self, number, messages):
        self.name = f"b{number:04}"
        root = f"qelm/{self.name}/"
        self.will = root + "status"
        self.messages = {
            root
            + topic.split("/", 2)[2]: payload.replace(b"board1", self.name.encode()).replace(
                json.loads(messages["qelm/board1/bus"])["id"].encode(), f"{number:08x}".encode()
            )
            for topic, payload in messages.items()
        }
        self.knob = root + KNOB
        self.writer = None

    async def tell(self, value):
        """Comes to the broker, says all, and waits until the broker has taken it."""
        reader, self.writer = await asyncio.open_connection("127.0.0.1", 1883)
        self.messages[self.knob] = str(value).encode()
        will = text(self.will) + text("offline")
        self.writer.write(
            packet(CONNECT, text("MQTT") + bytes([4, 0x26, 0, 0]) + text(self.name) + will)
            + b"".join(
                packet(PUBLISH_KEPT, text(topic) + payload)
                for topic, payload in self.messages.items()
            )
            + packet(PING)
        )
        await reader.readuntil(PONG)


class Storm:
    def __init__(self, boards, build, folder):
        self.folder = folder
        self.boards = boards
        self.board = Board("board1", 5, folder, build, 100, True)
        self.broker = None
        self.chance = random.Random(1)

    def start_broker(self):
        config = self.folder / "mosquitto.conf"
        config.write_text(
            "user root\nlistener 1883 127.0.0.1\nallow_anonymous true\nlog_dest none\n"
        )
        self.broker = subprocess.Popen(["/usr/sbin/mosquitto", "-c", config])

    def stop_broker(self):
        self.broker.kill()
        self.broker.wait()

    async def is_connected(self):
        return "qelm/board1/F/3" in kept()

    async def knows_all(self, value):
        """The hub's own answers: each board is there, with its cards and this value of its knob."""
        _, answer = await self.board.ask("GET", "/api/boards")
        states = {each["board"]: each["state"] for each in json.loads(answer)["boards"]}
        if sum(state == "online" for state in states.values()) < len(self.pretended):
            return False
        for board in self.pretended:
            _, answer = await self.board.ask("GET", f"/api/boards/{board.name}/channels/F.3")
            if f'"value":{value},' not in answer:
                return False
        return True

    async def blow(self, value):
        """The seconds from the broker's start until the hub knows all, and until they had told it."""
        begin = time.monotonic()

        async def come(board):
            await asyncio.sleep(self.chance.uniform(0, BACK))
            while True:
                try:
                    return await board.tell(value)
                except ConnectionError:
                    await asyncio.sleep(0.1)

        await asyncio.gather(*(come(board) for board in self.pretended))
        told = time.monotonic() - begin
        await until("the hub knows all", lambda: self.knows_all(value))
        return time.monotonic() - begin, told

    async def run(self, times):
        self.start_broker()
        await self.board.start()
        await until("the hub is at the broker", self.is_connected)
        messages = kept()
        self.pretended = [Pretended(number, messages) for number in range(self.boards)]
        print(f"{self.boards} boards, {len(messages)} messages each")
        for value in range(times + 1):
            if value > 0:
                self.stop_broker()
                self.start_broker()
            known, told = await self.blow(100 + value)
            status = pathlib.Path(f"/proc/{self.board.pid_of('hub')}/status").read_text()
            resident = int(status.partition("VmRSS:")[2].split()[0])
            what = "restart" if value > 0 else "first"
            print(
                f"{what}: told in {told:.1f} s, known in {known:.1f} s, hub {resident} KiB",
                flush=True,
            )

    def stop(self):
        self.board.stop()
        if self.broker:
            self.stop_broker()


def main():
    boards, times, build = sys.argv[1:] + ["200", "3", "build-release"][len(sys.argv) - 1 :]
    storm = Storm(int(boards), build, pathlib.Path(tempfile.mkdtemp(prefix="storm-")))
    try:
        asyncio.run(storm.run(int(times)))
    except Failure as failure:
        sys.exit(str(failure))
    finally:
        storm.stop()


main()
