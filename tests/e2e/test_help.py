"""The front end of the real program: the readme until Done, the multiplayer
menu and Back, Esc doing nothing on either menu, and Exit."""
import unittest

import tk

VIEWER = (129, 162, 255)
LIST_FILL = (219, 219, 219)


def title(shot):
    """The menu's title at the left of its top bar."""
    return shot.crop(0, 0, 200, 24)


class HelpTest(tk.GameTestCase):
    def test_readme_menus_and_exit(self):
        game = self.game.start()
        menu = game.screenshot()
        game.key("Escape")  # nothing happens on the main menu
        game.key("Down")
        game.key("Down")
        game.key("Return")  # "Help"
        # The viewer's backdrop fills its margins and the readme's text stands on it.
        viewer = game.wait_screen(lambda s: s.pixel(797, 300) == VIEWER, what="the readme")
        game.screenshot("help-1-readme")
        self.assertGreater(viewer.count(LIST_FILL), 800 * 600 // 2)
        self.assertGreater(viewer.crop(5, 60, 790, 500).count((0, 0, 0)), 2000)
        game.key("Return")  # "Done"
        game.wait_screen(lambda s: s.pixel(797, 300) != VIEWER, what="the main menu again")
        game.key("Up")
        game.key("Return")  # "Multiplayer"
        game.wait_screen(lambda s: title(s).changed(title(menu)) > 50, what="the multiplayer menu")
        game.key("Escape")  # nothing here either
        game.key("Down")
        game.key("Down")
        game.key("Return")  # "Back": the main menu, with "Multiplayer" chosen
        game.wait_screen(lambda s: title(s).changed(title(menu)) == 0, what="the main menu after Back")
        game.key("Down")
        game.key("Down")
        game.key("Return")  # "Exit"
        self.assertEqual(game.wait_exit(), 0)
        self.assertIn("PlayerName = Tester", game.read("Tumblekin.ini"))


if __name__ == "__main__":
    unittest.main(verbosity=2)
