#!/usr/bin/python3 -B
"""Lets the hub's allocations fail one by one: in its start, its end, and each request of the page.

    tools/starve [STEP]       every STEP-th of them and fewer of the late ones, 7 where none is given;
                              1: each of them, for hours

Each time the hub has to serve, to answer 503, or to end with a line that says why; and its store is
whole then. A request that was answered is asked again at the next allocation, until none of its own
is left to fail.
"""
import asyncio
import contextlib
import json
import mmap
import os
import pathlib
import re
import shlex
import sqlite3
import struct
import sys
import tempfile

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[2] / "house"))
from board import Board, Failure, until  # noqa: E402

BEFORE_MAIN = 13  # allocations of the libraries' own start, which nobody can catch


class Hunger:
    """What starve.so shares with the hub: how many allocations there were, and which one fails."""

    def __init__(self, file):
        file.write_bytes(bytes(16))
        self.memory = mmap.mmap(os.open(file, os.O_RDWR), 16)

    @property
    def count(self):
        return struct.unpack_from("q", self.memory, 0)[0]

    def fail_at(self, number):
        """Counts from now on; 0 for never."""
        struct.pack_into("qq", self.memory, 0, 0, number)


class Starved:
    def __init__(self, board, hunger, library, step):
        self.board = board
        self.hunger = hunger
        self.library = library
        self.step = step
        self.ends = self.refusals = self.tries = 0

    def after(self, number):
        """The next one. What waits for the bus meets allocations of all else: wider steps there."""
        return number + (self.step if self.step == 1 else max(self.step, number // 8))

    def start(self):
        self.board.start_hub(LD_PRELOAD=self.library, STARVE=self.board.folder / "hunger")

    @property
    def hub(self):
        return self.board.programs["hub"]

    async def answers(self):
        if self.hub.poll() is not None:
            return True
        # Where it could not read them, it serves its socket only.
        if "the accounts are lost" in (self.board.folder / "hub.log").read_text():
            return True
        return (await self.board.ask("GET", "/api/bus", locally=True))[0] == 200

    async def serves(self):
        """It knows the cards, which takes as long as the daemon's greetings."""
        if self.hub.poll() is not None:
            return True
        status, text = await self.board.ask("GET", "/api/cards/F", locally=True)
        return status == 200 and '"known":true' in text

    async def has_ended(self):
        return self.hub.poll() is not None

    def check_end(self, what):
        """It has ended: by itself, with a word, and its store is whole."""
        self.ends += 1
        said = (self.board.folder / "hub.log").read_text()
        if self.hub.returncode != 1 or not said:
            raise Failure(f"{what}: it ended with {self.hub.returncode}: {said[-500:]}")
        with contextlib.closing(sqlite3.connect(self.board.folder / "store/hub.db")) as store:
            if store.execute("PRAGMA integrity_check").fetchone()[0] != "ok":
                raise Failure(f"{what}: the store is not whole")

    async def starts(self):
        """Its start, up to its first answer."""
        number = BEFORE_MAIN + 1
        while True:
            (self.board.folder / "hub.log").write_text("")
            self.hunger.fail_at(number)
            self.start()
            await until(f"start, allocation {number}", self.answers, pause=0.01)
            self.tries += 1
            if self.hub.poll() is not None:
                self.check_end(f"start, allocation {number}")
            count = self.hunger.count
            self.hunger.fail_at(0)
            self.board.kill_hub()
            if count < number:
                return number
            number = self.after(number)

    async def stops(self):
        """Its end when it is told to."""
        number = 1
        while True:
            (self.board.folder / "hub.log").write_text("")
            self.start()
            await until("the hub is there again", self.answers, pause=0.01)
            self.hunger.fail_at(number)
            self.hub.terminate()
            await until(f"stop, allocation {number}", self.has_ended, pause=0.01)
            self.tries += 1
            if self.hub.returncode != 0:
                self.check_end(f"stop, allocation {number}")
            count = self.hunger.count
            self.hunger.fail_at(0)
            if count < number:
                return number
            number = self.after(number)

    async def request(self, verb, path, body):
        """One operation, until it has all that it wants."""
        number = 1
        while True:
            if self.hub.poll() is not None:
                (self.board.folder / "hub.log").write_text("")
                self.start()
                await until("the hub is there again", self.serves)
            self.hunger.fail_at(number)
            status, _ = await self.board.ask(verb, path, body, locally=True)
            count = self.hunger.count
            self.hunger.fail_at(0)
            self.tries += 1
            self.refusals += status == 503
            what = f"{verb} {path}, allocation {number}: {status}"
            if status == 500:
                raise Failure(what)
            if status == 0:
                await until(f"{what}, the hub has ended or answers again", self.answers)
            if self.hub.poll() is not None:
                self.check_end(what)
            if count < number:
                return number
            number = self.after(number)


def requests_of(page):
    """Verb, path and body of each request that the page about the API prints."""
    text = page.read_text().replace("\\\n", " ")
    for command in re.findall(r"^\$ (curl .*?localhost.*)$", text, re.M):
        # What a file or a program would give is no matter here.
        words = shlex.split(re.sub(r"\$\(.*?\)", "none", command))
        body = verb = None
        for option, value in zip(words, words[1:]):
            if option == "--json":
                body, verb = {} if value.startswith("@") else json.loads(value), verb or "POST"
            if option == "-X":
                verb = value
        path = next(word for word in words if word.startswith("localhost")).partition("/")[2]
        if path != "api/live":
            yield verb or "GET", "/" + path, body


async def run(build, library, step):
    folder = pathlib.Path(tempfile.mkdtemp(prefix="starved-"))
    board = Board("board1", 5, folder, build, 1, False)
    starved = Starved(board, Hunger(board.folder / "hunger"), library, step)
    try:
        await board.start()
        await until("the hub serves", starved.serves)
        board.kill_hub()
        print(f"start: {await starved.starts()} allocations", flush=True)
        print(f"stop: {await starved.stops()} allocations", flush=True)
        starved.start()
        await until("the hub is there again", starved.serves)
        page = pathlib.Path(__file__).resolve().parents[3] / "docs/reference/qelm-hub-api.7.md"
        for verb, path, body in requests_of(page):
            print(f"{verb} {path}: {await starved.request(verb, path, body)}", flush=True)
    finally:
        board.stop()
    print(f"{starved.tries} tries: {starved.refusals} answers 503, {starved.ends} ends of the hub")


if __name__ == "__main__":
    asyncio.run(run(sys.argv[1], sys.argv[2], int(sys.argv[3])))
