#!/usr/bin/python3 -B
"""A house in use: boards on one broker, people, programs, accidents. In the end all must agree.

    tools/house [OPTION...]        --help tells them

Each minute it prints where it stands. Every ten seconds it samples memory, descriptors and waits
into a file for house.gp. It fails as soon as something is lost, doubled or out of order, and where
in the end a page, an API, a topic, a client or a card says something else than the others.
"""
import argparse
import asyncio
import os
import pathlib
import statistics
import subprocess
import sys
import tempfile
import time

from agreement import differences
from board import Board, Failure, until
from residents import Residents
from watchers import Listener, Pages

SAMPLE = 10  # seconds


def resident(pid):
    """KiB in memory and open descriptors; zeros for a process that is not there."""
    try:
        status = pathlib.Path(f"/proc/{pid}/status").read_text()
        kilobytes = int(status.partition("VmRSS:")[2].split()[0])
        return kilobytes, len(os.listdir(f"/proc/{pid}/fd"))
    except (OSError, IndexError):
        return 0, 0


class House:
    def __init__(self, options):
        self.options = options
        self.folder = tempfile.mkdtemp(prefix="house-")
        self.latencies = {name: [] for name in ("command", "broker", "qelmctl", "input")}
        self.all_latencies = {name: [] for name in self.latencies}
        self.boards = [
            Board(f"board{n + 1}", 5 + n, self.folder, options.build, options.pace, n == 0)
            for n in range(options.boards)
        ]
        self.broker = None
        self.restarts = 0
        self.pages = Pages()
        self.begin = time.monotonic()

    def start_broker(self):
        config = pathlib.Path(self.folder) / "mosquitto.conf"
        config.write_text(
            "user root\npersistence false\nlistener 1883 127.0.0.1\n"
            "allow_anonymous true\nlog_dest none\n"
        )
        self.broker = subprocess.Popen(["/usr/sbin/mosquitto", "-c", config])

    def stop_broker(self):
        self.broker.kill()
        self.broker.wait()

    async def restart_broker(self):
        while True:
            await asyncio.sleep(self.options.minutes * 60 / (self.options.restarts + 1))
            self.stop_broker()
            await asyncio.sleep(2)
            self.start_broker()
            self.restarts += 1

    async def sample(self, file):
        while True:
            await asyncio.sleep(SAMPLE)
            words = [f"{time.monotonic() - self.begin:.0f}"]
            for name, waits in self.latencies.items():
                words.append(f"{1000 * statistics.median(waits):.1f}" if waits else "NaN")
                self.all_latencies[name] += waits
                waits.clear()
            for board in self.boards:
                for name in ("hub", "daemon"):
                    words += [str(number or "NaN") for number in resident(board.pid_of(name))]
            file.write(" ".join(words) + "\n")
            file.flush()

    def print_state(self):
        print(
            f"{(time.monotonic() - self.begin) / 60:5.1f} min;",
            "; ".join(
                f"{each.board.name}: {sum(w.accepted for w in each.writers)} commands, "
                f"{each.inputs.moved} inputs, {each.inputs.pressed} keys, "
                f"{len(each.events.told)} events, "
                f"hub {resident(each.board.pid_of('hub'))}, qelm {resident(each.board.pid_of('daemon'))}"
                for each in self.residents
            ),
            flush=True,
        )

    async def watch(self, tasks, seconds):
        """Lets time go by; whatever fails ends it."""
        end = time.monotonic() + seconds
        while (left := end - time.monotonic()) > 0:
            done, _ = await asyncio.wait(
                tasks, timeout=min(left, 60), return_when=asyncio.FIRST_EXCEPTION
            )
            for task in done:
                task.result()
                raise Failure("somebody has gone home")
            self.print_state()

    async def differences(self, kept):
        pages = await self.pages.values() if self.options.pages else [None] * len(self.boards)
        return [
            difference
            for each, page in zip(self.residents, pages)
            for difference in await differences(
                each, None if each is self.residents[0] else self.boards[0], kept, page
            )
        ]

    async def run(self):
        self.start_broker()
        listener = Listener()
        for board in self.boards:
            await board.start()
        self.residents = [
            Residents(board, self.options, listener, self.latencies) for board in self.boards
        ]
        for each in self.residents:
            await until(f"{each.board.name} serves", each.serves)
        going, ending = [], [asyncio.create_task(self.restart_broker())]
        if self.options.pages:
            await self.pages.start(self.boards)
        for each in self.residents:
            for life, ends in each.lives(self.options):
                (ending if ends else going).append(asyncio.create_task(life))
        with open(self.options.samples, "w") as file:
            going.append(asyncio.create_task(self.sample(file)))
            await self.watch(going + ending, 60 * self.options.minutes)
            for task in ending:
                task.cancel()
            await asyncio.gather(*ending, return_exceptions=True)
            await asyncio.sleep(10)  # an accident that has begun is mended
            await asyncio.gather(*(each.settle() for each in self.residents))
            kept = Listener().topics  # a new client hears only what is kept
            found = ["nothing was compared"]
            end = time.monotonic() + 120
            while found and time.monotonic() < end:
                await asyncio.sleep(1)
                found = await self.differences(kept)
        for task in going:
            if task.done():
                task.result()
            task.cancel()
        await asyncio.gather(*going, return_exceptions=True)
        for each in self.residents:
            each.events.check()
        if found:
            raise Failure("\n".join(found[:20]))

    def report(self):
        self.print_state()
        for each in self.residents:
            print(
                f"{each.board.name}: accidents {each.accidents.counts}; events "
                f"{len(each.events.told)}, keys that had to be heard {each.inputs.certain}; visits "
                f"{len(each.events.heard)}; accepted, refused "
                + ", ".join(f"{type(w).__name__} {w.accepted} {w.refused}" for w in each.writers)
            )
        for name, waits in self.all_latencies.items():
            if len(waits) > 1:
                parts = statistics.quantiles(waits, n=100)
                print(
                    f"{name}: {len(waits)}, median {1000 * parts[49]:.1f} ms, "
                    f"99 of 100 within {1000 * parts[98]:.1f} ms"
                )
        print(f"broker restarted {self.restarts} times")

    def stop(self):
        for board in self.boards:
            board.stop()
        if self.broker:
            self.stop_broker()


