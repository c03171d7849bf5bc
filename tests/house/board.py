"""A board of the house: bus, daemon and hub, in a mount namespace of their own.

Its ports begin with a digit of its own, as all boards share one loopback.
"""
import asyncio
import contextlib
import json
import os
import pathlib
import signal
import subprocess

SOURCE = pathlib.Path(__file__).resolve().parents[2]

# Ten input cards, as in a busy house, and what it switches.
CARDS = """
<QELMBus>
  <Card Address="0" Kind="servo"/>
  <Card Address="1" Kind="digital-input"/>
  <Card Address="2" Kind="digital-input"/>
  <Card Address="3" Kind="digital-input"/>
  <Card Address="4" Kind="motor"/>
  <Card Address="5" Kind="digital-output"/>
  <Card Address="6" Kind="digital-input"/>
  <Card Address="7" Kind="analogue-input"/>
  <Card Address="8" Kind="keys"/>
  <Card Address="9" Kind="ir"/>
  <Card Address="A" Kind="analogue-input"/>
  <Card Address="B" Kind="analogue-input"/>
  <Card Address="C" Kind="digital-input"/>
  <Card Address="D" Kind="digital-output"/>
  <Card Address="E" Kind="lcd"/>
  <Card Address="F" Kind="analogue-input"/>
</QELMBus>
"""
CONTACTS = "1236C"
KNOBS = "7ABF"

SETTINGS = """
[daemon]
log = "/run/qelm/qelm.log"
cae = {first}010
io = {first}011
mon = {first}012
[http]
listen = ["127.0.0.1:{first}080"]
[text]
cae = {first}110
io = {first}111
mon = {first}112
[store]
folder = "{folder}/store"
[broker]
host = "127.0.0.1"
name = "{name}"
boards = {boards}
[virtual-bus]
control = "{folder}/bus"
"""


class Failure(Exception):
    """What the house must not do."""


async def until(what, holds, patience=90, pause=0.1):
    """Waits for a condition, or for a coroutine's truth."""
    end = asyncio.get_running_loop().time() + patience
    while True:
        answer = holds()
        if asyncio.iscoroutine(answer):
            answer = await answer
        if answer:
            return answer
        if asyncio.get_running_loop().time() > end:
            raise Failure(f"not within {patience} s: {what}")
        await asyncio.sleep(pause)


