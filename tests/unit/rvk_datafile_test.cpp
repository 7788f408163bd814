// The check before Allegro's datafile loader.
#include <gtest/gtest.h>
#include <allegro.h>
#include "rvk/datafile.h"
#include "support/joined.h"

static std::string Problem(const std::string &bytes, size_t size) {
  return RVK_DatafileProblem((const unsigned char *)bytes.data(), size);
}

// Words to bytes: value:width big-endian, else characters, _ for a blank.
static std::string Problem(const std::string &words) {
  std::string b;
  std::istringstream in(words);
  for (std::string w; in >> w;) {
    size_t colon = w.find(':');
    if (colon == std::string::npos)
      for (char c : w) b += c == '_' ? ' ' : c;
    else
      for (int n = std::stoi(w.substr(colon + 1)); n-- > 0;) b += (char)(std::stoll(w) >> 8 * n);
  }
  return Problem(b, b.size());
}

TEST(Datafile, WhatTheLoaderMayBeGiven) {
  // One object; a font's head (format 0, one range) and a glyph 8 x 1.
  const std::string one = "slh. ALL. 1:4 ", font = "0:2 1:2 1:1 65:4 65:4 8:2 1:2 255:1";
  const char *cases[][2] = {
      {"slh. ALL. 2:4 prop NAME 1:4 f FONT 18:4 18:4 ", ""},  // + font, and a picture below
      {"slh. ALL. 0:4", ""},
      {"DATA 2:4 2:4 ab and trailing bytes", ""},
      {"slh! ALL. 0:4", "the file is packed; save it uncompressed"},
      {"slh+ ALL. 0:4", "the file is no Allegro datafile"},
      {"slh. all. 0:4", "the file is no Allegro datafile"},
      {"slh.", "the file is no Allegro datafile"},
      {"slh. ALL. 0:3", "the file ends before its object count"},
      {"slh. ALL. 2:4 DATA 0:4 0:4", "object 1 is missing: the file ends before it"},
      {"prop NAME 3:4 ab", "object 0 has a property cut short"},
      {"prop NAME", "object 0 has a property cut short"},
      {"prop -1:4 0:4 DATA 0:4 0:4", "object 0 has a property without a type"},
      {"-1:4 0:4 0:4", "object 0 has no type"},
      {"XCMP 0:4 0:4", "object 0 is of a type that is not read here"},
      {"DATA 0:4 0:3", "object 0 is cut short"},
      {"DATA 2:4 -2:4 ab", "object 0 is compressed; save the file uncompressed"},
      {"DATA 2:4 1:4 ab", "object 0 gives two different sizes"},
      {"DATA 3:4 3:4 ab", "object 0 is cut short"},
      {"FONT 4:4 4:4 8:2 1:2", "object 0 is a font in an old format"},
      {"FONT 3:4 3:4 0:2 1:2", "object 0 is a font without characters"},
      {"FONT 12:4 12:4 0:2 1:2 1:1 65:4 65:3", "object 0 is a font cut short"},
      {"FONT 15:4 15:4 0:2 1:2 1:1 65:4 65:4 8:2", "object 0 is a font cut short"},
      {"FONT 18:4 18:4 0:2 1:2 1:1 65:4 65:4 9:2 1:2 1:1", "object 0 is a font cut short"},
      {"FONT 21:4 21:4 0:2 1:2 1:1 65:4 66:4 0:2 1:2 0:2 0:2", ""},
      {"FONT 19:4 19:4 0:2 1:2 0:1 65:4 65:4 2:2 1:2 1:1 2:1", ""},
      {"FONT 18:4 18:4 0:2 1:2 0:1 65:4 65:4 2:2 1:2 1:1", "object 0 is a font cut short"},
      {"FONT 17:4 17:4 0:2 1:2 8:1 65:4 65:4 0:2 0:2", "object 0 is a font in a colour depth other than 8 bits"},
      {"FONT 17:4 17:4 0:2 1:2 1:1 66:4 65:4 0:2 0:2", "object 0 is a font with a range that ends before it starts"},
      {"FONT 30:4 30:4 0:2 2:2 255:1 65:4 65:4 0:2 0:2 0:1 66:4 66:4 0:2 0:2", "object 0 is a font that mixes monochrome and colour"},
      {"FONT 30:4 30:4 0:2 2:2 0:1 65:4 65:4 0:2 0:2 1:1 66:4 66:4 0:2 0:2", "object 0 is a font that mixes monochrome and colour"},
      {"BMP_ 5:4 5:4 24:2 1:2 1:1", "object 0 is a picture cut short"},
      {"BMP_ 9:4 9:4 12:2 1:2 1:2 1:1 2:1 3:1", "object 0 is a picture of an unknown colour depth"},
      {"BMP_ 6:4 6:4 8:2 0:2 5:2", "object 0 is a picture without pixels"},
      {"BMP_ 6:4 6:4 8:2 5:2 0:2", "object 0 is a picture without pixels"},
  };
  for (auto c : cases) {
    std::string words = c[0];
    if (words[0] != 's') words = one + words;
    if (words.back() == ' ') words += font + " BMP_ 9:4 9:4 24:2 1:2 1:2 1:1 2:1 3:1";
    EXPECT_EQ(Problem(words), c[1]) << words;
  }
  // Each depth with two pixels of its stored size, and one byte short.
  for (auto [bits, bytes] : {std::pair{8, 1}, {15, 2}, {16, 2}, {24, 3}, {32, 3}, {-32, 4}})
    for (int n : {2 * bytes, 2 * bytes - 1}) {
      std::string size = std::to_string(6 + n) + ":4 ";
      EXPECT_EQ(Problem(one + "BMP_ " + size + size + std::to_string(bits) + ":2 2:2 1:2 " + std::string(n, 'p')),
                n < 2 * bytes ? "object 0 is a picture cut short" : "")
          << bits << " " << n;
    }
}

TEST(Datafile, ShippedFilesPassWholeAndFailCutAnywhere) {
  for (const char *name : {"/Tumblekin.dat", "/RVK.dat"}) {
    std::string b = FileText(TK_GAME_DIR + std::string(name));
    ASSERT_GT(b.size(), 2000u) << name;
    EXPECT_EQ(Problem(b, b.size()), "") << name;
    for (size_t n = 0; n < b.size(); n++) ASSERT_NE(Problem(b, n), "") << name << " cut to " << n;
  }
}

TEST(Datafile, ARefusedFileIsLoggedAndNotLoaded) {
  install_allegro(SYSTEM_NONE, &errno, atexit);
  std::ofstream("cut.dat") << FileText(TK_GAME_DIR "/RVK.dat").substr(0, 40000);
  std::remove("RVK Error Log.txt");
  EXPECT_EQ(RVK_LoadDatafile("no such.dat"), nullptr);
  EXPECT_EQ(FileText("RVK Error Log.txt"), "");
  EXPECT_EQ(RVK_LoadDatafile("cut.dat"), nullptr);
  EXPECT_NE(FileText("RVK Error Log.txt").find(">The datafile \"cut.dat\" can't be read: object 13 is cut short.\n"),
            std::string::npos);
  DATAFILE *whole = RVK_LoadDatafile(TK_GAME_DIR "/RVK.dat");
  ASSERT_NE(whole, nullptr);
  EXPECT_EQ(whole[25].type, DAT_BITMAP);
  unload_datafile(whole);
  std::remove("cut.dat");
}
