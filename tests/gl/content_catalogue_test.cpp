// The shipped catalogues (the data checker sees their files whole): every
// anchor of a body within the body's box and on its side of it.
#include <gtest/gtest.h>
#include <unistd.h>
#include "app/game.h"

TEST(ContentCatalogue, AnchorsSitOnTheirBodies) {
  ASSERT_EQ(chdir(TK_SOURCE_DIR), 0);
  ASSERT_TRUE(LoadGame(Game)) << Game.LoadError;
  // Anchors are written to a hundredth, so one on a face of the box may
  // stand half a hundredth outside it. Each kind has its side: the face in
  // front (-Z), the character's left at +X, the hat in the top quarter and
  // the feet in the bottom quarter.
  const char *const names[12] = {"LeftEye", "RightEye", "LeftEar", "RightEar", "Nose", "Mouth",
                                 "LeftEyebrow", "RightEyebrow", "Moustache", "LeftFoot", "RightFoot", "Hat"};
  const int side[12] = {1, -1, 1, -1, 0, 0, 1, -1, 0, 1, -1, 0};
  std::vector<std::string> faults;
  for (const CharacterEntry &b : Game.Characters) {
    const float *lo = b.Model.BoundsMin, *hi = b.Model.BoundsMax, quarter = b.Model.Size[1] / 4;
    const float *anchors[12] = {b.LeftEye, b.RightEye, b.LeftEar, b.RightEar, b.Nose, b.Mouth,
                                b.LeftEyebrow, b.RightEyebrow, b.Moustache, b.LeftFoot, b.RightFoot, b.Hat};
    for (int a = 0; a < 12; a++) {
      const float *p = anchors[a];
      bool inside = (side[a] ? side[a] * p[0] > 0 : true) && (a == 2 || a == 3 || a > 8 || p[2] < 0) &&
                    (a == 11 ? p[1] >= hi[1] - quarter : a < 9 || p[1] <= lo[1] + quarter);
      for (int c = 0; c < 3; c++) inside = inside && p[c] >= lo[c] - 0.005f && p[c] <= hi[c] + 0.005f;
      if (!inside) faults.push_back(b.Name + " " + names[a]);
    }
  }
  EXPECT_EQ(faults, std::vector<std::string>());
  UnloadGame(Game);
}
