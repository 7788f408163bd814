"""Start-up benchmark of the real program, with the shipped data, on a
virtual display: the time from launch to its first menu frame (from the frame
trace) and the resident memory at the menu; then, in a new game, its growth
from the first F5 reloads to 20 reloads later; for each run and the median
of the runs.
Usage: python3 bench/startup_bench.py [RUNS]"""
import os
import statistics
import sys
import time

HERE = os.path.dirname(os.path.abspath(__file__))
sys.path.insert(0, os.path.join(HERE, "..", "tests", "e2e"))
os.environ.setdefault("TK_BUILD_DIR", os.path.join(HERE, "..", "build"))
import tk  # noqa: E402
import gamebench  # noqa: E402

# The menu is measured once it has stood for a moment, as a user sees it.
MENU_SETTLE = 1.0
RELOADS = 20
# The resident set swings by a couple of MB from one reload to the next with
# the renderer's working memory: the growth compares the median after the
# first three reloads with the median after the last three.
PLATEAU = 3
# A reload stops the game loop for as long as the catalogues take to load,
# far longer than a frame; the game runs on for a while before the memory
# is read, so a slow frame taken for the reload can't cut a reload short.
RELOAD_FRAME_US = 60000
FRAMES_AFTER_RELOAD = 30


def resident_mb(pid):
    """The resident set in MB, the median of five readings over a second: the
    renderer's working memory comes and goes with the frames, and the system
    may page out library pages that nothing touches for a while."""
    readings = []
    for _ in range(5):
        with open("/proc/%d/status" % pid) as f:
            readings += [int(line.split()[1]) / 1024.0 for line in f if line.startswith("VmRSS:")]
        time.sleep(0.2)
    return statistics.median(readings)


def reload(game):
    """Presses F5 and waits until the frame that reloaded and the frames after
    it have been traced."""
    seen = len(game.traced_frames())
    game.key("F5")
    deadline = time.time() + 60
    while time.time() < deadline:
        frames = game.traced_frames()[seen:]
        slow = [i for i, (_, busy, _) in enumerate(frames) if busy >= RELOAD_FRAME_US]
        if slow and len(frames) - slow[0] > FRAMES_AFTER_RELOAD:
            return
        time.sleep(0.05)
    sys.exit("F5 reloaded nothing")


def run(display):
    """One launch: the time to the first menu frame and the resident memory
    at the menu; then, in a new game, after each of 21 F5 reloads."""
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
        time.sleep(MENU_SETTLE)
        menu = resident_mb(game.proc.pid)
        gamebench.pick_new_game(game)
        readings = []
        for _ in range(RELOADS + 1):
            reload(game)
            readings.append(resident_mb(game.proc.pid))
        after_first = statistics.median(readings[:PLATEAU])
        after_last = statistics.median(readings[-PLATEAU:])
        return first - launched, menu, (after_last - after_first) / after_first * 100.0, after_first, after_last
    finally:
        game.stop()


runs = int(sys.argv[1]) if len(sys.argv) > 1 else 3
with tk.VirtualDisplay() as display:
    results = [run(display) for _ in range(runs)]
times, menu_mb, growth = [r[0] for r in results], [r[1] for r in results], [r[2] for r in results]

print("start-up to the first menu frame: " + ", ".join("%.3f s" % t for t in times))
print("median %.3f s (target at most 0.8 s)" % statistics.median(times))
print("resident memory at the menu: " + ", ".join("%.1f MB" % m for m in menu_mb))
print("median %.1f MB (target at most 150 MB)" % statistics.median(menu_mb))
print("resident memory after the first reloads and after %d more: " % RELOADS
      + ", ".join("%.1f -> %.1f MB (%+.2f %%)" % (r[3], r[4], r[2]) for r in results))
print("median growth %+.2f %% (target at most 1 %%)" % statistics.median(growth))
