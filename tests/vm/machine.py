#!/usr/bin/env python3
"""Runs the driver tests in a virtual machine: machine.py FOLDER

FOLDER has the kernel and the initrd. The far ends of the serial devices' cables are ports of the
guest too, so the tests play the devices themselves. What they cannot do from inside they ask for
over a control line.
"""
import asyncio
import re
import sys
import tempfile

import emulator
from chips import Adapter, Uart

GUARD = 900  # seconds; only for a guest that hangs


class Control:
    """Does what the tests ask for, a line, and answers with a line."""

    def __init__(self, monitor, cable, trace):
        self.monitor = monitor
        self.cable = cable
        self.trace = trace
        self.chips = {"adapter": Adapter(), "uart": Uart()}

    async def serve(self, reader, writer):
        while line := await reader.readline():
            verb, *words = line.decode().split()
            try:
                answer = await getattr(self, "do_" + verb)(*words)
            except Exception as error:
                answer = f"{verb} failed: {error!r}"
            writer.write(f"{'done' if answer is None else answer}\n".encode())

    async def do_plug(self):
        await self.cable.plug()
        # The emulator takes a moment to let go of a deleted adapter's socket.
        await emulator.repeat(lambda: self.monitor.ask("device_add", **emulator.ADAPTER))

    async def do_unplug(self):
        await self.cable.calm()
        await self.monitor.ask("device_del", id=emulator.ADAPTER["id"])
        self.cable.unplug()

    async def do_break(self):
        await self.monitor.ask("chardev-send-break", id="uart")

    async def do_settings(self, name):
        return self.chip(name).settings()

    async def do_moves(self, name):
        return self.chip(name).take_moves()

    def chip(self, name):
        for line in self.trace:
            time = float(line.partition("@")[2].partition(":")[0])
            for chip in self.chips.values():
                chip.look(time, line)
        return self.chips[name]


async def show(console):
    """Shows the tests' output; whether some have run and none has failed."""
    passed, status = 0, None
    while raw := await console.readline():
        line = raw.decode(errors="replace").rstrip()
        print(line, flush=True)
        passed += line.startswith("[       OK ]")
        if match := re.match(r"guest ends with (\d+)", line):
            status = int(match[1])
    print(f"{passed} passed; the exit status is {status}")
    return passed > 0 and status == 0


async def test(folder, sockets):
    monitor = emulator.Monitor()
    await monitor.open(f"{sockets}/monitor")
    console, _ = await emulator.connect(f"{sockets}/console")
    uart = emulator.Cable(sockets, "uart")
    await uart.plug()
    with open(f"{folder}/trace") as trace:
        control = Control(monitor, emulator.Cable(sockets, "adapter"), trace)
        await control.do_plug()
        serving = control.serve(*await emulator.connect(f"{sockets}/control"))
        task = asyncio.create_task(serving)
        await monitor.ask("cont")
        passed = await asyncio.wait_for(show(console), GUARD)
        task.cancel()
        uart.unplug()
        return passed


async def run(folder, sockets):
    with open(f"{folder}/emulator.log", "w") as log:
        process = await asyncio.create_subprocess_exec(
            *emulator.command_line(folder, sockets), stdin=asyncio.subprocess.DEVNULL,
            stdout=log, stderr=log)
    try:
        return await test(folder, sockets)
    except (OSError, asyncio.TimeoutError) as error:
        print(f"The virtual machine failed: {error!r}; {folder}/emulator.log may tell more.")
        return False
    finally:
        if process.returncode is None:
            process.terminate()
        await process.wait()


if __name__ == "__main__":
    with tempfile.TemporaryDirectory() as scratch:
        sys.exit(0 if asyncio.run(run(sys.argv[1], scratch)) else 1)
