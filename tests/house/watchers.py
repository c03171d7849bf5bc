"""Who reads what the house says: WebSocket clients, old clients of IO, the broker, pages."""
import asyncio
import base64
import json
import os
import random
import socket

import paho.mqtt.client as mqtt
import websockets

from board import SOURCE, Failure


class Events:
    """The events that a hub has told, in one life of its process: the same to everybody."""

    def __init__(self):
        self.told = {}  # (life, seq): event
        self.heard = []  # (life, after, seq, the set of seqs): a client's whole visit

    def take(self, life, event):
        first = self.told.setdefault((life, event["seq"]), event)
        if first != event:
            raise Failure(f"event {event['seq']} is {event} and was {first}")

    def check(self):
        """No client has missed one that another has had."""
        for life, after, to, heard in self.heard:
            missed = [
                seq
                for of, seq in self.told
                if of == life and after < seq <= to and seq not in heard
            ]
            if missed:
                raise Failure(
                    f"events {missed} of life {life} never came to a client of {after} to {to}"
                )


class Follower:
    """A WebSocket client: whole state, then changes without a gap. Comes again when it is dropped."""

    def __init__(self, board, events, on_event=None):
        self.board = board
        self.events = events
        self.on_event = on_event
        self.values = {}
        self.socket = None
        self.is_current = False
        self.answers = {}
        self.messages = 0
        self.number = 1
        self.life = self.seq = 0

    async def visit(self, seconds=None):
        """Follows for some time, or for as long as the hub serves."""
        try:
            async with websockets.connect(
                f"ws://{self.board.url}/api/live", max_size=None, open_timeout=10, close_timeout=1
            ) as self.socket:
                life = self.board.life
                params = {"after": self.seq} if self.seq and life == self.life else {}
                after = self.seq if params else None
                heard = set()
                self.life = life
                await self.socket.send(
                    json.dumps(
                        {"jsonrpc": "2.0", "id": 1, "method": "live.subscribe", "params": params}
                    )
                )
                try:
                    await asyncio.wait_for(self.read(life, after, heard), seconds)
                finally:
                    self.is_current = False
        except asyncio.TimeoutError:
            pass
        except (OSError, websockets.WebSocketException):
            await asyncio.sleep(0.5)
        finally:
            self.socket = None
            for answer in self.answers.values():
                if not answer.done():
                    answer.set_result(None)
            self.answers.clear()

    async def read(self, life, after, heard):
        try:
            async for text in self.socket:
                message = json.loads(text)
                self.messages += 1
                if "id" in message and message["id"] != 1:
                    answer = self.answers.pop(message["id"], None)
                    if answer and not answer.done():
                        answer.set_result(message)
                elif "id" in message:
                    if "error" in message:
                        raise Failure(f"the subscription is refused: {text}")
                    self.take_state(life, message["result"], heard)
                    after = self.seq if after is None else after
                else:
                    self.take_changes(life, message["params"], heard)
        finally:
            if after is not None:
                self.events.heard.append((life, after, self.seq, heard))

    def take_state(self, life, state, heard):
        self.seq = state["seq"]
        self.values = {
            channel["id"]: channel["value"]
            for card in state["cards"]
            for channel in card["channels"]
        }
        self.is_current = True
        self.take_events(life, state, heard)

    def take_changes(self, life, changes, heard):
        # What a subscriber asked for comes behind the state, whose number is higher.
        if changes["after"] != self.seq and changes["seq"] > self.seq:
            raise Failure(f"a gap: {self.seq}, then after {changes['after']}")
        self.seq = max(self.seq, changes["seq"])
        cards = changes["cards"] or []
        for channel in [*changes["channels"], *(c for card in cards for c in card["channels"])]:
            self.values[channel["id"]] = channel["value"]
        self.take_events(life, changes, heard)

    def take_events(self, life, message, heard):
        """Those of a change, or since the last visit."""
        if message.get("lost"):
            raise Failure(f"{message['lost']} events are lost")
        for event in message.get("events") or []:
            if event["seq"] in heard:
                raise Failure(f"event {event['seq']} comes twice")
            heard.add(event["seq"])
            self.events.take(life, event)
            if self.on_event:
                self.on_event(event)

    async def call(self, method, **params):
        """A method's answer, or None where the connection ended before it came."""
        if not self.socket or not self.is_current:
            return None
        self.number += 1
        answer = asyncio.get_running_loop().create_future()
        self.answers[self.number] = answer
        try:
            await self.socket.send(
                json.dumps(
                    {"jsonrpc": "2.0", "id": self.number, "method": method, "params": params}
                )
            )
            return await asyncio.wait_for(answer, 15)
        except (asyncio.TimeoutError, OSError, websockets.WebSocketException):
            return None

    async def stay(self):
        while True:
            await self.visit()

    async def come_and_go(self, chance):
        while True:
            if chance.random() < 0.5:
                self.seq = 0  # as somebody who has never been here
            await self.visit(chance.uniform(2, 60))
            await asyncio.sleep(chance.uniform(0, 3))


