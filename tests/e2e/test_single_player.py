"""A single-player game of the real program: dressing up with the toolbar and
the picker bars, the view keys, a reload, and back through the menu."""
import time
import unittest

import tk
from tk import SKY


def button_x(index):
    """Toolbar buttons stand 36 apart from x = 2."""
    return 2 + 36 * index + 16


TOOLBAR_Y = 36
ROW_X = 65
BODY_ROW_1 = 290  # rows are 128 high for bodies and 96 for parts, below the Up button
PART_ROW_0 = 140
PART_ROW_1 = 240


def middle(shot):
    """Where the character stands."""
    return shot.crop(250, 120, 300, 360)


def motion(game, seconds=0.5):
    """How much the middle changes by itself over a while (idle motion,
    animations, eyes, or the spin)."""
    before = middle(game.screenshot())
    time.sleep(seconds)
    return middle(game.screenshot()).changed(before, 60)


class SinglePlayerTest(tk.GameTestCase):
    def changes_the_middle(self, act, what, by=200):
        """Does `act` and waits until the middle changes by far more than it does by itself."""
        game = self.game
        noise = motion(game)
        before = middle(game.screenshot())
        act()
        game.move(700, 500)
        return game.wait_screen(lambda s: middle(s).changed(before, 60) > noise + by, what=what)

    def test_dress_turn_spin_reload_and_leave(self):
        game = self.game.start()
        game.key("Return")  # "New Game"
        shot = game.wait_screen(lambda s: s.count(SKY) > 100000, what="the game screen")
        game.move(700, 500)
        self.assertGreater(middle(shot).width * middle(shot).height - middle(shot).count(SKY, 2), 2000)

        def pick(button, row):
            game.click(button_x(button), TOOLBAR_Y)
            game.click(ROW_X, row)
        self.changes_the_middle(lambda: pick(1, PART_ROW_0), "the eyes to go")
        self.changes_the_middle(lambda: pick(1, PART_ROW_1), "the eyes to come back")
        self.changes_the_middle(lambda: pick(0, BODY_ROW_1), "the second body")
        game.screenshot("single-1-second-body")

        # Left turns the view; R brings it back, about as it was. A new body
        # has just reset the view, so it faces the camera now.
        facing = middle(game.screenshot())

        def turn_and_reset(key, what):
            turned = self.changes_the_middle(lambda: game.key("Left", hold=1.0), "the view to turn", by=1000)
            game.key(key)
            far = middle(turned).changed(facing, 60)
            game.wait_screen(lambda s: middle(s).changed(facing, 60) < far // 2, what=what)
        turn_and_reset("r", "R to reset the view")

        # A starts the spin, which goes on by itself; A again stops it.
        idle = motion(game)
        game.key("a", hold=0.4)
        spinning = motion(game)
        game.key("a", hold=0.4)
        stopped = motion(game)
        print("half a second: %d pixels changed idle, %d spinning, %d stopped" % (idle, spinning, stopped))
        self.assertGreater(spinning, idle + 1000)
        self.assertLess(stopped, spinning // 3)

        # F5 reloads the catalogues and resets the view as it goes on.
        game.key("r")
        turn_and_reset("F5", "F5 to reload")
        game.screenshot("single-2-reloaded")

        game.key("Escape")  # back to the menu, whose backdrop has no sky
        game.wait_screen(lambda s: s.count(SKY) == 0, what="the menu")
        game.key("Up")
        game.key("Return")  # "Exit"
        self.assertEqual(game.wait_exit(), 0)


if __name__ == "__main__":
    unittest.main(verbosity=2)
