"""A network game of the real program on 127.0.0.1: one game hosts, two join
through the dialogs with real X input, each dresses its character, and every
window shows the same three characters and the same player list; when the
server leaves, both clients show "Server shutdown"."""
import os
import time
import unittest

import tk

SKY = (161, 214, 255)
BOX_TITLE = (3, 3, 255)
TOOLBAR_Y = 36
ROW_X = 65
BODY_ROW_Y = [160, 290]
PART_ROW_Y = [140, 240]
PORT = 30000 + os.getpid() % 20000
# Three games share two cores here: keys are held for several slow frames.
HOLD = 0.35
DIALOG_BODY = (147, 147, 147)


def button_x(index):
    return 2 + 36 * index + 16


# The three places of the row on an 800 by 600 window, left to right.
PLACES = [(135, 170), (300, 200), (500, 250)]
# A pick moves about a thousand pixels or more between colour classes; the
# animations and the face motion move a few hundred at most.
PICK_CHANGE = 400
SAME_ROW = 200


def place(shot, k):
    x, w = PLACES[k]
    return shot.crop(x, 150, w, 230)


def colour_distance(a, b):
    """Pixels that would have to change colour to turn the colour make-up of
    one picture into the other's (64 colour classes): blind to where a
    colour stands, so an arm that swings counts for little and a part that
    comes or goes for much."""
    def histogram(image):
        h = [0] * 64
        rgb = image.rgb
        for i in range(0, len(rgb), 3):
            h[(rgb[i] >> 6) * 16 + (rgb[i + 1] >> 6) * 4 + (rgb[i + 2] >> 6)] += 1
        return h
    ha, hb = histogram(a), histogram(b)
    return sum(abs(x - y) for x, y in zip(ha, hb)) // 2


def player_list(shot):
    """The text list of players, right of the picker bar that covers its start."""
    return shot.crop(130, 56, 380, 60)


def sky(shot):
    return shot.count(SKY, tolerance=3)


def wait_for(game, condition, timeout=15):
    """Screenshots until one satisfies the condition; the last one."""
    deadline = time.time() + timeout
    shot = game.screenshot()
    while not condition(shot) and time.time() < deadline:
        time.sleep(0.3)
        shot = game.screenshot()
    return shot


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
        for g in self.games:
            g.stop()
        for d in self.displays:
            d.stop()

    def host(self, game):
        game.start()
        time.sleep(1.0)
        game.key("Down", hold=HOLD)
        game.key("Return", hold=HOLD)  # "Multiplayer"
        time.sleep(0.5)
        game.key("Return", hold=HOLD)  # "Host a New Game Server"
        wait_for(game, lambda s: s.count(DIALOG_BODY) > 100000)
        game.screenshot("net-01-host-dialog")
        game.key("Return", hold=HOLD)  # "Start Game"
        self.assertGreater(sky(wait_for(game, lambda s: sky(s) > 1000)), 1000, "the server's game didn't start")
        game.move(700, 500)

    def join(self, game, shot):
        # Nothing of this test may leave the machine.
        self.assertEqual(game.settings()["network"]["RemoteServerAddress"], "127.0.0.1")
        game.start()
        time.sleep(1.0)
        game.key("Down", hold=HOLD)
        game.key("Return", hold=HOLD)  # "Multiplayer"
        time.sleep(0.5)
        game.key("Down", hold=HOLD)
        game.key("Return", hold=HOLD)  # "Join Existing Game"
        wait_for(game, lambda s: s.count(DIALOG_BODY) > 100000)
        game.screenshot(shot)
        game.key("Return", hold=HOLD)  # "Connect"
        self.assertGreater(sky(wait_for(game, lambda s: sky(s) > 1000)), 1000, "the client didn't join")
        game.move(700, 500)

    def pick(self, game, button, row_y):
        game.click(button_x(button), TOOLBAR_Y, hold=HOLD)
        game.click(ROW_X, row_y, hold=HOLD)
        game.move(700, 500)

    def test_three_players_dress_alike_everywhere(self):
        server, ivo, jun = self.games
        self.host(server)
        self.join(ivo, "net-02-join-dialog")
        self.join(jun, "net-03-join-dialog")
        time.sleep(1.0)
        shots = [g.screenshot("net-04-before-%d" % i) for i, g in enumerate(self.games)]

        # Each pick reaches every window: Hana takes away her eyes, Ivo takes
        # the second body, Jun takes away his eyes too. A pick changes the colours
        # of its player's place in the row far more than the animations do.
        for step, (player, button, row_y) in enumerate(
                [(server, 1, PART_ROW_Y[0]), (ivo, 0, BODY_ROW_Y[1]), (jun, 1, PART_ROW_Y[0])]):
            self.pick(player, button, row_y)
            time.sleep(1.5)
            now = [g.screenshot("net-%02d-pick-%d-%d" % (5 + step, step, i)) for i, g in enumerate(self.games)]
            for i in range(3):
                change = [colour_distance(place(shots[i], k), place(now[i], k)) for k in range(3)]
                print("pick %d, window %d: places changed by %s" % (step, i, change))
                self.assertGreater(change[step], PICK_CHANGE)
            shots = now

        # The three windows show the same row and the same list.
        lists = [player_list(s) for s in shots]
        for i in (1, 2):
            apart = [colour_distance(place(shots[0], k), place(shots[i], k)) for k in range(3)]
            d_list = lists[0].differs(lists[i])
            print("window %d against the server: places %s, list %d pixels" % (i, apart, d_list))
            self.assertLess(max(apart), SAME_ROW)
            self.assertEqual(d_list, 0)
        # The picker bar covers all but the ends of the lines, "(ID 0)" and the like.
        self.assertGreater(lists[0].count((255, 255, 255)), 10, "no player list")

        # The server leaves: both clients show "Server shutdown" and return.
        server.key("Escape", hold=HOLD)
        time.sleep(1.5)
        for i, g in enumerate((ivo, jun)):
            box = g.screenshot("net-%02d-shutdown-%d" % (10 + i, i))
            self.assertGreater(box.count(BOX_TITLE), 100, "no message box")
            g.key("Return", hold=HOLD)
        for i, g in enumerate((ivo, jun)):
            start = time.time()
            # The menu's backdrop has a sky of its own, near the game's colour
            # but never on it.
            menu = wait_for(g, lambda s: s.count(SKY) == 0, timeout=10)
            print("client %d back in the menu after %.1f s" % (i, time.time() - start))
            g.screenshot("net-%02d-menu-%d" % (12 + i, i))
            self.assertEqual(menu.count(SKY), 0)
            self.assertTrue(g.running())
        self.assertTrue(server.running())


if __name__ == "__main__":
    unittest.main(verbosity=2)
