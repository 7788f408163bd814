"""The front end of the real program: Esc does nothing on either menu, Help
shows the readme until Done, Back returns, Exit writes the settings."""
import time
import unittest

import tk

VIEWER = (129, 162, 255)


class MenuTest(tk.GameTestCase):
    def test_help_esc_back_and_exit(self):
        game = self.game.start()
        game.wait_drawn()
        menu = game.screenshot("menu-01-main")

        game.key("Escape")  # does nothing on the main menu
        time.sleep(0.5)
        self.assertTrue(game.running())

        game.key("Down")
        game.key("Down")
        game.key("Return")  # "Help"
        time.sleep(1.0)
        viewer = game.screenshot("menu-02-readme")
        # The viewer's backdrop fills the right margin; the readme shows as text.
        self.assertEqual(viewer.pixel(797, 300), VIEWER)
        self.assertGreater(viewer.count(VIEWER), 800 * 600 // 20)
        self.assertLess(viewer.count(VIEWER), 800 * 600 - 1000)
        game.key("Return")  # "Done"
        time.sleep(0.8)
        back = game.screenshot("menu-03-after-readme")
        self.assertEqual(back.count(VIEWER), menu.count(VIEWER))

        game.key("Up")  # "Multiplayer"
        game.key("Return")
        time.sleep(0.6)
        multi = game.screenshot("menu-04-multiplayer")
        self.assertGreater(multi.differs(back), 100)
        game.key("Escape")  # does nothing here either
        time.sleep(0.4)
        self.assertTrue(game.running())
        game.key("Down")
        game.key("Down")
        game.key("Return")  # "Back"
        time.sleep(0.6)
        # Back on the main menu with "Multiplayer" selected; two down is "Exit".
        game.key("Down")
        game.key("Down")
        game.key("Return")
        self.assertEqual(game.wait_exit(), 0)
        self.assertEqual(len(game.settings()["network"]), 4)
        self.assertEqual(game.settings()["network"]["PlayerName"], "Tester")


if __name__ == "__main__":
    unittest.main(verbosity=2)