async def be_deaf(board):
    """A WebSocket client that subscribes and never reads."""
    request = (
        f"GET /api/live HTTP/1.1\r\nHost: {board.url}\r\nUpgrade: websocket\r\n"
        "Connection: Upgrade\r\nSec-WebSocket-Version: 13\r\nSec-WebSocket-Key: "
        f"{base64.b64encode(os.urandom(16)).decode()}\r\n\r\n"
    )
    call = json.dumps({"jsonrpc": "2.0", "id": 1, "method": "live.subscribe"}).encode()
    mask = b"\0\0\0\0"
    while True:
        try:
            with socket.socket() as client:
                client.setsockopt(socket.SOL_SOCKET, socket.SO_RCVBUF, 4096)
                client.connect((board.url.split(":")[0], int(board.url.split(":")[1])))
                client.sendall(request.encode() + bytes([0x81, 0x80 | len(call)]) + mask + call)
                await asyncio.sleep(50)  # it answers no ping, and is dropped before
        except OSError:
            await asyncio.sleep(1)


class OldClient:
    """What was written for the daemon's IO port: reads reports, and has eight lamps of its own."""

    def __init__(self, board):
        self.board = board
        self.blocks = {}  # "a3b0": "40"
        self.writer = None

    async def stay(self):
        while True:
            try:
                reader, writer = await asyncio.open_connection("127.0.0.1", self.board.port("io"))
                await reader.readuntil(b"ready\r\n\r")
                self.writer = writer
                while True:
                    line = (await reader.readuntil(b"\r\n\r")).decode()
                    if not line.startswith("COE:"):
                        self.blocks[line[:4]] = line[5:7]
                    elif self.board.is_calm():
                        raise Failure(f"the old client is told {line}")
            except (OSError, asyncio.IncompleteReadError):
                self.writer = None
                await asyncio.sleep(1)

    async def say(self, line):
        """Whether it could be said."""
        if not self.writer:
            return False
        self.writer.write(line.encode() + b"\r\n")
        return True


class Listener:
    """A client of the broker that has all of the house."""

    def __init__(self):
        self.topics = {}
        self.errors = 0
        self.client = mqtt.Client()
        self.client.on_connect = lambda client, *_: client.subscribe("qelm/#", qos=1)
        self.client.on_message = self.take
        self.client.reconnect_delay_set(1, 2)
        self.client.connect_async("127.0.0.1", 1883)
        self.client.loop_start()

    def take(self, _client, _data, message):
        if message.topic.endswith("/error"):
            self.errors += 1
        else:
            self.topics[message.topic] = message.payload.decode()

    def tell(self, topic, payload):
        return (
            self.client.is_connected()
            and self.client.publish(topic, payload, qos=1).rc == mqtt.MQTT_ERR_SUCCESS
        )

    def stop(self):
        self.client.disconnect()
        self.client.loop_stop()


def seed_of(*parts):
    return random.Random(" ".join(str(part) for part in parts))


class Pages:
    """The page of each board, open in a browser all the time."""

    async def start(self, boards):
        self.process = await asyncio.create_subprocess_exec(
            "node",
            SOURCE / "tests/house/pages.mjs",
            *(f"http://{board.url}/" for board in boards),
            stdin=asyncio.subprocess.PIPE,
            stdout=asyncio.subprocess.PIPE,
            limit=1 << 24,
        )
        await self.process.stdout.readline()

    async def values(self):
        """For each board what its page shows: {"5.0": "true", "0.3": "17"}."""
        self.process.stdin.write(b"\n")
        return json.loads(await self.process.stdout.readline())

    async def stop(self):
        self.process.stdin.close()
        await self.process.wait()
