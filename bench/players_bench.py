"""Eight-player frame benchmark: the real program hosts a game on a virtual
display, seven clients on 127.0.0.1 (build/bench/seven_clients, which speak
the wire format and draw nothing) join it, each dressed differently, and the
server's frames are measured from its frame trace (TUMBLEKIN_FRAME_TRACE):
the busy time per frame while the joins' messages are on the console and
after they have gone, as bench/frame_bench.py prints it, and the same without
the time the server's poll waited for packets that didn't come.
Usage: python3 bench/players_bench.py [SECONDS] [RUNS]"""
import os
import subprocess
import sys
import time

HERE = os.path.dirname(os.path.abspath(__file__))
sys.path.insert(0, os.path.join(HERE, "..", "tests", "e2e"))
os.environ.setdefault("TK_BUILD_DIR", os.path.join(HERE, "..", "build"))
import tk  # noqa: E402
import gamebench  # noqa: E402

SKY = (161, 214, 255)
DIALOG_BODY = (147, 147, 147)
PORT = 30000 + os.getpid() % 20000
# Time for the seven joins and their picks to reach the screen.
SETTLE = 2.0


def wait_for(game, condition, timeout=30):
    deadline = time.time() + timeout
    while time.time() < deadline:
        if condition(game.screenshot()):
            return True
        time.sleep(0.3)
    return False


def host(game):
    """Through the menus as a player would: Multiplayer, Host a New Game
    Server, Start Game."""
    game.start()
    game.wait_drawn()
    game.key("Down")
    game.key("Return")
    time.sleep(0.5)
    game.key("Return")
    if not wait_for(game, lambda s: s.count(DIALOG_BODY) > 100000):
        sys.exit("the host dialog did not open")
    game.key("Return")
    if not wait_for(game, lambda s: s.count(SKY, tolerance=3) > 1000):
        sys.exit("the server's game did not start")
    game.move(700, 500)


def run(display, seconds):
    game = tk.Game(display, settings=settings, trace=True)
    clients = None
    try:
        host(game)
        lifetime = seconds + SETTLE + gamebench.CONSOLE_LINE_SECONDS + 30
        clients = subprocess.Popen([clients_program, str(PORT), str(lifetime)], stdout=subprocess.PIPE, text=True)
        if "joined" not in clients.stdout.readline():
            sys.exit("the seven clients did not join")
        # The last messages are the picks that follow the joins.
        time.sleep(SETTLE)
        return gamebench.record_phases(game, seconds, time.time())
    finally:
        if clients is not None and clients.poll() is None:
            clients.terminate()
            clients.wait()
        game.stop()


seconds = float(sys.argv[1]) if len(sys.argv) > 1 else 10.0
runs = int(sys.argv[2]) if len(sys.argv) > 2 else 3
settings = {s: dict(k) for s, k in tk.DEFAULT_SETTINGS.items()}
settings["network"].update({"PlayerName": "Host", "LocalServerPort": PORT, "RemoteServerPort": PORT})
clients_program = os.path.join(tk.BUILD_DIR, "bench", "seven_clients")
with tk.VirtualDisplay() as display:
    phases = [run(display, seconds) for _ in range(runs)]

print("server with seven clients on 127.0.0.1, eight players dressed differently, %d runs" % runs)
gamebench.print_phases(phases, 40)
