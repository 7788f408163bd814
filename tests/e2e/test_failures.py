"""The failure paths of the real program: damaged datafiles, a catalogue that
can't be loaded, a port that is taken and a server that never answers."""
import os
import socket
import unittest

import tk
from tk import SKY, BOX_TITLE

# Without xmessage on the path Allegro's messages go to the program's output,
# where they can be read.
NO_XMESSAGE = {"PATH": "/nonexistent"}


def title(shot):
    """The menu's title at the left of its top bar."""
    return shot.crop(0, 0, 200, 24)


class FailureTest(tk.GameTestCase):
    def cut_to_half(self, name):
        with open(self.game.path(name), "rb") as f:
            data = f.read()
        self.game.write(name, data[:len(data) // 2])

    def test_damaged_datafiles_end_the_program_with_their_message(self):
        settings = self.game.read("Tumblekin.ini")
        for name, message, status in [("Tumblekin.dat", "Unable to load Tumblekin.dat", 1),
                                      ("RVK.dat", "Unable to read standard font from datafile", 0)]:
            self.cut_to_half(name)
            self.game.start(wait=False, env=NO_XMESSAGE)
            self.assertEqual(self.game.wait_exit(), status, name)
            self.assertIn(message, self.game.output())
            self.assertEqual(self.game.read("Tumblekin.ini"), settings)
            with open(os.path.join(tk.GAME_DIR, name), "rb") as f:
                self.game.write(name, f.read())

    def test_a_catalogue_without_entries_is_told_before_the_end(self):
        game = self.game
        os.unlink(game.path("data"))
        os.mkdir(game.path("data"))
        for name in os.listdir(os.path.join(tk.GAME_DIR, "data")):
            if name != "hats.ini":
                os.symlink(os.path.abspath(os.path.join(tk.GAME_DIR, "data", name)), game.path("data/" + name))
        game.write("data/hats.ini", "[info]\ncount = 0\n")
        game.start(wait=False)
        game.wait_window()
        game.wait_screen(lambda s: s.count(BOX_TITLE) > 100, what="the message box")
        game.screenshot("failure-no-hats")
        game.key("Return")
        self.assertEqual(game.wait_exit(), 0)
        self.assertIn("PlayerName = Tester", game.read("Tumblekin.ini"))

    def test_a_taken_port_and_a_silent_server_leave_the_multiplayer_menu(self):
        taken = socket.socket(socket.AF_INET, socket.SOCK_DGRAM)
        taken.bind(("127.0.0.1", 0))
        silent = socket.socket(socket.AF_INET, socket.SOCK_DGRAM)
        silent.bind(("127.0.0.1", 0))
        port, silent_port = taken.getsockname()[1], silent.getsockname()[1]
        settings = {s: dict(k) for s, k in tk.DEFAULT_SETTINGS.items()}
        settings["network"].update({"LocalServerPort": port, "RemoteServerPort": silent_port})
        game = self.game
        game.write("Tumblekin.ini", tk.settings_text(settings))
        game.start()
        main = game.screenshot()
        game.key("Down")
        game.key("Return")  # "Multiplayer"
        menu = game.wait_screen(lambda s: title(s).changed(title(main)) > 50, what="the multiplayer menu")
        game.key("Return")  # "Host a New Game Server"
        game.key("Return")  # "Start Game": the host can't be made
        game.wait_screen(lambda s: s.count(BOX_TITLE) > 100, what="the message box")
        game.screenshot("failure-port-taken")
        game.key("Return")
        game.wait_screen(lambda s: title(s).changed(title(menu)) == 0, what="the multiplayer menu again")
        game.key("Down")
        game.key("Return")  # "Join Existing Game"
        game.key("Return")  # "Connect": nothing answers; the connecting screen turns until Esc
        connecting = game.wait_screen(lambda s: title(s).changed(title(menu)) > 50, what="the connecting screen")
        game.screenshot("failure-connecting")
        self.assertEqual(connecting.count(SKY), 0)
        game.key("Escape")
        game.wait_screen(lambda s: title(s).changed(title(menu)) == 0, what="the multiplayer menu after Esc")
        game.key("Down")
        game.key("Return")  # "Back", to "Multiplayer" on the main menu
        game.key("Down")
        game.key("Down")
        game.key("Return")  # "Exit"
        self.assertEqual(game.wait_exit(), 0)
        taken.close()
        silent.close()


if __name__ == "__main__":
    unittest.main(verbosity=2)
