"""A network game of the real program on 127.0.0.1: one game hosts, two join
through the dialogs with real X input, each dresses its character, and every
window shows the same three characters and the same player list; when the
server leaves, both clients show "Server shutdown" and return to the menu."""
import os
import unittest

import tk
from tk import SKY, BOX_TITLE

PORT = 30000 + os.getpid() % 20000
# Three games share two cores: keys are held for several slow frames.
HOLD = 0.35
DIALOG_BODY = (147, 147, 147)
TOOLBAR_Y = 36
ROW_X = 65
# The three places of the row on an 800 by 600 window, left to right.
PLACES = [(135, 170), (300, 200), (500, 250)]
# A pick moves a thousand pixels or more between colour classes; the
# animations and the face motion move a few hundred at most.
PICK_CHANGE = 400
SAME_ROW = 200


def place(shot, k):
    x, w = PLACES[k]
    return shot.crop(x, 150, w, 230)


def colour_distance(a, b):
    """Pixels that would have to change colour class (64 classes) to turn the
    colour make-up of one picture into the other's: blind to where a colour
    stands, so a swinging arm counts for little and a part that comes or goes
    for much."""
    def histogram(image):
        h = [0] * 64
        rgb = image.rgb
        for i in range(0, len(rgb), 3):
            h[(rgb[i] >> 6) * 16 + (rgb[i + 1] >> 6) * 4 + (rgb[i + 2] >> 6)] += 1
        return h
    return sum(abs(x - y) for x, y in zip(histogram(a), histogram(b))) // 2


def player_list(shot):
    """The text list of players, right of the picker bar that covers its start."""
    return shot.crop(130, 56, 380, 60)


def third_line(shot):
    """The list's third line: its lines are 16 high from y = 80, and Jun's name
    is the third."""
    return shot.crop(128, 112, 272, 16)


def settings(name):
    values = {s: dict(k) for s, k in tk.DEFAULT_SETTINGS.items()}
    values["network"].update({"PlayerName": name, "LocalServerPort": PORT, "RemoteServerPort": PORT})
    return values


class NetworkGameTest(unittest.TestCase):
    def setUp(self):
        # A display of its own for each game: its own keyboard focus and screen.
        self.displays = [tk.VirtualDisplay() for _ in range(3)]
        self.games = [tk.Game(d, settings=settings(n)) for d, n in zip(self.displays, ["Hana", "Ivo", "Jun"])]

    def tearDown(self):
        for g in self.games + self.displays:
            g.stop()

    def enter_game(self, game, entry):
        """Multiplayer, then the entry of that menu; the dialog's first button; the game screen."""
        game.start()
        for key in ["Down", "Return"] + ["Down"] * entry + ["Return"]:
            game.key(key, hold=HOLD)
        game.wait_screen(lambda s: s.count(DIALOG_BODY) > 100000, what="the dialog")
        game.key("Return", hold=HOLD)
        game.wait_screen(lambda s: s.count(SKY, 3) > 1000, 30, "the game screen")
        game.move(700, 500)

    def test_three_players_dress_alike_everywhere(self):
        server, ivo, jun = self.games
        self.assertIn("RemoteServerAddress = 127.0.0.1", ivo.read("Tumblekin.ini"))
        self.enter_game(server, 0)  # "Host a New Game Server"
        self.enter_game(ivo, 1)  # "Join Existing Game"
        self.enter_game(jun, 1)
        shots = [g.wait_screen(lambda s: third_line(s).count((255, 255, 255), 60) > 5, what="Jun's line in the list")
                 for g in self.games]

        # Each pick reaches every window: Hana takes away her eyes, Ivo takes
        # the second body, Jun takes away his eyes too.
        for step, (player, button, row_y) in enumerate([(server, 1, 140), (ivo, 0, 290), (jun, 1, 140)]):
            player.click(2 + 36 * button + 16, TOOLBAR_Y, hold=HOLD)
            player.click(ROW_X, row_y, hold=HOLD)
            player.move(700, 500)
            now = [g.wait_screen(lambda s: colour_distance(place(shots[i], step), place(s, step)) > PICK_CHANGE,
                                 what="pick %d in window %d" % (step, i)) for i, g in enumerate(self.games)]
            for i in range(3):
                now[i].save(os.path.join(tk.SHOT_DIR, "net-pick-%d-%d.png" % (step, i)))
            shots = now

        # The three windows show the same row and the same list.
        for i in (1, 2):
            apart = [colour_distance(place(shots[0], k), place(shots[i], k)) for k in range(3)]
            self.assertLess(max(apart), SAME_ROW, "window %d: %s" % (i, apart))
            self.assertEqual(player_list(shots[0]).changed(player_list(shots[i])), 0)
        self.assertGreater(player_list(shots[0]).count((255, 255, 255)), 10, "no player list")

        # The server leaves: both clients show "Server shutdown", then the menu.
        server.key("Escape", hold=HOLD)
        for g in (ivo, jun):
            g.wait_screen(lambda s: s.count(BOX_TITLE) > 100, what="the message box")
            g.key("Return", hold=HOLD)
            g.wait_screen(lambda s: s.count(SKY) == 0, what="the menu")
            self.assertTrue(g.running())
        self.assertTrue(server.running())


if __name__ == "__main__":
    unittest.main(verbosity=2)
