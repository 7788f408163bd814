"""Frame benchmark: single-player mode with the most complex body (the one
with the largest model file) fully dressed in the first entry of every
catalogue, as a new game starts. Prints the busy time per frame from the
frame trace (TUMBLEKIN_FRAME_TRACE), while the load's messages are on the
console and after they have gone, for each run and the median of the runs.
Usage: python3 bench/frame_bench.py [SECONDS] [RUNS]"""
import configparser
import os
import sys
import time

HERE = os.path.dirname(os.path.abspath(__file__))
sys.path.insert(0, os.path.join(HERE, "..", "tests", "e2e"))
os.environ.setdefault("TK_BUILD_DIR", os.path.join(HERE, "..", "build"))
import tk  # noqa: E402
import gamebench  # noqa: E402


def most_complex_body():
    """Row of the body whose model file is largest, and the number of bodies."""
    ini = configparser.ConfigParser(strict=False, interpolation=None)
    ini.read(os.path.join(tk.GAME_DIR, "data", "characters.ini"))
    count = int(ini.get("info", "count", fallback="0"))
    best, best_size, found = 0, -1, 0
    for i in range(count):
        section = "character%d" % i
        if not ini.has_section(section):
            break
        found += 1
        path = os.path.join(tk.GAME_DIR, "data", "characters", ini.get(section, "model", fallback=""))
        size = os.path.getsize(path) if os.path.isfile(path) else -1
        if size > best_size:
            best, best_size = i, size
    return best, best_size, found


def run(display, seconds, row, bodies):
    game = tk.Game(display, settings=tk.DEFAULT_SETTINGS, trace=True)
    try:
        launched = time.time()
        gamebench.start_new_game(game)
        # Scroll the body bar with its Down button at the foot, one row a
        # press as far as it goes, then pick the row where it now stands. An
        # 800 by 600 window shows three body rows.
        steps = min(row, max(0, bodies - 3))
        for _ in range(steps):
            game.click(65, 580)
        game.click(65, 160 + 130 * (row - steps))
        game.move(700, 500)
        return gamebench.record_phases(game, seconds, launched)
    finally:
        game.stop()


seconds = float(sys.argv[1]) if len(sys.argv) > 1 else 10.0
runs = int(sys.argv[2]) if len(sys.argv) > 2 else 3
row, size, bodies = most_complex_body()
with tk.VirtualDisplay() as display:
    phases = [run(display, seconds, row, bodies) for _ in range(runs)]

print("body row %d (model file %d bytes), fully dressed, %d runs" % (row, size, runs))
gamebench.print_phases(phases, 20)
