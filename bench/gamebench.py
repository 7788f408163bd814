"""What the benchmarks of the real program share: a new game started as a
player starts one, and the frame trace summed up as the busy time of a frame
against the 22.2 ms that a frame has at 45 a second."""
import statistics
import sys
import time

FRAME_MS = 1000.0 / 45.0


def print_busy(frames, target_percent):
    """Prints the frame count and the median and 95th percentile busy time of
    (time stamp, busy time) pairs in microseconds; ends the run without any."""
    if len(frames) < 2:
        sys.exit("no frames were traced")
    busy = sorted(b for _, b in frames)
    p95 = busy[int(len(busy) * 0.95) - 1]
    median = statistics.median(busy) / 1000.0
    print("frames: %d" % len(frames))
    print("busy time per frame: median %.2f ms, 95th percentile %.2f ms, %.1f %% of the %.1f ms frame (target under %d %%)"
          % (median, p95 / 1000.0, median / FRAME_MS * 100, FRAME_MS, target_percent))


def start_new_game(game, settle=1.0):
    """Launches the game, waits for its menu and picks New Game, which dresses
    the first body in the first entry of every catalogue."""
    game.start()
    game.wait_drawn()
    game.key("Return")
    time.sleep(settle)
