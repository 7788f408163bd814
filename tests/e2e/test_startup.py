"""Start-up, settings file and leaving: the real program on a virtual display."""
import os
import time
import unittest

import tk

SKY = (161, 214, 255)
TEN_KEYS = {
    "video": ["width", "height", "bpp", "window"],
    "sound": ["enabled", "SoundVolume"],
    "network": ["PlayerName", "LocalServerPort", "RemoteServerAddress", "RemoteServerPort"],
}


def leave_through_menu(game):
    """Up from "New Game" wraps to "Exit"; Enter chooses it."""
    game.key("Up")
    game.key("Return")


class StartupTest(unittest.TestCase):
    def setUp(self):
        self.display = tk.VirtualDisplay()
        self.games = []

    def tearDown(self):
        for game in self.games:
            game.stop()
        self.display.stop()

    def game(self, **kwargs):
        game = tk.Game(self.display, **kwargs)
        self.games.append(game)
        return game

    def test_game_screen_is_sky_blue_and_esc_leaves_to_the_menu(self):
        game = self.game(settings=tk.DEFAULT_SETTINGS).start()
        game.wait_drawn()
        menu = game.screenshot("startup-menu")
        self.assertEqual(menu.count(SKY), 0)
        game.key("Return")  # "New Game"
        time.sleep(1.0)
        shot = game.screenshot("startup-game")
        # The right-hand edge holds neither toolbar, bar, console nor character.
        for y in (150, 300, 450):
            self.assertEqual(shot.pixel(790, y), SKY, "at (790, %d)" % y)
        game.key("Escape")
        time.sleep(0.8)
        back = game.screenshot("startup-back-in-menu")
        self.assertEqual(back.pixel(790, 300), menu.pixel(790, 300))
        leave_through_menu(game)
        self.assertEqual(game.wait_exit(), 0)

    def test_a_run_leaves_a_complete_settings_file(self):
        game = self.game()
        with open(game.path("Tumblekin.ini"), "w") as f:
            f.write("[video]\nwidth = 640\nheight = 480\nwindow = 7\n\n[sound]\nenabled = 0\n\n"
                    "[network]\nRemoteServerAddress = 127.0.0.1\n")
        game.start()
        self.assertEqual(game.size(), (640, 480))
        game.wait_drawn()
        leave_through_menu(game)
        self.assertEqual(game.wait_exit(), 0)
        saved = game.settings()
        for section, keys in TEN_KEYS.items():
            self.assertEqual(sorted(saved[section]), sorted(keys), section)
        self.assertEqual(saved["video"], {"width": "640", "height": "480", "bpp": "32", "window": "1"})
        self.assertEqual(saved["sound"], {"enabled": "0", "SoundVolume": "192"})
        self.assertEqual(saved["network"], {"PlayerName": "Player", "LocalServerPort": "8030",
                                            "RemoteServerAddress": "127.0.0.1", "RemoteServerPort": "8030"})

    def test_the_later_config_option_wins_in_any_case(self):
        small = dict(tk.DEFAULT_SETTINGS, video={"width": 640, "height": 480, "bpp": 32, "window": 1})
        game = self.game(args=["-CONFIG", "first.ini", "-window", "stray", "-Config", "second.ini"])
        game.write_settings("first.ini", tk.DEFAULT_SETTINGS)
        game.write_settings("second.ini", small)
        with open(game.path("first.ini")) as f:
            first_before = f.read()
        game.start()
        self.assertEqual(game.size(), (640, 480))
        game.wait_drawn()
        leave_through_menu(game)
        self.assertEqual(game.wait_exit(), 0)
        with open(game.path("first.ini")) as f:
            self.assertEqual(f.read(), first_before)
        self.assertFalse(os.path.exists(game.path("Tumblekin.ini")))
        self.assertEqual(game.settings("second.ini")["network"]["PlayerName"], "Tester")
        self.assertEqual(len(game.settings("second.ini")["sound"]), 2)

    def test_without_the_datafile_the_program_ends_with_status_1(self):
        game = self.game(settings=tk.DEFAULT_SETTINGS, leave_out=("Tumblekin.dat",))
        with open(game.path("Tumblekin.ini")) as f:
            before = f.read()
        game.start(wait=False)
        self.assertTrue(tk.dismiss_message(self.display), "no message about the missing datafile")
        self.assertEqual(game.wait_exit(), 1)
        self.assertEqual(self.display.windows("^Tumblekin$"), [])
        with open(game.path("Tumblekin.ini")) as f:
            self.assertEqual(f.read(), before)


if __name__ == "__main__":
    unittest.main(verbosity=2)
