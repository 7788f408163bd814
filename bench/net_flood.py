"""Flood benchmark: the game hosts a network game on a virtual display while
one client (net_bench --flood) sends part reports as fast as ENet carries
them. Prints the host's frames per second and its longest frame, from the
frame trace, before and during the flood (target: at least 40 a second).
Usage: python3 bench/net_flood.py [SECONDS]"""
import os
import subprocess
import sys
import time

HERE = os.path.dirname(os.path.abspath(__file__))
sys.path.insert(0, os.path.join(HERE, "..", "tests", "e2e"))
os.environ.setdefault("TK_BUILD_DIR", os.path.join(HERE, "..", "build"))
import tk  # noqa: E402

SKY = (161, 214, 255)


def report(what, frames):
    span = (frames[-1][0] - frames[0][0]) / 1e6
    longest = max(b[0] - a[0] for a, b in zip(frames, frames[1:])) / 1000.0
    fps = (len(frames) - 1) / span
    print("%-14s %6.2f frames a second, longest frame %7.1f ms (%s)"
          % (what, fps, longest, "at least 40" if fps >= 40 else "UNDER 40"))
    return fps


seconds = float(sys.argv[1]) if len(sys.argv) > 1 else 10.0
port = 30000 + os.getpid() % 20000
settings = {s: dict(k) for s, k in tk.DEFAULT_SETTINGS.items()}
settings["network"]["LocalServerPort"] = port
with tk.VirtualDisplay() as display:
    game = tk.Game(display, settings=settings, trace=True)
    try:
        game.start()
        game.wait_drawn()
        game.key("Down")
        game.key("Return")  # Multiplayer
        time.sleep(0.5)
        game.key("Return")  # Host a New Game Server
        time.sleep(1.0)
        game.key("Return")  # Start Game
        deadline = time.time() + 20
        while game.screenshot().count(SKY, tolerance=3) < 1000 and time.time() < deadline:
            time.sleep(0.3)
        game.move(700, 500)
        calm = game.record_frames(min(seconds, 5.0))
        flood = subprocess.Popen([os.path.join(tk.BUILD_DIR, "bench", "net_bench"), "--flood", str(port),
                                  str(seconds + 2)])
        time.sleep(1.0)
        flooded = game.record_frames(seconds)
        flood.wait()
    finally:
        game.stop()

if len(calm) < 2 or len(flooded) < 2:
    sys.exit("no frames were traced")
report("before:", calm)
sys.exit(0 if report("one flooding:", flooded) >= 40 else 1)
