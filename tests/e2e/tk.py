"""Drives the real Tumblekin program for end-to-end tests and benchmarks.

A VirtualDisplay is an Xvfb server of our own. A Game runs the built program
in a temporary copy of the game directory with a settings file we write,
sends real X input through xdotool (held long enough for a program that polls
at 45 frames a second), and waits on what its window shows.
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
HOLD = 0.25  # several frames, even slow ones, and well short of the key repeat
SKY = (161, 214, 255)
BOX_TITLE = (3, 3, 255)

# Windowed, small and silent; the server address is always loopback.
DEFAULT_SETTINGS = {
    "video": {"width": 800, "height": 600, "bpp": 32, "window": 1},
    "sound": {"enabled": 0, "SoundVolume": 192},
    "network": {"PlayerName": "Tester", "LocalServerPort": 8030, "RemoteServerAddress": "127.0.0.1",
                "RemoteServerPort": 8030},
}


class VirtualDisplay:
    """An Xvfb server on a display number it picks itself."""

    def __init__(self, width=1024, height=768):
        read_fd, write_fd = os.pipe()
        self.proc = subprocess.Popen(
            ["Xvfb", "-displayfd", str(write_fd), "-screen", "0", "%dx%dx24" % (width, height),
             "-nolisten", "tcp", "+extension", "GLX", "-noreset"],
            pass_fds=(write_fd,), stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        os.close(write_fd)
        with os.fdopen(read_fd, "rb") as f:
            number = f.readline().strip().decode()
        if not number:
            self.proc.kill()
            raise RuntimeError("Xvfb did not start")
        self.env = dict(os.environ, DISPLAY=":" + number)

    def xdotool(self, *args, check=True):
        return subprocess.run(["xdotool"] + [str(a) for a in args], env=self.env, check=check,
                              capture_output=True, text=True).stdout

    def screenshot(self, path=None):
        data = subprocess.run(["import", "-window", "root", "-depth", "8", "ppm:-"], env=self.env, check=True,
                              capture_output=True).stdout
        image = Image.from_ppm(data)
        if path:
            image.save(path)
        return image

    def stop(self):
        stop_process(self.proc)

    def __enter__(self):
        return self

    def __exit__(self, *exc):
        self.stop()


class Image:
    """RGB pixels of a screenshot."""

    def __init__(self, width, height, rgb):
        self.width, self.height, self.rgb = width, height, rgb

    @classmethod
    def from_ppm(cls, data):
        magic, width, height, maxval, rgb = data.split(maxsplit=4)
        assert magic == b"P6" and maxval == b"255"
        return cls(int(width), int(height), rgb)

    def pixel(self, x, y):
        i = (y * self.width + x) * 3
        return tuple(self.rgb[i:i + 3])

    def crop(self, x, y, w, h):
        rows = (self.rgb[((y + r) * self.width + x) * 3:((y + r) * self.width + x + w) * 3] for r in range(h))
        return Image(w, h, b"".join(rows))

    def count(self, colour, tolerance=0):
        rgb, n = self.rgb, 0
        for i in range(0, len(rgb), 3):
            if abs(rgb[i] - colour[0]) <= tolerance and abs(rgb[i + 1] - colour[1]) <= tolerance \
                    and abs(rgb[i + 2] - colour[2]) <= tolerance:
                n += 1
        return n

    def changed(self, other, threshold=0):
        """Pixels whose colour differs from the other image's by more than the threshold."""
        a, b = self.rgb, other.rgb
        return sum(1 for i in range(0, len(a), 3)
                   if max(abs(a[i] - b[i]), abs(a[i + 1] - b[i + 1]), abs(a[i + 2] - b[i + 2])) > threshold)

    def save(self, path):
        os.makedirs(os.path.dirname(path), exist_ok=True)
        header = b"P6\n%d %d\n255\n" % (self.width, self.height)
        subprocess.run(["convert", "ppm:-", path], input=header + self.rgb, check=True)


def settings_text(values):
    """An Allegro configuration file from {section: {key: value}}; whatever the
    values say, the server address is loopback."""
    values = {s: dict(k) for s, k in values.items()}
    values.setdefault("network", {})["RemoteServerAddress"] = "127.0.0.1"
    return "".join("[%s]\n%s\n" % (s, "".join("%s = %s\n" % kv for kv in k.items())) for s, k in values.items())


def stop_process(proc):
    if proc.poll() is None:
        proc.terminate()
        try:
            proc.wait(5)
        except subprocess.TimeoutExpired:
            proc.kill()
            proc.wait()


