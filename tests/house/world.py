"""What happens outside: inputs that move, and accidents."""
import asyncio
import time

from board import CONTACTS, KNOBS, Failure
from watchers import seed_of

# Until a session with the daemon is there again and its cards are known: a greeting takes 7 s, the
# search for the adapter some more.
MENDING = 30


class Inputs:
    """Contacts, knobs and keys of a board. While nothing is disturbed a key must be heard of."""

    def __init__(self, board, latencies):
        self.board = board
        self.latencies = latencies
        self.chance = seed_of("Inputs", board.name)
        self.heard = asyncio.Event()
        self.expected = None
        self.moved = self.pressed = self.certain = 0

    def on_event(self, event):
        if (event["event_type"], event.get("code")) == self.expected:
            self.heard.set()

    async def key(self, order, kind, code):
        was_calm = self.board.is_calm()
        self.heard.clear()
        self.expected = (kind, code)
        begin = time.monotonic()
        await self.board.order(f"{order} 8 {code:02X}")
        try:
            await asyncio.wait_for(self.heard.wait(), 20)
            self.latencies.append(time.monotonic() - begin)
        except asyncio.TimeoutError:
            if was_calm and self.board.is_calm():
                raise Failure(f"{self.board.name}: {order} {code} was never heard") from None
        self.certain += was_calm and self.board.is_calm()
        self.expected = None

    async def press(self):
        code = 1 + self.chance.randrange(62)
        self.pressed += 1
        await self.key("press", "press", code)
        await self.key("release", "release", code)

    async def move(self):
        self.moved += 1
        if self.chance.random() < 0.5:
            card, block = self.chance.choice(CONTACTS), self.chance.randrange(2)
        else:
            card, block = self.chance.choice(KNOBS), self.chance.randrange(6)
        try:
            await self.board.order(f"set {card} {block} {self.chance.randrange(256):02X}")
        except Failure as failure:
            if "is pulled" not in str(failure):
                raise

    async def stay(self, pause):
        """Moves something every so many seconds on average, and presses a key now and then."""
        while True:
            if self.chance.random() < 0.05:
                await self.press()
            else:
                await self.move()
            await asyncio.sleep(self.chance.uniform(0, 2 * pause))


class Accidents:
    """A cable pulled, a card pulled, a daemon or a hub killed."""

    KINDS = ("cable", "cable", "cable", "card", "daemon", "hub")

    def __init__(self, board, pause):
        self.board = board
        self.pause = pause
        self.chance = seed_of("Accidents", board.name)
        self.counts = dict.fromkeys(self.KINDS, 0)

    async def stay(self):
        while True:
            await asyncio.sleep(self.chance.uniform(0.5, 1.5) * self.pause)
            # Once begun, it is mended too.
            await asyncio.shield(self.happen(self.chance.choice(self.KINDS)))

    async def happen(self, kind):
        seconds = self.chance.uniform(0.5, 5)
        self.counts[kind] += 1
        self.board.disturb(seconds + MENDING)
        if kind == "cable":
            await self.board.order("cable pull")
            await asyncio.sleep(seconds)
            await self.board.order("cable plug")
        elif kind == "card":
            card = self.chance.choice(CONTACTS + KNOBS)
            await self.board.order(f"card {card} pull")
            await asyncio.sleep(seconds)
            await self.board.order(f"card {card} plug")
        elif kind == "daemon":
            await self.board.kill_daemon()
            await asyncio.sleep(seconds)
            self.board.start_daemon()
        else:
            self.board.kill_hub()
            await asyncio.sleep(seconds)
            self.board.start_hub()
        self.board.disturb(MENDING)
