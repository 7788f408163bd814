// The shipped catalogues loaded by LoadGame: every entry the files count,
// whole, with its models compiled and its thumbnail in the bar, and every
// anchor of a body within the body's box and on its side of it.
#include <gtest/gtest.h>
#include <unistd.h>
#include "app/config.h"
#include "app/game.h"

namespace {

bool Ready(const ModelClass &m) { return m.Loaded && m.ListsValid && m.ListCount() > 0; }

}  // namespace

TEST(ContentCatalogue, ShippedCataloguesLoadWholeWithAnchorsOnTheirBodies) {
  char oldCwd[4096];
  ASSERT_NE(getcwd(oldCwd, sizeof oldCwd), nullptr);
  ASSERT_EQ(chdir(TK_SOURCE_DIR), 0);
  SoundOn = false;
  ASSERT_TRUE(LoadGame(Game)) << Game.LoadError;
  EXPECT_EQ(Game.LoadError, "");
  // Each catalogue: its file's count, its size, its bar's rows ("none" on
  // top of the parts) and its entries whose models or thumbnails fall short.
  std::vector<std::string> faults;
  auto check = [&](const char *file, size_t size, int bar, auto &entries, auto ready) {
    set_config_file(file);
    if (get_config_int("info", "count", 0) != (int)size || Game.Bar(bar).Rows.size() != size + (bar > 0))
      faults.push_back(file);
    for (const auto &e : entries)
      if (!ready(e) || !e.Thumbnail.HasBitmap || e.Thumbnail.Width != 128 || e.Thumbnail.Height != (bar ? 96 : 128))
        faults.push_back(e.Name);
  };
  auto one = [](const auto &e) { return Ready(e.Model); };
  auto two = [](const PairPartEntry &e) { return Ready(e.LeftModel) && Ready(e.RightModel); };
  check("data/characters.ini", Game.Characters.size(), 0, Game.Characters, one);
  check("data/eyes.ini", Game.Eyes.size(), 1, Game.Eyes, two);
  check("data/ears.ini", Game.Ears.size(), 2, Game.Ears, two);
  check("data/noses.ini", Game.Noses.size(), 3, Game.Noses, one);
  check("data/mouths.ini", Game.Mouths.size(), 4, Game.Mouths, one);
  check("data/eyebrows.ini", Game.Eyebrows.size(), 5, Game.Eyebrows, two);
  check("data/moustaches.ini", Game.Moustaches.size(), 6, Game.Moustaches, one);
  check("data/feet.ini", Game.Feet.size(), 7, Game.Feet, two);
  check("data/hats.ini", Game.Hats.size(), 8, Game.Hats, one);

  // Anchors are written to a hundredth, so one on a face of the box may
  // stand half a hundredth outside it. Within the box each kind has its
  // side: the face in front (-Z), the character's left at +X, the hat in the
  // top quarter and the feet in the bottom quarter.
  const char *const names[12] = {"LeftEye", "RightEye", "LeftEar", "RightEar", "Nose", "Mouth",
                                 "LeftEyebrow", "RightEyebrow", "Moustache", "LeftFoot", "RightFoot", "Hat"};
  const int side[12] = {1, -1, 1, -1, 0, 0, 1, -1, 0, 1, -1, 0};  // the sign of X, 0 for the middle
  const char *const face = "110011111000";
  for (const CharacterEntry &b : Game.Characters) {
    const float *lo = b.Model.BoundsMin, *hi = b.Model.BoundsMax, quarter = b.Model.Size[1] / 4;
    for (int a = 0; a < 12; a++) {
      const float *p = b.LeftEye + 3 * a;
      bool inside = true;
      for (int c = 0; c < 3; c++) inside = inside && p[c] >= lo[c] - 0.005f && p[c] <= hi[c] + 0.005f;
      bool height = a == 11 ? p[1] >= hi[1] - quarter : a < 9 || p[1] <= lo[1] + quarter;
      if (!inside || side[a] * p[0] < 0 || (side[a] && !p[0]) || (face[a] == '1' && p[2] >= 0) || !height)
        faults.push_back(b.Name + " " + names[a]);
    }
  }
  EXPECT_EQ(faults, std::vector<std::string>());
  UnloadGame(Game);
  ASSERT_EQ(chdir(oldCwd), 0);
}
