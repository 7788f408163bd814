"""Start-up benchmark of the real program: the time from launch to its first
menu frame (from the frame trace), with the shipped data, on a virtual display.
Usage: python3 bench/startup_bench.py [RUNS]"""
import os
import statistics
import sys
import time

HERE = os.path.dirname(os.path.abspath(__file__))
sys.path.insert(0, os.path.join(HERE, "..", "tests", "e2e"))
os.environ.setdefault("TK_BUILD_DIR", os.path.join(HERE, "..", "build"))
import tk  # noqa: E402

runs = int(sys.argv[1]) if len(sys.argv) > 1 else 3
times = []
with tk.VirtualDisplay() as display:
    for _ in range(runs):
        game = tk.Game(display, settings=tk.DEFAULT_SETTINGS, trace=True)
        try:
            launched = time.time()
            game.start(wait=False)
            first = None
            while time.time() - launched < 30:
                if os.path.exists(game.trace) and os.path.getsize(game.trace) > 0:
                    first = time.time()
                    break
                time.sleep(0.005)
            if first is None:
                sys.exit("no frame was traced")
            times.append(first - launched)
        finally:
            game.stop()
print("start-up to the first menu frame: " + ", ".join("%.3f s" % t for t in times))
print("median %.3f s (target under 2 s)" % statistics.median(times))