class Board:
    def __init__(self, name, first, folder, build, pace, shows_others):
        self.name = name
        self.first = first
        self.folder = pathlib.Path(folder) / name
        self.build = pathlib.Path(build).resolve()
        self.folder.mkdir()
        self.disturbed = 0.0  # until when what happens may be lost: an accident, and its mending
        self.life = 0  # of the hub
        self.holder = subprocess.Popen(
            [
                SOURCE / "tools/sandbox",
                "--host-network",
                "sh",
                "-c",
                "echo ready && exec sleep infinity",
            ],
            stdout=subprocess.PIPE,
        )
        self.holder.stdout.readline()
        self.root = pathlib.Path(f"/proc/{self.holder.pid}/root")
        config = (SOURCE / "docs/reference/qelmconf.xml").read_text()
        (self.root / "etc/qelm/qelmconf.xml").write_text(
            config.replace('Port="5', f'Port="{first}').replace('Percent="50"', f'Percent="{pace}"')
        )
        (self.folder / "hub.toml").write_text(
            SETTINGS.format(
                first=first, folder=self.folder, name=name, boards=str(shows_others).lower()
            )
        )
        (self.folder / "bus.xml").write_text(CARDS)
        self.programs = {}

    @property
    def url(self):
        return f"127.0.0.1:{self.first}080"

    def port(self, name):
        return int(f"{self.first}11{('cae', 'io', 'mon').index(name)}")

    def launch(self, name, *words, **environment):
        """Runs a program of the build in the board's namespace."""
        given = ["env", *(f"{key}={value}" for key, value in environment.items())]
        with open(self.folder / f"{name}.log", "a") as log:
            self.programs[name] = subprocess.Popen(
                ["nsenter", "-t", str(self.holder.pid), "-m", "--"]
                + given
                + [self.build / words[0], *words[1:]],
                stdin=subprocess.DEVNULL,
                stdout=log,
                stderr=log,
            )

    async def start(self):
        self.launch(
            "bus",
            "qelm-bus",
            "--bus",
            self.folder / "bus.xml",
            "--plain",
            "--link",
            "/dev/ttyUSB0",
            "--control",
            self.folder / "bus",
        )
        await until("the bus", (self.folder / "bus").exists)
        self.start_daemon()
        self.start_hub()

    def start_daemon(self):
        self.launch("launcher", "qelm")
        self.programs["launcher"].wait()

    def start_hub(self, **environment):
        self.life += 1
        self.launch(
            "hub",
            "qelm-hub",
            "--config",
            self.folder / "hub.toml",
            "--socket",
            self.folder / "hub.sock",
            "--page",
            SOURCE / "web/dist",
            **environment,
        )

    def pid_of(self, name):
        """The process of "hub", "bus" or "daemon"; None where there is none."""
        if name != "daemon":
            return self.programs[name].pid
        try:
            pid = int((self.root / "run/qelm/qelm.pid").read_text())
            os.kill(pid, 0)
            return pid
        except (OSError, ValueError):
            return None

    async def kill_daemon(self):
        """With the `sleep` it may be in, which holds its ports; as its unit would."""
        pid = self.pid_of("daemon")
        if pid is None:
            return
        threads = pathlib.Path(f"/proc/{pid}/task").glob("*/children")
        children = [int(child) for thread in threads for child in thread.read_text().split()]
        for each in [pid, *children]:
            with contextlib.suppress(ProcessLookupError):
                os.kill(each, signal.SIGKILL)
        await until("the daemon's end", lambda: not pathlib.Path(f"/proc/{pid}").exists())

    def kill_hub(self):
        self.programs["hub"].kill()
        self.programs["hub"].wait()

    async def order(self, line):
        """Tells the virtual bus something; what it shows."""
        reader, writer = await asyncio.open_unix_connection(self.folder / "bus")
        writer.write(line.encode() + b"\n")
        writer.write_eof()
        answer = (await reader.read()).decode()
        writer.close()
        if not answer.endswith("ok\n"):
            raise Failure(f"{self.name}: the bus says to {line}: {answer}")
        return answer[:-3]

    async def ask(self, verb, path, body=None, locally=False):
        """A request to the hub, over its socket where that is said: status and text of the answer; 0
        where nobody answers."""
        text = "" if body is None else json.dumps(body)
        head = f"{verb} {path} HTTP/1.1\r\nHost: {self.url}\r\nConnection: close\r\n"
        if body is not None:
            head += f"Content-Type: application/json\r\nContent-Length: {len(text)}\r\n"
        try:
            if locally:
                reader, writer = await asyncio.open_unix_connection(self.folder / "hub.sock")
            else:
                reader, writer = await asyncio.open_connection(*self.url.split(":"))
            writer.write(f"{head}\r\n{text}".encode())
            answer = (await reader.read()).decode()
            writer.close()
            status, _, rest = answer.partition("\r\n\r\n")
            return int(status.split()[1]), rest
        except (OSError, IndexError):
            return 0, ""

    async def ctl(self, *words):
        """qelmctl's exit status and output."""
        process = await asyncio.create_subprocess_exec(
            self.build / "qelmctl",
            "--socket",
            self.folder / "hub.sock",
            *words,
            stdin=subprocess.DEVNULL,
            stdout=subprocess.PIPE,
            stderr=subprocess.PIPE,
        )
        out, errors = await process.communicate()
        return process.returncode, (out + errors).decode()

    def is_calm(self):
        return asyncio.get_running_loop().time() > self.disturbed

    def disturb(self, seconds):
        self.disturbed = max(self.disturbed, asyncio.get_running_loop().time() + seconds)

    def stop(self):
        pid = self.pid_of("daemon")
        if pid:
            os.kill(pid, signal.SIGTERM)
        for name in ("hub", "bus"):
            if name in self.programs:
                self.programs[name].terminate()
                self.programs[name].wait()
        self.holder.kill()
        self.holder.wait()
