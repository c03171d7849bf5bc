"""A board with all who use it."""
import asyncio
import json

import writers
from board import until
from watchers import Events, Follower, OldClient, be_deaf, seed_of
from world import Accidents, Inputs


class Residents:
    def __init__(self, board, options, listener, latencies):
        self.board = board
        self.events = Events()
        self.inputs = Inputs(board, latencies["input"])
        self.first = Follower(board, self.events, self.inputs.on_event)
        self.guests = [Follower(board, self.events) for _ in range(options.clients)]
        self.old = [OldClient(board) for _ in range(options.old)]
        self.accidents = Accidents(board, options.pause)
        command = latencies["command"]
        self.writers = [
            writers.Http(board, ["5.0", "5.1", "0.0"], command),
            writers.WebSocket(board, ["5.2", "5.3", "0.1"], command, self.first),
            writers.Broker(board, ["5.4", "5.5", "0.2"], latencies["broker"], listener),
            writers.Ctl(board, ["5.6", "5.7", "0.3"], latencies["qelmctl"]),
            writers.Old(board, [f"5.{8 + line}" for line in range(8)], [], self.old[0]),
        ]
        self.texts = writers.Texts(board)

    def lives(self, options):
        """What goes on all the time, and what ends before the others settle."""
        yield self.first.stay(), False
        for old in self.old:
            yield old.stay(), False
        for number, guest in enumerate(self.guests):
            yield guest.come_and_go(seed_of("guest", self.board.name, number)), False
        for _ in range(options.deaf):
            yield be_deaf(self.board), False
        yield self.inputs.stay(options.move), True
        for writer in self.writers:
            yield writer.stay(), True
        yield self.texts.stay(), True
        yield self.accidents.stay(), True

    async def settle(self):
        await until(f"{self.board.name} serves", self.serves, 120)
        await until("the old clients are served", lambda: all(old.writer for old in self.old))
        await asyncio.gather(*(writer.settle() for writer in self.writers), self.texts.settle())
        for _ in range(100):
            await self.inputs.move()

    async def serves(self):
        status, text = await self.board.ask("GET", "/api/bus")
        if status != 200:
            return False
        bus = json.loads(text)
        _, cards = await self.board.ask("GET", "/api/cards")
        return (
            bus["adapter"]["state"] == "up"
            and '"state":"silent"' not in cards
            and '"state":"absent"' not in cards
            and '"E"' in cards
        )
