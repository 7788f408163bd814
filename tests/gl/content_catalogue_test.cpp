// The shipped catalogues loaded by LoadGame: every entry whole, with its
// models compiled and its thumbnail in the bar, and every anchor of a body
// within the body's box.
#include <gtest/gtest.h>
#include <unistd.h>
#include <string>
#include <tuple>
#include <vector>
#include "app/game.h"
#include "app/config.h"
#include "character/catalogue.h"

namespace {

// Compiled into display lists, as drawing needs.
bool Ready(const ModelClass &m) { return m.Loaded && m.ListsValid && m.ListCount() > 0; }

}  // namespace

TEST(ContentCatalogue, ShippedCataloguesLoadWholeWithAnchorsOnTheirBodies) {
  // The committed data itself, from the top of the source tree where data/
  // lies as the game expects it.
  char oldCwd[4096];
  ASSERT_NE(getcwd(oldCwd, sizeof oldCwd), nullptr);
  ASSERT_EQ(chdir(TK_SOURCE_DIR), 0);
  SoundOn = false;
  Game.LoadError.clear();
  ASSERT_TRUE(LoadGame(Game)) << Game.LoadError;
  EXPECT_EQ(Game.LoadError, "");

  EXPECT_EQ(std::make_tuple(Game.Characters.size(), Game.Eyes.size(), Game.Ears.size(), Game.Noses.size(),
                            Game.Mouths.size(), Game.Eyebrows.size(), Game.Moustaches.size(), Game.Feet.size(),
                            Game.Hats.size()),
            std::make_tuple(8u, 9u, 8u, 8u, 8u, 8u, 8u, 8u, 9u));
  // Every entry has its row; the part bars have "none" on top as well.
  std::vector<size_t> rows;
  for (int i = 0; i < 9; i++) rows.push_back(Game.Bar(i).Rows.size());
  EXPECT_EQ(rows, std::vector<size_t>({8, 10, 9, 9, 9, 9, 9, 9, 10}));

  // A thumbnail makes its row only with its picture kept, at the size the
  // bar shows: 128 by 128 for bodies, 128 by 96 for parts.
  std::vector<std::string> faults;
  auto check = [&](const std::string &name, bool models, const TextureClass &t, int height) {
    if (!models) faults.push_back(name + ": model");
    if (!(t.HasBitmap && t.Width == 128 && t.Height == height)) faults.push_back(name + ": thumbnail");
  };
  for (const CharacterEntry &e : Game.Characters) check(e.Name, Ready(e.Model), e.Thumbnail, 128);
  for (const auto *cat : {&Game.Eyes, &Game.Ears, &Game.Eyebrows, &Game.Feet})
    for (const PairPartEntry &e : *cat) check(e.Name, Ready(e.LeftModel) && Ready(e.RightModel), e.Thumbnail, 96);
  for (const auto *cat : {&Game.Noses, &Game.Mouths, &Game.Moustaches})
    for (const SinglePartEntry &e : *cat) check(e.Name, Ready(e.Model), e.Thumbnail, 96);
  for (const HatEntry &e : Game.Hats) check(e.Name, Ready(e.Model), e.Thumbnail, 96);
  EXPECT_EQ(faults, std::vector<std::string>());

  // Anchors are written to a hundredth, so one on a face of the box may
  // stand half a hundredth outside it. Within the box, each kind has its
  // side: the face in front (-Z), the character's left at +X, the hat in the
  // top quarter and the feet in the bottom quarter.
  const char *const anchorNames[12] = {"LeftEye", "RightEye", "LeftEar", "RightEar", "Nose", "Mouth",
                                       "LeftEyebrow", "RightEyebrow", "Moustache", "LeftFoot", "RightFoot", "Hat"};
  const int SIDE[12] = {1, -1, 1, -1, 0, 0, 1, -1, 0, 1, -1, 0};  // the sign of X, 0 for the middle
  const bool FACE[12] = {true, true, false, false, true, true, true, true, true, false, false, false};
  std::vector<std::string> outside;
  for (const CharacterEntry &b : Game.Characters) {
    const float *anchors[12] = {b.LeftEye, b.RightEye, b.LeftEar, b.RightEar, b.Nose, b.Mouth,
                                b.LeftEyebrow, b.RightEyebrow, b.Moustache, b.LeftFoot, b.RightFoot, b.Hat};
    const float *lo = b.Model.BoundsMin, *hi = b.Model.BoundsMax;
    const float quarter = b.Model.Size[1] / 4;
    for (int a = 0; a < 12; a++) {
      for (int c = 0; c < 3; c++) {
        if (anchors[a][c] < lo[c] - 0.005f || anchors[a][c] > hi[c] + 0.005f)
          outside.push_back(b.Name + " " + anchorNames[a] + " " + "XYZ"[c]);
      }
      const bool side = SIDE[a] == 0 || SIDE[a] * anchors[a][0] > 0;
      const bool height = a == 11 ? anchors[a][1] >= hi[1] - quarter : a >= 9 ? anchors[a][1] <= lo[1] + quarter : true;
      if ((FACE[a] && anchors[a][2] >= 0) || !side || !height)
        outside.push_back(b.Name + " " + anchorNames[a] + " side");
    }
  }
  EXPECT_EQ(outside, std::vector<std::string>());

  UnloadGame(Game);
  ASSERT_EQ(chdir(oldCwd), 0);
}
