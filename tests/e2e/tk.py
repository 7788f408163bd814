"""Drives the real Tumblekin program for end-to-end tests.

A VirtualDisplay is an Xvfb server of the test's own. A Game runs the built
program in a temporary copy of the game directory with a settings file the test
writes, sends real X input through xdotool (keys and buttons are held long
enough for a program that polls at 45 frames a second to see them), takes
screenshots and reads their pixels.
"""
import os
import shutil
import subprocess
import tempfile
import time
import unittest

BUILD_DIR = os.environ.get("TK_BUILD_DIR", os.path.join(os.path.dirname(__file__), "..", "..", "build"))
GAME_DIR = os.environ.get("TK_GAME_DIR", os.path.join(BUILD_DIR, "game"))
SHOT_DIR = os.path.join(BUILD_DIR, "e2e-shots")

# A held key or button stays down this long: several frames at 45 a second.
HOLD = 0.12


class VirtualDisplay:
    """An Xvfb server on a free display number, stopped by stop()."""

    def __init__(self, width=1024, height=768):
        read_fd, write_fd = os.pipe()
        self.proc = subprocess.Popen(
            ["Xvfb", "-displayfd", str(write_fd), "-screen", "0", "%dx%dx24" % (width, height),
             "-nolisten", "tcp", "+extension", "GLX", "-noreset"],
            pass_fds=(write_fd,), stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        os.close(write_fd)
        number = b""
        deadline = time.time() + 20
        while not number.endswith(b"\n") and time.time() < deadline:
            chunk = os.read(read_fd, 16)
            if not chunk:
                break
            number += chunk
        os.close(read_fd)
        if not number.strip():
            self.proc.kill()
            raise RuntimeError("Xvfb did not start")
        self.name = ":" + number.decode().strip()
        self.width = width
        self.height = height
        self.env = dict(os.environ, DISPLAY=self.name)

    def run(self, *args, check=True):
        return subprocess.run(list(args), env=self.env, check=check, capture_output=True, text=True)

    def xdotool(self, *args, check=True):
        return self.run("xdotool", *[str(a) for a in args], check=check).stdout

    def windows(self, name):
        """Ids of the visible windows whose name matches the regular expression."""
        out = self.xdotool("search", "--onlyvisible", "--name", name, check=False)
        return [int(w) for w in out.split()]

    def wait_window(self, name, timeout=20):
        deadline = time.time() + timeout
        while time.time() < deadline:
            ids = self.windows(name)
            if ids:
                return ids[0]
            time.sleep(0.1)
        raise TimeoutError("no window named %r appeared" % name)

    def geometry(self, window):
        out = self.xdotool("getwindowgeometry", "--shell", window)
        values = dict(line.split("=", 1) for line in out.split())
        return int(values["X"]), int(values["Y"]), int(values["WIDTH"]), int(values["HEIGHT"])

    def screenshot(self, path=None):
        """The whole screen as an Image; also saved as PNG when a path is given."""
        data = subprocess.run(["import", "-window", "root", "-depth", "8", "ppm:-"],
                              env=self.env, check=True, capture_output=True).stdout
        image = Image.from_ppm(data)
        if path:
            os.makedirs(os.path.dirname(path), exist_ok=True)
            subprocess.run(["convert", "ppm:-", path], input=data, check=True)
        return image

    def stop(self):
        if self.proc.poll() is None:
            self.proc.terminate()
            try:
                self.proc.wait(5)
            except subprocess.TimeoutExpired:
                self.proc.kill()
                self.proc.wait()

    def __enter__(self):
        return self

    def __exit__(self, *exc):
        self.stop()


class Image:
    """RGB pixels of a screenshot."""

    def __init__(self, width, height, rgb):
        self.width = width
        self.height = height
        self.rgb = rgb

    @classmethod
    def from_ppm(cls, data):
        # P6 header: magic, width, height, maxval, each separated by whitespace.
        fields = []
        pos = 0
        while len(fields) < 4:
            while data[pos:pos + 1].isspace():
                pos += 1
            start = pos
            while not data[pos:pos + 1].isspace():
                pos += 1
            fields.append(data[start:pos])
        pos += 1
        assert fields[0] == b"P6" and fields[3] == b"255", fields
        width, height = int(fields[1]), int(fields[2])
        return cls(width, height, data[pos:pos + width * height * 3])

    def pixel(self, x, y):
        i = (y * self.width + x) * 3
        return tuple(self.rgb[i:i + 3])

    def crop(self, x, y, w, h):
        rows = [self.rgb[((y + r) * self.width + x) * 3:((y + r) * self.width + x + w) * 3] for r in range(h)]
        return Image(w, h, b"".join(rows))

    def count(self, colour, tolerance=0):
        n = 0
        for i in range(0, len(self.rgb), 3):
            if all(abs(self.rgb[i + k] - colour[k]) <= tolerance for k in range(3)):
                n += 1
        return n

    def differs(self, other):
        """Number of pixels that differ between two images of one size."""
        a, b = self.rgb, other.rgb
        return sum(1 for i in range(0, len(a), 3) if a[i:i + 3] != b[i:i + 3])


def settings_text(values):
    """An Allegro configuration file from {section: {key: value}}. The server
    address is always loopback: no test ever aims a packet anywhere else."""
    values = {s: dict(k) for s, k in values.items()}
    values.setdefault("network", {})["RemoteServerAddress"] = "127.0.0.1"
    lines = []
    for section, keys in values.items():
        lines.append("[%s]" % section)
        lines.extend("%s = %s" % (k, v) for k, v in keys.items())
        lines.append("")
    return "\n".join(lines)


def read_settings(path):
    """{section: {key: value}} of an Allegro configuration file."""
    result = {}
    section = ""
    with open(path) as f:
        for line in f:
            line = line.strip()
            if not line or line.startswith("#"):
                continue
            if line.startswith("[") and line.endswith("]"):
                section = line[1:-1]
                result.setdefault(section, {})
            elif "=" in line:
                key, value = line.split("=", 1)
                result.setdefault(section, {})[key.strip()] = value.strip()
    return result


# Windowed, small and silent: what most tests want.
DEFAULT_SETTINGS = {
    "video": {"width": 800, "height": 600, "bpp": 32, "window": 1},
    "sound": {"enabled": 0, "SoundVolume": 192},
    "network": {"PlayerName": "Tester", "LocalServerPort": 8030, "RemoteServerPort": 8030},
}


class Game:
    """The real program, run in a private copy of the game directory."""

    def __init__(self, display, settings=None, settings_file="Tumblekin.ini", args=(), leave_out=(), trace=False):
        self.display = display
        self.dir = tempfile.mkdtemp(prefix="tumblekin-")
        for name in os.listdir(GAME_DIR):
            if name in leave_out or name.endswith(".ini") or name == "RVK Error Log.txt":
                continue
            src = os.path.join(GAME_DIR, name)
            dst = os.path.join(self.dir, name)
            if name == "data":
                os.symlink(os.path.abspath(src), dst)  # read only; no test changes it
            elif os.path.isdir(src):
                shutil.copytree(src, dst)
            else:
                shutil.copy2(src, dst)
        if settings is not None:
            self.write_settings(settings_file, settings)
        self.args = list(args)
        self.trace = os.path.join(self.dir, "frames.trace") if trace else None
        self.proc = None
        self.window = None
        self.origin = (0, 0)

    def path(self, name):
        return os.path.join(self.dir, name)

    def write_settings(self, name, values):
        with open(self.path(name), "w") as f:
            f.write(settings_text(values))

    def settings(self, name="Tumblekin.ini"):
        return read_settings(self.path(name))

    def start(self, wait=True):
        env = dict(self.display.env)
        if self.trace:
            env["TUMBLEKIN_FRAME_TRACE"] = self.trace
        self.log = open(self.path("output.log"), "w")
        self.proc = subprocess.Popen([os.path.join(self.dir, "tumblekin")] + self.args, cwd=self.dir, env=env,
                                     stdout=self.log, stderr=subprocess.STDOUT)
        if wait:
            self.wait_window()
        return self

    def wait_window(self, timeout=30):
        self.window = self.display.wait_window("^Tumblekin$", timeout)
        x, y, _, _ = self.display.geometry(self.window)
        self.origin = (x, y)
        self.focus()
        return self.window

    def wait_drawn(self, timeout=30):
        """Waits for the first drawn frame: the catalogues load before it, and
        until then the window is black."""
        deadline = time.time() + timeout
        while time.time() < deadline:
            shot = self.screenshot()
            if shot.count((0, 0, 0)) < shot.width * shot.height // 2:
                time.sleep(0.3)
                return shot
            time.sleep(0.2)
        raise TimeoutError("the window stayed black")

    def focus(self):
        self.display.xdotool("windowfocus", "--sync", self.window, check=False)

    # Input. Keys go through XTEST to the focused window, as a keyboard would.
    def key(self, name, hold=HOLD, after=0.15):
        self.display.xdotool("keydown", name)
        time.sleep(hold)
        self.display.xdotool("keyup", name)
        time.sleep(after)

    def type_text(self, text):
        for ch in text:
            self.key(ch if ch.isalnum() else _KEYSYMS.get(ch, ch), hold=0.06, after=0.06)

    def move(self, x, y, after=0.1):
        """Moves the pointer to window coordinates."""
        self.display.xdotool("mousemove", self.origin[0] + x, self.origin[1] + y)
        time.sleep(after)

    def click(self, x, y, hold=HOLD, after=0.2):
        self.move(x, y, after=0.1)
        self.display.xdotool("mousedown", 1)
        time.sleep(hold)
        self.display.xdotool("mouseup", 1)
        time.sleep(after)

    def screenshot(self, name=None):
        """The window's area of the screen; kept under build/e2e-shots/ when named."""
        path = os.path.join(SHOT_DIR, name + ".png") if name else None
        image = self.display.screenshot()
        w, h = self.size()
        image = image.crop(self.origin[0], self.origin[1], w, h)
        if path:
            os.makedirs(SHOT_DIR, exist_ok=True)
            header = b"P6\n%d %d\n255\n" % (image.width, image.height)
            subprocess.run(["convert", "ppm:-", path], input=header + image.rgb, check=True)
        return image

    def size(self):
        _, _, w, h = self.display.geometry(self.window)
        return w, h

    def running(self):
        return self.proc is not None and self.proc.poll() is None

    def wait_exit(self, timeout=20):
        try:
            return self.proc.wait(timeout)
        except subprocess.TimeoutExpired:
            return None

    def record_frames(self, seconds):
        """The frames traced over the next `seconds`, as pairs of a time stamp
        and a busy time, both in microseconds (needs trace=True)."""
        with open(self.trace) as f:
            skip = len(f.readlines())
        time.sleep(seconds)
        with open(self.trace) as f:
            lines = f.readlines()[skip:]
        return [tuple(int(v) for v in line.split()) for line in lines if len(line.split()) == 2]

    def output(self):
        self.log.flush()
        with open(self.path("output.log")) as f:
            return f.read()

    def stop(self):
        """Ends the program if it still runs (by its pid) and removes the copy."""
        if self.proc is not None and self.proc.poll() is None:
            self.proc.terminate()
            try:
                self.proc.wait(5)
            except subprocess.TimeoutExpired:
                self.proc.kill()
                self.proc.wait()
        if self.proc is not None:
            self.log.close()
        shutil.rmtree(self.dir, ignore_errors=True)


class GameTestCase(unittest.TestCase):
    """A test with one game, with the default settings, on a display of its own."""

    def setUp(self):
        self.display = VirtualDisplay()
        self.game = Game(self.display, settings=DEFAULT_SETTINGS)

    def tearDown(self):
        self.game.stop()
        self.display.stop()


def dismiss_message(display, timeout=10):
    """Clicks OK on the message window that Allegro's allegro_message opens
    (xmessage). Answers whether there was one."""
    deadline = time.time() + timeout
    while time.time() < deadline:
        ids = display.windows("^xmessage$")
        if ids:
            x, y, w, h = display.geometry(ids[0])
            display.xdotool("mousemove", x + 16, y + h - 14)
            time.sleep(0.1)
            display.xdotool("click", 1)
            return True
        time.sleep(0.1)
    return False


_KEYSYMS = {" ": "space", ",": "comma", ".": "period", "%": "percent", "-": "minus", "_": "underscore",
            ":": "colon", "/": "slash", "!": "exclam", "'": "apostrophe"}
