"""Frame-rate benchmark: runs the game on a virtual display, opens a new game
and measures ten seconds of frames from the frame trace (TUMBLEKIN_FRAME_TRACE):
frames per second, and the median and 95th percentile busy time of a frame.
Usage: python3 bench/framerate.py [SECONDS]"""
import os
import statistics
import sys

HERE = os.path.dirname(os.path.abspath(__file__))
sys.path.insert(0, os.path.join(HERE, "..", "tests", "e2e"))
os.environ.setdefault("TK_BUILD_DIR", os.path.join(HERE, "..", "build"))
import tk  # noqa: E402
import gamebench  # noqa: E402

seconds = float(sys.argv[1]) if len(sys.argv) > 1 else 10.0
with tk.VirtualDisplay() as display:
    game = tk.Game(display, settings=tk.DEFAULT_SETTINGS, trace=True)
    try:
        gamebench.start_new_game(game, settle=1.5)
        frames = game.record_frames(seconds)
    finally:
        game.stop()

if len(frames) < 2:
    sys.exit("no frames were traced")
span = (frames[-1][0] - frames[0][0]) / 1e6
fps = (len(frames) - 1) / span
busy = sorted(b for _, b, _ in frames)
p95 = busy[int(len(busy) * 0.95) - 1]
print("frames: %d in %.2f s" % (len(frames), span))
print("frames per second: %.2f (target 45.0 +/- 0.5)" % fps)
print("busy time per frame: median %.2f ms, 95th percentile %.2f ms (frame 22.2 ms)"
      % (statistics.median(busy) / 1000.0, p95 / 1000.0))
