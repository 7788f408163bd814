// The two dialogs of the multiplayer menu, driven with real X input on the
// test's own display: the window and fields where they belong, typed text
// kept by the first button, settings left alone by Cancel.
#include <gtest/gtest.h>
#include <cstdio>
#include <fstream>
#include "app/config.h"
#include "net/host.h"
#include "rvk/button.h"
#include "rvk/core.h"
#include "rvk/textfield.h"
#include "support/gl_env.h"
#include "gl/rvk_xinput.h"

class DialogTest : public testing::Test {
protected:
  std::string Shot = "/tmp/tk-net-dialog-" + std::to_string(getpid()) + ".ppm";
  int Wx = (TK_SCREEN_W - 600) / 2, Wy = (TK_SCREEN_H - 400) / 2;
  int H = 0;
  ButtonClass First, Cancel;

  void SetUp() override {
    H = text_height(RVK_FontStandard);
    Config.RemoteServerAddress = "127.0.0.1";
    ASSERT_FALSE(TkWindowId().empty());
  }
  void TearDown() override { std::remove(Shot.c_str()); }
  // Where the dialog's buttons stand: sized to their captions, the second
  // with its far corner at (wx + 590, wy + 390), the first 10 to its left.
  void PlaceButtons(const char *firstCaption, const char *firstIcon) {
    RVK_CreateButton(First, firstCaption, firstIcon, 0, 0, KEY_ENTER);
    First.SetSize(-1, -1);
    RVK_CreateButton(Cancel, "Cancel", "cancel", 0, 0, KEY_ESC);
    Cancel.SetSize(-1, -1);
    Cancel.X = Wx + 590 - Cancel.Width;
    Cancel.Y = Wy + 390 - Cancel.Height;
    First.X = Cancel.X - 10 - First.Width;
    First.Y = Cancel.Y;
  }
  // Types, takes a picture of the window, then clicks at (x, y).
  void TypeShootAndClick(const std::string &text, int x, int y) {
    std::string script = "sleep 0.6; ";
    if (!text.empty()) script += "xdotool type --delay 150 '" + text + "'; sleep 0.3; ";
    script += "import -window root -depth 8 ppm:" + Shot + "; ";
    script += TkMoveCommand(x, y) + "; sleep 0.2; xdotool mousedown 1; sleep 0.15; xdotool mouseup 1";
    TkLater(script);
  }
  // A pixel of the picture, in window coordinates: the window's place on
  // the screen comes first.
  TkPixel ShotPixel(int x, int y) {
    FILE *p = popen(("xdotool getwindowgeometry --shell " + TkWindowId()).c_str(), "r");
    char line[64];
    int ox = 0, oy = 0;
    while (p && std::fgets(line, sizeof(line), p)) {
      std::sscanf(line, "X=%d", &ox);
      std::sscanf(line, "Y=%d", &oy);
    }
    if (p) pclose(p);
    x += ox;
    y += oy;
    std::ifstream in(Shot, std::ios::binary);
    std::string magic;
    int w = 0, h = 0, max = 0;
    char rgb[3] = {0, 0, 0};
    if (in >> magic >> w >> h >> max && x < w && y < h) {
      in.seekg((std::streamoff)in.tellg() + 1 + (std::streamoff)(y * w + x) * 3);
      in.read(rgb, 3);
    }
    return TkPixel{(uint8_t)rgb[0], (uint8_t)rgb[1], (uint8_t)rgb[2]};
  }
};

const TkPixel TITLE = {3, 3, 255}, BODY = {147, 147, 147}, FIELD = {255, 255, 255};

TEST_F(DialogTest, HostDialogKeepsTypedTextOnStart) {
  Config.PlayerName = "Hana";
  Config.LocalServerPort = "4000";
  PlaceButtons("Start Game", "server");
  TypeShootAndClick("Mo", First.X + First.Width / 2, First.Y + First.Height / 2);
  EXPECT_TRUE(HostGameDialog());
  EXPECT_EQ(Config.PlayerName, "HanaMo");
  EXPECT_EQ(Config.LocalServerPort, "4000");
  // The title strip across the top of the 600 by 400 window, the body below;
  // two fields, 3 text lines apart from 3 lines down: white inside.
  int name = Wx + 10 + RVK_TextWidthForChars(RVK_FontStandard, 16) - 4;
  int port = Wx + 10 + RVK_TextWidthForChars(RVK_FontStandard, 10) - 4;
  const struct {
    int X, Y;
    TkPixel Colour;
  } pixels[] = {{Wx + 300, Wy + 2, TITLE},       {Wx + 300, Wy + H + 10, BODY},     {Wx + 5, Wy + 300, BODY},
                {name, Wy + 3 * H + H / 2, FIELD}, {port, Wy + 6 * H + H / 2, FIELD}, {port, Wy + 9 * H + H / 2, BODY}};
  for (const auto &p : pixels) EXPECT_EQ(ShotPixel(p.X, p.Y), p.Colour) << p.X << "," << p.Y;
}

TEST_F(DialogTest, ConnectDialogCancelLeavesSettings) {
  Config.PlayerName = "Ivo";
  Config.RemoteServerPort = "4001";
  PlaceButtons("Connect", "connect");
  TypeShootAndClick("xyz", Cancel.X + Cancel.Width / 2, Cancel.Y + Cancel.Height / 2);
  EXPECT_FALSE(ConnectGameDialog());
  EXPECT_EQ(Config.PlayerName, "Ivo");
  EXPECT_EQ(Config.RemoteServerAddress, "127.0.0.1");
  EXPECT_EQ(Config.RemoteServerPort, "4001");
  // Three fields: the third stands 9 text lines down.
  int width = RVK_TextWidthForChars(RVK_FontStandard, 10);
  EXPECT_EQ(ShotPixel(Wx + 10 + width - 4, Wy + 9 * H + H / 2), FIELD);

  // The first button of this dialog takes the texts as they stand.
  TypeShootAndClick("", First.X + First.Width / 2, First.Y + First.Height / 2);
  EXPECT_TRUE(ConnectGameDialog());
  EXPECT_EQ(Config.PlayerName, "Ivo");
  EXPECT_EQ(Config.RemoteServerPort, "4001");
}