def main():
    parser = argparse.ArgumentParser(
        description="A house in use, and whether all agree in the end."
    )
    parser.add_argument("--minutes", type=float, default=30)
    parser.add_argument("--boards", type=int, default=3)
    parser.add_argument(
        "--clients", type=int, default=3, help="WebSockets a board that come and go"
    )
    parser.add_argument("--deaf", type=int, default=1, help="WebSockets a board that never read")
    parser.add_argument(
        "--old", type=int, default=1, help="clients a board of the text port for IO"
    )
    parser.add_argument(
        "--pause", type=float, default=90, help="seconds between a board's accidents"
    )
    parser.add_argument("--pace", type=int, default=1, help="of the daemons, 1 to 100")
    parser.add_argument("--move", type=float, default=0.3, help="seconds between a board's changes")
    parser.add_argument("--restarts", type=int, default=10, help="of the broker")
    parser.add_argument("--pages", action="store_true", help="a browser with a page of each board")
    parser.add_argument("--build", default="build-release")
    parser.add_argument("--samples", default="house.dat", help="the file for house.gp")
    house = House(parser.parse_args())
    failed = None
    try:
        asyncio.run(house.run())
    except Failure as failure:
        failed = failure
    house.report()
    if failed:
        print(failed, file=sys.stderr)
        for board in house.boards:
            print(
                f"{board.name}: {(board.folder / 'hub.log').read_text()[-2000:]}", file=sys.stderr
            )
    house.stop()
    sys.exit(1 if failed else 0)


if __name__ == "__main__":
    main()
