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


def button_x(index):
    return 2 + 36 * index + 16


def scene(shot):
    """Below the toolbar and right of the picker bar: the row of characters."""
    return shot.crop(140, 130, 640, 420)


def player_list(shot):
    """The text list of players, right of the picker bar that covers its start."""
    return shot.crop(130, 56, 380, 60)


def changed(a, b, threshold=60):
    n = 0
    for i in range(0, len(a.rgb), 3):
        if max(abs(a.rgb[i + k] - b.rgb[i + k]) for k in range(3)) > threshold:
            n += 1
    return n


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
        game.key("Down")
        game.key("Return")  # "Multiplayer"
        time.sleep(0.5)
        game.key("Return")  # "Host a New Game Server"
        time.sleep(0.6)
        game.screenshot("net-01-host-dialog")
        game.key("Return")  # "Start Game"
        time.sleep(1.0)
        game.move(700, 500)

    def join(self, game, shot):
        # Nothing of this test may leave the machine.
        self.assertEqual(game.settings()["network"]["RemoteServerAddress"], "127.0.0.1")
        game.start()
        time.sleep(1.0)
        game.key("Down")
        game.key("Return")  # "Multiplayer"
        time.sleep(0.5)
        game.key("Down")
        game.key("Return")  # "Join Existing Game"
        time.sleep(0.6)
        game.screenshot(shot)
        game.key("Return")  # "Connect"
        time.sleep(2.0)
        game.move(700, 500)

    def pick(self, game, button, row_y):
        game.click(button_x(button), TOOLBAR_Y)
        game.click(ROW_X, row_y)
        game.move(700, 500)

    def test_three_players_dress_alike_everywhere(self):
        server, ivo, jun = self.games
        self.host(server)
        self.join(ivo, "net-02-join-dialog")
        self.join(jun, "net-03-join-dialog")
        time.sleep(1.0)
        before = [g.screenshot("net-%02d-before-%d" % (4 + i, i)) for i, g in enumerate(self.games)]
        for shot in before:
            self.assertGreater(shot.count(SKY), 1000, "not in the game screen")

        self.pick(server, 1, PART_ROW_Y[0])  # Hana: no eyes
        self.pick(ivo, 0, BODY_ROW_Y[1])     # Ivo: the second body
        self.pick(jun, 8, PART_ROW_Y[0])     # Jun: no hat
        time.sleep(1.5)
        after = [g.screenshot("net-%02d-after-%d" % (7 + i, i)) for i, g in enumerate(self.games)]

        # Every window changed by every pick, not only by its own.
        for i in range(3):
            change = changed(scene(before[i]), scene(after[i]))
            print("window %d changed by %d pixels" % (i, change))
            self.assertGreater(change, 500)
        # The three windows show the same row and the same list.
        scenes = [scene(s) for s in after]
        lists = [player_list(s) for s in after]
        for i in (1, 2):
            d_scene = changed(scenes[0], scenes[i])
            d_list = lists[0].differs(lists[i])
            print("window %d against the server: scene %d, list %d pixels" % (i, d_scene, d_list))
            self.assertLess(d_scene, 400)
            self.assertEqual(d_list, 0)
        self.assertGreater(lists[0].count((255, 255, 255)), 200, "no player list")

        # The server leaves: both clients show "Server shutdown" and return.
        server.key("Escape")
        time.sleep(1.5)
        for i, g in enumerate((ivo, jun)):
            box = g.screenshot("net-%02d-shutdown-%d" % (10 + i, i))
            self.assertGreater(box.count(BOX_TITLE), 100, "no message box")
            g.key("Return")
        time.sleep(1.0)
        for g in (ivo, jun):
            menu = g.screenshot()
            self.assertEqual(menu.count(SKY), 0)
            self.assertTrue(g.running())
        self.assertTrue(server.running())


if __name__ == "__main__":
    unittest.main(verbosity=2)
