"""What the benchmarks of the real program share: a new game started as a
player starts one, and the frame trace summed up as the busy time of a frame
against the 22.2 ms that a frame has at 45 a second.

The frames are measured twice in a run: first while the console still shows
the messages of the load (or of the joins), whose text costs the software
renderer a draw for every letter, and then once those lines have left it,
the frame a player lives with for the rest of a game; the target holds
for that one."""
import os
import statistics
import sys
import time

FRAME_MS = 1000.0 / 45.0
# A console line stays for 13 changes of the clock's second.
CONSOLE_LINE_SECONDS = 14.0
# The first frames after a click or a join still carry its work.
EARLY_SKIP = 0.5


class Phase:
    """The frames of a stretch of time and the processor time that the
    program, all its threads, spent in it."""

    def __init__(self, frames, cpu_seconds):
        self.frames, self.cpu_seconds = frames, cpu_seconds

    def cpu_ms_per_frame(self):
        return self.cpu_seconds * 1000.0 / max(1, len(self.frames))


def cpu_seconds(pid):
    """User and system time of a process so far, all its threads."""
    with open("/proc/%d/stat" % pid) as f:
        fields = f.read().rsplit(")", 1)[1].split()
    return (int(fields[11]) + int(fields[12])) / os.sysconf("SC_CLK_TCK")


def record_phase(game, seconds):
    start = cpu_seconds(game.proc.pid)
    frames = game.record_frames(seconds)
    return Phase(frames, cpu_seconds(game.proc.pid) - start)


def record_phases(game, seconds, since):
    """The frames while the console shows the lines written at `since` (a
    time.time()), from now until just before they go, and then `seconds` of
    frames once they have gone."""
    gone = since + CONSOLE_LINE_SECONDS
    time.sleep(EARLY_SKIP)
    early = record_phase(game, max(0.0, gone - time.time() - EARLY_SKIP))
    time.sleep(max(0.0, gone - time.time()))
    return early, record_phase(game, seconds)


def busy_ms(frames):
    """Median and 95th percentile busy time in ms of traced frames (time
    stamp, busy time, wait for packets, in microseconds), and the median of
    the busy time without the wait; ends the run without enough frames to
    tell."""
    if len(frames) < 2:
        sys.exit("no frames were traced")
    busy = sorted(b for _, b, _ in frames)
    own = statistics.median(b - w for _, b, w in frames)
    return statistics.median(busy) / 1000.0, busy[int(len(busy) * 0.95) - 1] / 1000.0, own / 1000.0


def print_phases(runs, target_percent):
    """Prints each run's two phases and the median over the runs, `runs`
    being (early, late) pairs of phases. The processor time counts the
    drawing threads of the software renderer too, so it can pass the busy
    time. The busy time counts a server's wait for packets, which its poll
    spends every frame that none come; where there is one, the busy time
    without it follows."""
    for name, index in (("with the console's messages on the screen", 0), ("after they have gone", 1)):
        figures = [busy_ms(run[index].frames) for run in runs]
        cpu = [run[index].cpu_ms_per_frame() for run in runs]
        print("%s: busy time per frame, median of each run %s, 95th percentile %s; processor time per frame %s" % (
            name, ", ".join("%.2f ms" % m for m, _, _ in figures), ", ".join("%.2f ms" % p for _, p, _ in figures),
            ", ".join("%.2f ms" % c for c in cpu)))
        median = statistics.median(m for m, _, _ in figures)
        print("  median %.2f ms, %.1f %% of the %.1f ms frame%s" % (
            median, median / FRAME_MS * 100, FRAME_MS, " (target under %d %%)" % target_percent if index else ""))
        own = [o for m, _, o in figures]
        if any(o != m for m, _, o in figures):
            print("  without the wait for packets: median of each run %s; median %.2f ms, %.1f %% of the frame" % (
                ", ".join("%.2f ms" % o for o in own), statistics.median(own), statistics.median(own) / FRAME_MS * 100))


def pick_new_game(game, settle=1.0):
    """Waits for the menu of a started game and picks New Game, which dresses
    the first body in the first entry of every catalogue."""
    game.wait_drawn()
    game.key("Return")
    time.sleep(settle)


def start_new_game(game, settle=1.0):
    """Launches the game and picks New Game from its menu."""
    game.start()
    pick_new_game(game, settle)
