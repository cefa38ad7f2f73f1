"""What the drivers did to the emulated chips, read out of the emulator's trace."""
import re


class Chip:
    def __init__(self):
        self.speed, self.format, self.flow = 0, "", ""
        self.lines = {"DTR": False, "RTS": False}
        self.moves = []
        self.moved_at = 0.0

    def settings(self):
        up = [name for name, is_up in self.lines.items() if is_up]
        return " ".join([str(self.speed), self.format, self.flow, *up])

    def take_moves(self):
        moves, self.moves = self.moves, []
        return " ".join(moves)

    def move(self, time, name, is_up):
        if self.lines[name] != is_up:
            self.lines[name] = is_up
            self.moves += [f"{(time - self.moved_at) * 1000:.0f}ms", "-+"[is_up] + name]
            self.moved_at = time

    def change_speed(self, _, speed):
        self.speed = speed

    def look(self, time, line):
        for pattern, handle in self.PATTERNS.items():
            if match := re.search(pattern, line):
                handle(self, time, *[int(number, 0) for number in match.groups()])


class Uart(Chip):
    """A 16550: registers by their number."""

    INTERRUPT_ENABLE, LINE_CONTROL, MODEM_CONTROL = 1, 3, 4
    PARITIES = {0x00: "N", 0x08: "O", 0x18: "E", 0x28: "M", 0x38: "S"}
    DIVISOR_ACCESS, MODEM_STATUS_INTERRUPT = 0x80, 0x08
    shows_divisor = False

    def write(self, time, register, value):
        if register == self.LINE_CONTROL:
            self.shows_divisor = bool(value & self.DIVISOR_ACCESS)
            parity = self.PARITIES.get(value & 0x38, "N")
            self.format = f"{5 + (value & 3)}{parity}{2 if value & 4 else 1}"
        elif register == self.MODEM_CONTROL:
            self.move(time, "DTR", bool(value & 1))
            self.move(time, "RTS", bool(value & 2))
        elif register == self.INTERRUPT_ENABLE and not self.shows_divisor:
            # The driver does the flow control; the chip only tells it of CTS.
            self.flow = "CTS" if value & self.MODEM_STATUS_INTERRUPT else "-"

    PATTERNS = {
        r"serial_write write addr (\w+) val (\w+)": write,
        r":serial_update_parameters baudrate=(\d+)": Chip.change_speed,
    }


class Adapter(Chip):
    """The USB adapter: the requests that it gets."""

    SET_LINES, SET_FORMAT = 0x4001, 0x4004

    def handle(self, time, request, value):
        if request == self.SET_FORMAT:
            stop_bits = (1, 1.5, 2)[value >> 11 & 3]
            self.format = f"{value & 0xFF}{'NOEMS'[value >> 8 & 7]}{stop_bits}"
        elif request == self.SET_LINES:
            # The upper byte tells which lines the lower one is about.
            for bit, name in enumerate(self.lines):
                if value >> 8 >> bit & 1:
                    self.move(time, name, bool(value >> bit & 1))

    def change_flow(self, _, flow):
        self.flow = {0: "-", 1: "CTS", 4: "XON"}.get(flow, str(flow))

    PATTERNS = {
        r"usb_serial_handle_control .* control (\w+), value (\w+)": handle,
        r"usb_serial_set_baud .* baud rate (\d+)": Chip.change_speed,
        r"usb_serial_set_flow_control .* flow control (\d+)": change_flow,
    }
