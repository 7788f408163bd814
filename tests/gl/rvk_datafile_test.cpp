// The two datafiles as Allegro reads them: the game's font first in
// Tumblekin.dat, and the library's font and every icon in RVK.dat.
#include <allegro.h>
#include <gtest/gtest.h>
#include <string>
#include <tuple>
#include "rvk/core.h"

static void ExpectCoversPrintableAscii(FONT *font) {
  EXPECT_EQ(text_height(font), 15);
  for (int c = 32; c <= 126; c++) {
    char text[2] = {(char)c, 0};
    EXPECT_GT(text_length(font, text), 1) << "character " << c;
  }
  // Proportional: an i is narrower than an M.
  EXPECT_LT(text_length(font, "i"), text_length(font, "M"));
}

TEST(Datafiles, FontsFirstAndEveryIconByName) {
  DATAFILE *game = load_datafile("Tumblekin.dat");
  ASSERT_NE(game, nullptr);
  ASSERT_EQ(game[0].type, DAT_FONT);
  ExpectCoversPrintableAscii((FONT *)game[0].dat);
  EXPECT_EQ(game[1].type, DAT_END);
  unload_datafile(game);

  DATAFILE *data = load_datafile("RVK.dat");
  ASSERT_NE(data, nullptr);
  ASSERT_EQ(data[0].type, DAT_FONT);
  EXPECT_STREQ(get_datafile_property(&data[0], DAT_NAME), "_font_standard");
  ExpectCoversPrintableAscii((FONT *)data[0].dat);
  int count = 0;
  while (data[count].type != DAT_END) count++;
  EXPECT_EQ(count, 26);
  for (const char *name : {"up", "down", "seperator", "vert", "horiz", "move", "yes", "cancel", "server", "connect",
                           "character", "eyes", "ears", "nose", "mouth", "eyebrows", "moustache", "feet", "hat",
                           "refresh", "exit", "ngame", "multiplayer", "question", "back"}) {
    DATAFILE *object = find_datafile_object(data, name);
    ASSERT_NE(object, nullptr) << name;
    ASSERT_EQ(object->type, DAT_BITMAP) << name;
    BITMAP *b = (BITMAP *)object->dat;
    EXPECT_EQ(std::make_tuple(b->w, b->h, bitmap_color_depth(b)), std::make_tuple(32, 32, 32)) << name;
    // Some of the picture is transparent, and not nearly all of it.
    int masked = 0;
    for (int y = 0; y < 32; y++)
      for (int x = 0; x < 32; x++) masked += getpixel(b, x, y) == bitmap_mask_color(b);
    EXPECT_GT(masked, 0) << name;
    EXPECT_LT(masked, 32 * 32 - 60) << name;
  }
  unload_datafile(data);

  // One object read alone: the last icon is found by skipping all before it.
  BITMAP *back = (BITMAP *)RVK_GetDatafileObject("back");
  ASSERT_NE(back, nullptr);
  EXPECT_EQ(back->h, 32);
  destroy_bitmap(back);
  FONT *font = (FONT *)RVK_GetDatafileObject("_font_standard");
  ASSERT_NE(font, nullptr);
  EXPECT_EQ(text_height(font), 15);
  destroy_font(font);
  EXPECT_EQ(RVK_GetDatafileObject("nosuch"), nullptr);
}
