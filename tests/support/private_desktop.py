"""A desktop for one program of a test: a screen nobody sees, a message bus, and folders of the user's, all its own."""

import ctypes
import os
import pathlib
import struct
import subprocess
import time
import zlib

PATIENCE = 120

BUS = """<busconfig><type>session</type><listen>unix:dir={runtime}</listen><auth>EXTERNAL</auth>
<policy context='default'><allow send_destination='*'/><allow receive_sender='*'/><allow own='*'/></policy></busconfig>
"""


def until(what, condition, patience=PATIENCE):
    """What `condition` gives once it gives something."""
    end = time.monotonic() + patience
    while time.monotonic() < end:
        found = condition()
        if found:
            return found
        time.sleep(0.05)
    raise AssertionError(f"waited in vain: {what}")


class PrivateDesktop:
    """Everything is below `root`: what programs keep for the user in `user`, what belongs to the test in `stage`."""

    def __init__(self, root, size="800x600"):
        self.user, self.stage, self.size = root / "user", root / "stage", size
        self.running = []
        self.env = {"PATH": os.environ["PATH"], "LANG": "C.UTF-8", "TZ": "UTC"}
        folders = {"HOME": "home", "XDG_RUNTIME_DIR": "run", "TMPDIR": "tmp"}
        folders |= {f"XDG_{kind.upper()}_HOME": kind for kind in ("data", "state", "cache", "config")}
        self.stage.mkdir()
        for variable, name in folders.items():
            folder = self.user / name
            folder.mkdir(parents=True, mode=0o700)
            self.env[variable] = str(folder)

    def start(self, name, *words, **options):
        with open(self.stage / name, "ab") as log:
            program = subprocess.Popen(words, env=self.env, stdin=subprocess.DEVNULL, stderr=log,
                                       **{"stdout": log, **options})
        self.running.append(program)
        return program

    def __enter__(self):
        reading, writing = os.pipe()
        # The picture of the screen is a file there.
        self.start("xvfb", "Xvfb", "-displayfd", str(writing), "-screen", "0", f"{self.size}x24", "-nolisten", "tcp",
                   "-fbdir", str(self.stage), pass_fds=[writing])
        os.close(writing)
        with os.fdopen(reading) as number:
            self.env["DISPLAY"] = ":" + number.readline().strip()
        (self.stage / "bus.conf").write_text(BUS.format(runtime=self.stage))
        bus = self.start("bus", "dbus-daemon", "--nofork", "--print-address=1",
                         f"--config-file={self.stage}/bus.conf", stdout=subprocess.PIPE)
        self.env["DBUS_SESSION_BUS_ADDRESS"] = bus.stdout.readline().decode().strip()
        return self

    def __exit__(self, *_):
        for program in reversed(self.running):
            if program.poll() is None:
                program.terminate()
                program.wait(PATIENCE)

    def await_name(self, name):
        subprocess.run(["gdbus", "wait", "--session", "--timeout", str(PATIENCE), name], env=self.env, check=True)

    def run(self, *words):
        """What the program prints; it must end in order."""
        done = subprocess.run(words, env=self.env, stdin=subprocess.DEVNULL, capture_output=True, text=True,
                              timeout=PATIENCE, check=False)
        name = pathlib.Path(words[0]).name
        assert done.returncode == 0, f"{name} {' '.join(words[1:])}: {done.returncode}\n{done.stdout}{done.stderr}"
        return done.stdout

    def screen(self):
        """The colours of the screen: rows of bytes, three a point."""
        data = (self.stage / "Xvfb_screen0").read_bytes()
        words = struct.unpack(">25I", data[:100])
        start, width, height, row_length = words[0] + words[19] * 12, words[4], words[5], words[12]
        rows = []
        for y in range(height):
            points = data[start + y * row_length:start + y * row_length + width * 4]
            row = bytearray(width * 3)
            row[0::3], row[1::3], row[2::3] = points[2::4], points[1::4], points[0::4]
            rows.append(bytes(row))
        return rows


class Hands:
    """Keyboard and mouse of a PrivateDesktop. Needs libX11 and libXtst."""

    def __init__(self, display):
        self.x, self.test = ctypes.CDLL("libX11.so.6"), ctypes.CDLL("libXtst.so.6")
        self.x.XOpenDisplay.restype = ctypes.c_void_p
        self.x.XStringToKeysym.restype = ctypes.c_ulong
        self.x.XKeysymToKeycode.argtypes = [ctypes.c_void_p, ctypes.c_ulong]
        self.x.XKeysymToKeycode.restype = ctypes.c_uint
        self.x.XSync.argtypes = [ctypes.c_void_p, ctypes.c_int]
        self.test.XTestFakeKeyEvent.argtypes = [ctypes.c_void_p, ctypes.c_uint, ctypes.c_int, ctypes.c_ulong]
        self.test.XTestFakeButtonEvent.argtypes = [ctypes.c_void_p, ctypes.c_uint, ctypes.c_int, ctypes.c_ulong]
        self.test.XTestFakeMotionEvent.argtypes = [ctypes.c_void_p, ctypes.c_int, ctypes.c_int, ctypes.c_int,
                                                   ctypes.c_ulong]
        self.display = self.x.XOpenDisplay(display.encode())

    def press(self, *keys):
        """One after the other: names of X's, with + between those that are held together."""
        for key in keys:
            codes = [self.x.XKeysymToKeycode(self.display, self.x.XStringToKeysym(name.encode()))
                     for name in key.split("+")]
            for code in codes:
                self.test.XTestFakeKeyEvent(self.display, code, 1, 0)
            for code in reversed(codes):
                self.test.XTestFakeKeyEvent(self.display, code, 0, 0)
            self.x.XSync(self.display, 0)

    def move(self, x, y):
        self.test.XTestFakeMotionEvent(self.display, -1, x, y, 0)
        self.x.XSync(self.display, 0)

    def click(self, x, y):
        self.move(x, y)
        for is_down in (1, 0):
            self.test.XTestFakeButtonEvent(self.display, 1, is_down, 0)
        self.x.XSync(self.display, 0)


def write_png(file, rows):
    """`rows` of colours, three bytes each. Colours beyond the 256 most frequent become the nearest of these."""
    counts = {}
    for row in rows:
        for at in range(0, len(row), 3):
            color = row[at:at + 3]
            counts[color] = counts.get(color, 0) + 1
    palette = sorted(counts, key=counts.get, reverse=True)[:256]
    places = {color: place for place, color in enumerate(palette)}
    for color in counts:
        if color not in places:
            places[color] = min(range(len(palette)),
                                key=lambda place: sum((a - b) ** 2 for a, b in zip(color, palette[place])))

    def chunk(kind, content):
        return struct.pack(">I", len(content)) + kind + content + struct.pack(">I", zlib.crc32(kind + content))

    size = struct.pack(">IIBBBBB", len(rows[0]) // 3, len(rows), 8, 3, 0, 0, 0)
    lines = b"".join(b"\0" + bytes(places[row[at:at + 3]] for at in range(0, len(row), 3)) for row in rows)
    pathlib.Path(file).write_bytes(b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", size) + chunk(b"PLTE", b"".join(palette))
                                   + chunk(b"IDAT", zlib.compress(lines, 9)) + chunk(b"IEND", b""))
