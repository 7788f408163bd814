"""The game screen of the real program: dressing up with the toolbar and the
picker bars, the view keys, reloading, leaving; memory over many reloads."""
import time
import unittest

import tk

SKY = (161, 214, 255)
# Toolbar buttons stand 36 apart from x = 2, one text line and 8 pixels down.
TOOLBAR_Y = 36


def button_x(index):
    return 2 + 36 * index + 16


# Rows of a picker bar: the first row starts below its Up button; body rows
# are 128 high, part rows 96, each followed by a gap of 2.
BODY_ROW_Y = [160, 290]
PART_ROW_Y = [140, 240]
ROW_X = 65


def centre(shot):
    """The middle of the window, where the character stands."""
    return shot.crop(250, 120, 300, 360)


def non_sky(image):
    return image.width * image.height - image.count(SKY, tolerance=2)


def changed(a, b, threshold=60):
    """Pixels that differ strongly between two images of one size. The idle
    motion turns and lights the body slowly; a part that goes or comes, or a
    turn of the view, changes pixels by far more."""
    n = 0
    for i in range(0, len(a.rgb), 3):
        if max(abs(a.rgb[i + k] - b.rgb[i + k]) for k in range(3)) > threshold:
            n += 1
    return n


class GameScreenTest(tk.GameTestCase):
    def new_game(self):
        game = self.game.start()
        game.wait_drawn()
        game.key("Return")  # "New Game"
        time.sleep(1.0)
        game.move(700, 500)  # out of the way of toolbar and bar
        return game

    def noise(self, game):
        """How much the middle changes by itself (idle motion, animation,
        eyes) over the time a step takes."""
        a = centre(game.screenshot())
        time.sleep(0.5)
        b = centre(game.screenshot())
        return changed(a, b)

    def test_dress_up_turn_reload_and_leave(self):
        game = self.new_game()
        start = game.screenshot("game-01-start")
        self.assertGreater(non_sky(centre(start)), 2000, "no character in the middle")
        # The picker bar on the left shows the bodies.
        bar_before = start.crop(2, 100, 126, 300)
        self.assertGreater(non_sky(bar_before), 10000)

        # "Eyes" on the toolbar switches the bar.
        game.click(button_x(1), TOOLBAR_Y)
        game.move(700, 500)
        eyes_bar = game.screenshot("game-02-eyes-bar")
        self.assertGreater(eyes_bar.crop(2, 100, 126, 300).differs(bar_before), 2000)

        # Row 0 takes the eyes away: the character changes more than it does by itself.
        noise = self.noise(game)
        before = centre(game.screenshot())
        game.click(ROW_X, PART_ROW_Y[0])
        game.move(700, 500)
        after = game.screenshot("game-03-no-eyes")
        self.assertGreater(changed(centre(after), before), noise + 200)

        # Row 1 gives the first eyes back.
        game.click(ROW_X, PART_ROW_Y[1])
        game.move(700, 500)
        game.screenshot("game-04-eyes-back")

        # Another body from the body bar.
        game.click(button_x(0), TOOLBAR_Y)
        noise = self.noise(game)
        before = centre(game.screenshot())
        game.click(ROW_X, BODY_ROW_Y[1])
        game.move(700, 500)
        time.sleep(0.3)
        other = game.screenshot("game-05-second-body")
        self.assertGreater(changed(centre(other), before), noise + 200)
        game.click(ROW_X, BODY_ROW_Y[0])
        game.move(700, 500)

        # Left turns the view; R brings it back.
        time.sleep(0.3)
        reset_view = centre(game.screenshot())
        noise = self.noise(game)
        game.key("Left", hold=1.0)
        turned = game.screenshot("game-06-turned")
        self.assertGreater(changed(centre(turned), reset_view), noise + 1000)
        game.key("r")
        time.sleep(0.2)
        back = game.screenshot("game-07-reset")
        self.assertLess(changed(centre(back), reset_view), changed(centre(turned), reset_view))

        # A starts the spin, which goes on by itself; A again stops it. The
        # toggles are held long enough for a slow frame to see them.
        game.key("a", hold=0.4)
        a = centre(game.screenshot("game-08-spinning"))
        time.sleep(0.5)
        b = centre(game.screenshot())
        spinning = changed(a, b)
        self.assertGreater(spinning, noise + 1000)
        game.key("a", hold=0.4)
        game.key("r", hold=0.4)
        time.sleep(0.3)
        a = centre(game.screenshot())
        time.sleep(0.5)
        b = centre(game.screenshot())
        print("half a second: %d pixels changed spinning, %d stopped, %d idle" % (spinning, changed(a, b), noise))
        self.assertLess(changed(a, b), spinning // 3)

        # F5 reloads the data: the console reports the catalogues again.
        console_before = game.screenshot().crop(0, 330, 400, 270)
        game.key("F5")
        time.sleep(2.0)
        reloaded = game.screenshot("game-09-reloaded")
        self.assertTrue(game.running())
        self.assertGreater(non_sky(centre(reloaded)), 2000)
        self.assertGreater(reloaded.crop(0, 330, 400, 270).differs(console_before), 100)

        # Esc leaves to the menu: no sky any more.
        game.key("Escape")
        time.sleep(0.8)
        menu = game.screenshot("game-10-back-in-menu")
        self.assertEqual(menu.count(SKY), 0)
        self.assertTrue(game.running())

    def test_memory_stays_flat_over_twenty_reloads(self):
        game = self.new_game()
        # The first half minute of frames grows the process by some megabytes
        # whether or not anything is reloaded (the drawing of the bars and the
        # console settles in); the reloads are measured after that.
        for round in range(3):
            for button in range(9):
                game.click(button_x(button), TOOLBAR_Y)
                game.move(700, 500)
                time.sleep(1.0)
        # Both readings are taken once the console's lines of the last reload
        # have aged away (12 seconds), so that the screen is the same.
        game.key("F5")
        time.sleep(13.0)
        first = settled_rss_kb(game.proc.pid)
        for _ in range(20):
            game.key("F5")
            time.sleep(1.2)
        time.sleep(13.0)
        last = settled_rss_kb(game.proc.pid)
        print("RSS after the first reload %d kB, after 20 more %d kB" % (first, last))
        self.assertTrue(game.running())
        self.assertLessEqual(last, first * 1.02)


def settled_rss_kb(pid):
    """The least of a few readings over a second: the allocator's swings
    between frames are not growth."""
    readings = []
    for _ in range(8):
        readings.append(rss_kb(pid))
        time.sleep(0.25)
    return min(readings)


def rss_kb(pid):
    with open("/proc/%d/status" % pid) as f:
        for line in f:
            if line.startswith("VmRSS:"):
                return int(line.split()[1])
    raise RuntimeError("no VmRSS")


if __name__ == "__main__":
    unittest.main(verbosity=2)
