"""The virtual machine: its devices, its monitor, and the cables of its serial devices."""
import asyncio
import contextlib
import fcntl
import json
import socket
import termios

# Emulation alone: hardware support, where the host offers it at all, is not always sound, and what
# the tests show does not depend on it.
MACHINE = ["-accel", "tcg,thread=multi", "-cpu", "max", "-m", "512", "-nodefaults",
           "-display", "none", "-no-reboot", "-msg", "timestamp=on"]
SOCKETS = ["console", "control", "adapter", "adapter-end", "uart", "uart-end"]
DEVICES = [
    "virtio-serial-pci",
    "virtserialport,nr=1,chardev=console",
    "virtserialport,nr=2,chardev=control",
    "virtserialport,nr=3,chardev=adapter-end",
    "virtserialport,nr=4,chardev=uart-end",
    "isa-serial,index=1,chardev=uart",
    "qemu-xhci",
]
ADAPTER = {"driver": "usb-serial", "chardev": "adapter", "id": "plugged", "always-plugged": True}
# What is written to the UART's registers, and the requests that the adapter gets.
EVENTS = ["serial_write", "serial_update_parameters", "usb_serial_handle_control",
          "usb_serial_set_baud", "usb_serial_set_flow_control"]


def command_line(folder, sockets):
    line = ["qemu-system-x86_64", *MACHINE, "-S", "-D", f"{folder}/trace",
            "-kernel", f"{folder}/kernel", "-initrd", f"{folder}/initrd",
            "-append", "rdinit=/init panic=-1 quiet",
            "-qmp", f"unix:{sockets}/monitor,server=on,wait=off"]
    for name in SOCKETS:
        line += ["-chardev", f"socket,id={name},path={sockets}/{name},server=on,wait=off"]
    for device in DEVICES:
        line += ["-device", device]
    for event in EVENTS:
        line += ["-trace", event]
    return line


async def repeat(action):
    """For what works once the emulator is ready for it."""
    for _ in range(500):
        with contextlib.suppress(OSError):
            return await action()
        await asyncio.sleep(0.02)
    return await action()


async def connect(path):
    return await repeat(lambda: asyncio.open_unix_connection(path))


class Monitor:
    async def open(self, path):
        self.reader, self.writer = await connect(path)
        await self.reader.readline()
        await self.ask("qmp_capabilities")

    async def ask(self, command, **arguments):
        self.writer.write(json.dumps({"execute": command, "arguments": arguments}).encode())
        answer = {}
        while not answer.keys() & {"return", "error"}:
            answer = json.loads(await self.reader.readline())
        if "error" in answer:
            raise OSError(f"{command}: {answer['error']['desc']}")


class Cable:
    """Carries bytes between a serial device and the port that is its other end in the guest."""

    def __init__(self, sockets, name):
        self.paths = (f"{sockets}/{name}", f"{sockets}/{name}-end")

    async def plug(self):
        (device, self.to_device), (end, to_end) = [await connect(path) for path in self.paths]
        self.to_device.transport.set_write_buffer_limits(0)
        self.socket = self.to_device.get_extra_info("socket")
        self.socket.setsockopt(socket.SOL_SOCKET, socket.SO_SNDBUF, 1)
        self.tasks = [asyncio.create_task(self.carry_there(end)),
                      asyncio.create_task(self.carry_back(device, to_end))]

    async def carry_there(self, end):
        """Only as much as the device takes: what waits is in the way of an unplugging."""
        while data := await end.read(1024):
            self.to_device.write(data)
            await self.to_device.drain()

    async def carry_back(self, device, to_end):
        """All that comes: the adapter's emulation holds the machine up until it is rid of it."""
        try:
            while data := await device.read(65536):
                to_end.write(data)
        finally:
            to_end.transport.abort()

    def has_waiting(self):
        unread = fcntl.ioctl(self.socket.fileno(), termios.TIOCOUTQ, bytes(4))
        return self.to_device.transport.get_write_buffer_size() > 0 or any(unread)

    async def calm(self):
        """The adapter's emulation crashes when it is deleted while bytes come that it has room
        for. A guest that takes no more leaves it no room."""
        self.tasks[0].cancel()
        for _ in range(50):
            if not self.has_waiting():
                return
            await asyncio.sleep(0.01)

    def unplug(self):
        """Drops what is under way, and what is sent until it is plugged in again."""
        self.to_device.transport.abort()
        self.tasks[1].cancel()