class Game:
    """The real program, run in a private copy of the game directory (the data
    directory is linked: no test changes it)."""

    def __init__(self, display, settings=None, args=(), leave_out=(), trace=False):
        self.display = display
        self.dir = tempfile.mkdtemp(prefix="tumblekin-")
        for name in os.listdir(GAME_DIR):
            src, dst = os.path.join(GAME_DIR, name), os.path.join(self.dir, name)
            if name in leave_out or name.endswith(".ini") or name.endswith(".txt") and name != "Tumblekin.txt":
                continue
            if name == "data":
                os.symlink(os.path.abspath(src), dst)
            elif not os.path.isdir(src):
                shutil.copy2(src, dst)
        if settings is not None:
            self.write("Tumblekin.ini", settings_text(settings))
        self.args = list(args)
        self.trace = self.path("frames.trace") if trace else None
        self.proc = None
        self.origin = (0, 0)

    def path(self, name):
        return os.path.join(self.dir, name)

    def write(self, name, text):
        with open(self.path(name), "w" if isinstance(text, str) else "wb") as f:
            f.write(text)

    def read(self, name):
        with open(self.path(name)) as f:
            return f.read()

    def start(self, wait=True, env=None):
        env = dict(self.display.env, **(env or {}))
        if self.trace:
            env["TUMBLEKIN_FRAME_TRACE"] = self.trace
        self.log = open(self.path("output.log"), "w")
        self.proc = subprocess.Popen([self.path("tumblekin")] + self.args, cwd=self.dir, env=env, stdout=self.log,
                                     stderr=subprocess.STDOUT)
        if wait:
            self.wait_drawn()
        return self

    def wait_drawn(self, timeout=30):
        """Waits for the window and its first drawn frame (the catalogues load
        before it; until then the window is black)."""
        self.wait_window(timeout)
        return self.wait_screen(lambda s: s.count((0, 0, 0)) < s.width * s.height // 2, timeout, "first frame")

    def wait_window(self, timeout=30):
        deadline = time.time() + timeout
        while not self.display.xdotool("search", "--onlyvisible", "--name", "^Tumblekin$", check=False).strip():
            if time.time() > deadline:
                raise TimeoutError("no Tumblekin window appeared")
            time.sleep(0.1)
        self.window = int(self.display.xdotool("search", "--onlyvisible", "--name", "^Tumblekin$").split()[0])
        geometry = dict(line.split("=") for line in self.display.xdotool(
            "getwindowgeometry", "--shell", self.window).split())
        self.origin = (int(geometry["X"]), int(geometry["Y"]))
        self.size = (int(geometry["WIDTH"]), int(geometry["HEIGHT"]))
        self.display.xdotool("windowfocus", "--sync", self.window, check=False)

    def key(self, name, hold=HOLD, after=0.1):
        self.display.xdotool("keydown", name)
        time.sleep(hold)
        self.display.xdotool("keyup", name)
        time.sleep(after)

    def move(self, x, y, after=0.1):
        """Moves the pointer to window coordinates."""
        self.display.xdotool("mousemove", self.origin[0] + x, self.origin[1] + y)
        time.sleep(after)

    def click(self, x, y, hold=HOLD, after=0.1):
        self.move(x, y)
        self.display.xdotool("mousedown", 1)
        time.sleep(hold)
        self.display.xdotool("mouseup", 1)
        time.sleep(after)

    def screenshot(self, name=None):
        """The window's part of the screen; kept under build/e2e-shots/ when named."""
        shot = self.display.screenshot().crop(self.origin[0], self.origin[1], *self.size)
        if name:
            shot.save(os.path.join(SHOT_DIR, name + ".png"))
        return shot

    def wait_screen(self, condition, timeout=20, what="the expected screen"):
        """Screenshots until one satisfies the condition, and answers it."""
        deadline = time.time() + timeout
        while True:
            shot = self.screenshot()
            if condition(shot):
                return shot
            if time.time() > deadline:
                shot.save(os.path.join(SHOT_DIR, "timeout.png"))
                raise AssertionError("waited %d s in vain for %s" % (timeout, what))
            time.sleep(0.2)

    def running(self):
        return self.proc is not None and self.proc.poll() is None

    def wait_exit(self, timeout=20):
        try:
            return self.proc.wait(timeout)
        except subprocess.TimeoutExpired:
            return None

    def traced_frames(self):
        """Every frame traced so far (needs trace=True): a time stamp, the busy
        time and the part of it spent waiting for packets, in microseconds. A
        line still being written is left out; one from a program that traces
        no waits counts none."""
        with open(self.trace) as f:
            fields = [line.split() for line in f if line.endswith("\n")]
        return [tuple(int(v) for v in (f + ["0"])[:3]) for f in fields if len(f) in (2, 3)]

    def record_frames(self, seconds):
        """The frames traced over the next `seconds`, as traced_frames gives them."""
        skip = len(self.traced_frames())
        time.sleep(seconds)
        return self.traced_frames()[skip:]

    def output(self):
        self.log.flush()
        return self.read("output.log")

    def stop(self):
        """Ends the program if it still runs and removes the copy."""
        if self.proc is not None:
            stop_process(self.proc)
            self.log.close()
        shutil.rmtree(self.dir, ignore_errors=True)


class GameTestCase(unittest.TestCase):
    """A test with one game, in the default settings, on a display of its own."""

    def setUp(self):
        self.display = VirtualDisplay()
        self.game = Game(self.display, settings=DEFAULT_SETTINGS)

    def tearDown(self):
        self.game.stop()
        self.display.stop()
