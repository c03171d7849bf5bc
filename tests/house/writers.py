"""Who asks the house for something, each through a door of its own and for channels of its own.

So what was accepted last is what a card must show in the end, whatever happened on the way.
"""
import asyncio
import json
import time

from board import Failure, until
from watchers import seed_of

LAMPS = "5"
SERVO = "0"


class Writer:
    """Asks at random; remembers what was accepted last."""

    pause = 0.5  # seconds, on average

    def __init__(self, board, channels, latencies):
        self.board = board
        self.channels = channels
        self.latencies = latencies
        self.chance = seed_of(type(self).__name__, board.name)
        self.asked = {}
        self.accepted = self.refused = 0

    async def write(self, channel, value):
        """Whether it was accepted."""
        raise NotImplementedError

    def draw(self, channel):
        return self.chance.random() < 0.5 if channel[0] == LAMPS else self.chance.randrange(256)

    async def ask(self, channel):
        value = self.draw(channel)
        begin = time.monotonic()
        if not await self.write(channel, value):
            self.refused += 1
            return False
        self.latencies.append(time.monotonic() - begin)
        self.asked[channel] = value
        self.accepted += 1
        return True

    async def stay(self):
        while True:
            await self.ask(self.chance.choice(self.channels))
            await asyncio.sleep(self.chance.uniform(0, 2 * self.pause))

    async def settle(self):
        """Asks once more for each channel, until it is accepted."""
        for channel in self.channels:
            await until(f"{type(self).__name__} asks for {channel}", lambda: self.ask(channel))


class Http(Writer):
    async def write(self, channel, value):
        status, _ = await self.board.ask("PUT", f"/api/channels/{channel}", {"value": value})
        return status == 200


class WebSocket(Writer):
    def __init__(self, board, channels, latencies, follower):
        super().__init__(board, channels, latencies)
        self.follower = follower

    async def write(self, channel, value):
        answer = await self.follower.call("channels.set", id=channel, value=value)
        return answer is not None and "result" in answer


class Ctl(Writer):
    pause = 5

    async def write(self, channel, value):
        word = str(value) if channel[0] == SERVO else "on" if value else "off"
        status, _ = await self.board.ctl("set", channel, word)
        return status == 0


class Broker(Writer):
    """It gets no answer: what it asked for holds as soon as the hub tells it."""

    def __init__(self, board, channels, latencies, listener):
        super().__init__(board, channels, latencies)
        self.listener = listener

    async def write(self, channel, value):
        topic = f"qelm/{self.board.name}/{channel.replace('.', '/')}"
        payload = str(value) if channel[0] == SERVO else "ON" if value else "OFF"
        if not self.listener.tell(f"{topic}/set", payload):
            return False
        try:
            await until("its state", lambda: self.listener.topics.get(topic) == payload, 3, 0.002)
            return True
        except Failure:
            return False


class Old(Writer):
    """Writes the second block of the lamps whole; its receipt is what the hub's API says then."""

    def __init__(self, board, channels, latencies, client):
        super().__init__(board, channels, latencies)
        self.client = client

    async def ask(self, _):
        lines = self.chance.randrange(256)
        if not await self.client.say(f"a5b1d{lines:02X}"):
            return False
        for line in range(8):
            self.asked[f"5.{8 + line}"] = not lines >> line & 1
        self.accepted += 1
        return True

    async def settle(self):
        async def holds():
            await self.ask(None)
            await asyncio.sleep(1)
            status, text = await self.board.ask("GET", f"/api/cards/{LAMPS}")
            if status != 200:
                return False
            channels = json.loads(text)["channels"]
            return all(channels[int(id[2:])]["value"] == value for id, value in self.asked.items())

        await until("the old client's block", holds)


class Texts:
    """Writes on the display through HTTP."""

    def __init__(self, board):
        self.board = board
        self.chance = seed_of("Texts", board.name)
        self.text = None

    async def write(self):
        text = "".join(self.chance.choice("abcdefgh 0123456789") for _ in range(20))
        status, _ = await self.board.ask(
            "POST", "/api/cards/E/text", {"row": 0, "column": 0, "text": text}
        )
        if status == 200:
            self.text = text
        return status == 200

    async def stay(self):
        while True:
            await self.write()
            await asyncio.sleep(self.chance.uniform(0, 4))

    async def settle(self):
        await until("a text", self.write)
