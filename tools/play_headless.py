"""Shows the game where there is no display: starts a virtual one, runs the
game on the shipped data, opens a new game, and saves screenshots of the menu
and of the game screen, whose paths it prints."""
import os
import sys
import time

HERE = os.path.dirname(os.path.abspath(__file__))
sys.path.insert(0, os.path.join(HERE, "..", "tests", "e2e"))
os.environ.setdefault("TK_BUILD_DIR", os.path.join(HERE, "..", "build"))
import tk  # noqa: E402

out_dir = os.path.abspath(os.path.join(HERE, "..", "build", "screenshots"))
os.makedirs(out_dir, exist_ok=True)
print("No display: running Tumblekin on a virtual 1024x768 display.")
with tk.VirtualDisplay() as display:
    settings = dict(tk.DEFAULT_SETTINGS, video={"width": 1024, "height": 768, "bpp": 32, "window": 1})
    game = tk.Game(display, settings=settings)
    try:
        game.start()
        # Loading the catalogues comes before the first menu frame.
        deadline = time.time() + 20
        while time.time() < deadline and display.screenshot().count((0, 0, 0)) > 0.9 * 1024 * 768:
            time.sleep(0.5)
        time.sleep(1.0)
        menu = os.path.join(out_dir, "menu.png")
        display.screenshot(menu)
        game.key("Return")  # New Game
        time.sleep(3.0)
        shot = os.path.join(out_dir, "game.png")
        display.screenshot(shot)
        game.key("Escape")
        time.sleep(0.5)
        game.key("Up")
        game.key("Return")  # Exit
        status = game.wait_exit(10)
        print("The game ran, opened a new game and left through the menu (exit status %s)." % status)
        print("Screenshot of the main menu: %s" % menu)
        print("Screenshot of the game screen: %s" % shot)
    finally:
        game.stop()
