// LoadGame and UnloadGame on small catalogues written by the test into a
// temporary game directory: entries that stop a catalogue, defaults of the
// keys, failures that end the load, and reloads that leave nothing behind.
#include <gtest/gtest.h>
#include <allegro.h>
#include <GL/gl.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>
#include <fstream>
#include <string>
#include "app/config.h"
#include "app/game.h"
#include "character/catalogue.h"
#include "rvk/console.h"
#include "rvk/texture.h"
#include "tools/ms3dwriter/ms3dwriter.h"

namespace {

void WriteText(const std::string &path, const std::string &text) {
  std::ofstream out(path);
  out << text;
}

void WriteTga(const std::string &path, int r, int g, int b) {
  BITMAP *bmp = create_bitmap_ex(32, 16, 16);
  clear_to_color(bmp, makecol32(r, g, b));
  save_bitmap(path.c_str(), bmp, nullptr);
  destroy_bitmap(bmp);
}

// One triangle: the smallest model the loader accepts.
void WriteModel(const std::string &path) {
  MS3DWriter w;
  w.Vertices.resize(3);
  w.Vertices[1].Position[0] = 10;
  w.Vertices[2].Position[1] = 10;
  w.Triangles.resize(1);
  w.Triangles[0].VertexIndices[0] = 0;
  w.Triangles[0].VertexIndices[1] = 1;
  w.Triangles[0].VertexIndices[2] = 2;
  w.Groups.resize(1);
  w.Groups[0].TriangleIndices = {0};
  ASSERT_TRUE(w.Save(path.c_str()));
}

bool ConsoleHas(const std::string &text) {
  for (const ConsoleLineClass &line : ConsoleLines)
    if (line.Text == text) return true;
  return false;
}

const char *const DIRS[9] = {"characters", "eyes", "ears", "noses", "mouths", "eyebrows", "moustaches", "feet", "hats"};
const char *const SECTIONS[9] = {"character", "eyes", "ears", "nose", "mouth", "eyebrows", "moustache", "feet", "hat"};
bool IsPair(int i) { return i == 1 || i == 2 || i == 5 || i == 7; }

// A game directory in which every catalogue holds one good entry; each test
// rewrites what it needs.
class CatalogueTest : public testing::Test {
protected:
  void SetUp() override {
    char base[] = "/tmp/tumblekin-catalogue-XXXXXX";
    ASSERT_NE(mkdtemp(base), nullptr);
    dir = base;
    ASSERT_NE(getcwd(oldCwd, sizeof oldCwd), nullptr);
    ASSERT_EQ(chdir(dir.c_str()), 0);
    mkdir("data", 0755);
    WriteTga("data/menuback.tga", 10, 20, 30);
    WriteTga("data/none.tga", 200, 0, 0);
    WriteTga("data/connecting.tga", 0, 200, 0);
    for (int i = 0; i < 9; i++) {
      std::string d = std::string("data/") + DIRS[i];
      mkdir(d.c_str(), 0755);
      WriteModel(d + "/a.ms3d");
      WriteTga(d + "/a.tga", 0, 0, 200);
      WriteCatalogue(i, 1, Entry(i, 0, "a.ms3d", "a.tga", "first"));
    }
    SoundOn = false;
    ConsoleLines.clear();
    Game.LoadError.clear();
  }
  void TearDown() override {
    UnloadGame(Game);
    ASSERT_EQ(chdir(oldCwd), 0);
    std::string cmd = "rm -rf '" + dir + "'";
    ASSERT_EQ(system(cmd.c_str()), 0);
  }
  static std::string Entry(int cat, int n, const char *model, const char *thumb, const char *name) {
    std::string s = "[" + std::string(SECTIONS[cat]) + std::to_string(n) + "]\n";
    if (model) s += IsPair(cat) ? std::string("LeftModel = ") + model + "\nRightModel = " + model + "\n"
                                : std::string("model = ") + model + "\n";
    if (thumb) s += std::string("thumb = ") + thumb + "\n";
    if (name) s += std::string("name = ") + name + "\n";
    return s;
  }
  void WriteCatalogue(int cat, int count, const std::string &entries) {
    WriteText(std::string("data/") + DIRS[cat] + ".ini",
              "[info]\ncount = " + std::to_string(count) + "\n" + entries);
  }
  std::string dir;
  char oldCwd[4096];
};

TEST_F(CatalogueTest, AFailingEntryStopsItsCatalogueOnly) {
  // eyes1 lacks LeftModel: the path is the directory alone.
  WriteCatalogue(1, 3, Entry(1, 0, "a.ms3d", "a.tga", "e0") + "[eyes1]\nRightModel = a.ms3d\n" +
                           Entry(1, 2, "a.ms3d", "a.tga", "e2"));
  ASSERT_TRUE(LoadGame(Game));
  EXPECT_EQ(Game.Eyes.size(), 1u);
  EXPECT_EQ(Game.Eyes[0].Name, "e0");
  EXPECT_EQ(Game.LoadError, "Unable to load model from data/eyes/");
  EXPECT_TRUE(ConsoleHas("Loaded 1 eyes"));
  EXPECT_TRUE(ConsoleHas("Loaded 1 ears"));
  EXPECT_TRUE(ConsoleHas("Loaded 1 hats"));
  EXPECT_EQ(Game.EyesBar.Rows.size(), 2u);  // "No eyes" and e0
  EXPECT_EQ(Game.Ears.size(), 1u);
  EXPECT_EQ(Game.Hats.size(), 1u);
}

TEST_F(CatalogueTest, KeysDefaultsAndCounts) {
  // A body without name, camera Z or anchors; a scale and a target.
  WriteCatalogue(0, 1, "[character0]\nmodel = a.ms3d\nthumb = a.tga\nscale = 2.5\nTargetY = 40\nHatY = 75.5\n"
                       "LeftFootX = -3\n");
  // A negative count: the loop ends at the first section missing its model.
  WriteCatalogue(2, -1, Entry(2, 0, "a.ms3d", "a.tga", "ear0") + Entry(2, 1, "a.ms3d", "gone.tga", "ear1"));
  // A count smaller than the sections: the rest is ignored.
  WriteCatalogue(3, 1, Entry(3, 0, "a.ms3d", "a.tga", nullptr) + Entry(3, 1, "a.ms3d", "a.tga", "n1"));
  // A failing right model: nothing of that entry stays.
  WriteCatalogue(5, 2, Entry(5, 0, "a.ms3d", "a.tga", "b0") +
                           "[eyebrows1]\nLeftModel = a.ms3d\nRightModel = missing.ms3d\nname = b1\n");
  WriteCatalogue(8, 1, "[hat0]\nmodel = a.ms3d\nthumb = a.tga\nbackfaces = 2\nOffsetX = 1.5\nOffsetZ = -2\n");
  ASSERT_TRUE(LoadGame(Game));

  ASSERT_EQ(Game.Characters.size(), 1u);
  const CharacterEntry &body = Game.Characters[0];
  EXPECT_EQ(body.Name, "(no name)");
  EXPECT_FLOAT_EQ(body.Scale, 2.5f);
  EXPECT_FLOAT_EQ(body.CameraPos[0], 0.0f);
  EXPECT_FLOAT_EQ(body.CameraPos[2], -500.0f);
  EXPECT_FLOAT_EQ(body.TargetPos[1], 40.0f);
  EXPECT_FLOAT_EQ(body.Hat[1], 75.5f);
  EXPECT_FLOAT_EQ(body.LeftFoot[0], -3.0f);
  EXPECT_TRUE(body.Model.Loaded);
  EXPECT_TRUE(body.Thumbnail.HasBitmap);
  EXPECT_EQ(Game.CharacterBar.Rows.size(), 1u);  // no "none" row for bodies

  ASSERT_EQ(Game.Ears.size(), 2u);
  EXPECT_TRUE(ConsoleHas("Loaded 2 ears"));
  // ear1's thumbnail is missing: the entry keeps its model and the default
  // icon, and the bar has no row for it.
  EXPECT_TRUE(Game.Ears[1].LeftModel.Loaded);
  EXPECT_EQ(Game.Ears[1].Thumbnail.TextureName, RVK_GetDefaultIcon().TextureName);
  EXPECT_EQ(Game.EarsBar.Rows.size(), 2u);

  ASSERT_EQ(Game.Noses.size(), 1u);
  EXPECT_EQ(Game.Noses[0].Name, "");

  ASSERT_EQ(Game.Eyebrows.size(), 1u);
  EXPECT_EQ(Game.Eyebrows[0].Name, "b0");
  EXPECT_EQ(Game.LoadError, "Unable to load model from data/eyebrows/missing.ms3d");

  ASSERT_EQ(Game.Hats.size(), 1u);
  EXPECT_TRUE(Game.Hats[0].BackFaces);
  EXPECT_FLOAT_EQ(Game.Hats[0].Offset[0], 1.5f);
  EXPECT_FLOAT_EQ(Game.Hats[0].Offset[1], 0.0f);
  EXPECT_FLOAT_EQ(Game.Hats[0].Offset[2], -2.0f);

  // Bars: below the toolbar, down to the bottom, in their colours.
  EXPECT_EQ(Game.CharacterBar.BackgroundColour, makecol(151, 151, 151));
  EXPECT_EQ(Game.HatBar.BackgroundColour, makecol(51, 127, 178));
}

TEST_F(CatalogueTest, FailuresThatEndTheLoad) {
  // The first body fails: no game.
  WriteCatalogue(0, 2, "[character0]\nthumb = a.tga\n" + Entry(0, 1, "a.ms3d", "a.tga", "c1"));
  EXPECT_FALSE(LoadGame(Game));
  EXPECT_EQ(Game.LoadError, "No model specified for character0");
  EXPECT_TRUE(Game.Characters.empty());

  WriteCatalogue(0, 1, Entry(0, 0, "nothere.ms3d", "a.tga", "c0"));
  EXPECT_FALSE(LoadGame(Game));
  EXPECT_EQ(Game.LoadError, "Unable to load model from data/characters/nothere.ms3d");

  // A later catalogue that is empty: the text, and nothing stays loaded.
  WriteCatalogue(0, 1, Entry(0, 0, "a.ms3d", "a.tga", "c0"));
  WriteCatalogue(3, 0, "");
  EXPECT_FALSE(LoadGame(Game));
  EXPECT_EQ(Game.LoadError, "No noses found in noses.ini");
  EXPECT_TRUE(Game.Characters.empty());
  EXPECT_TRUE(Game.Eyes.empty());
  EXPECT_TRUE(Game.CharacterBar.Rows.empty());
  EXPECT_FALSE(Game.MenuBackTexture.Loaded);

  // A missing file reads as a count of 0.
  WriteCatalogue(3, 1, Entry(3, 0, "a.ms3d", "a.tga", "n0"));
  unlink("data/hats.ini");
  EXPECT_FALSE(LoadGame(Game));
  EXPECT_EQ(Game.LoadError, "No hats found in hats.ini");

  WriteCatalogue(8, 1, Entry(8, 0, "a.ms3d", "a.tga", "h0"));
  unlink("data/connecting.tga");
  EXPECT_FALSE(LoadGame(Game));
  EXPECT_EQ(Game.LoadError, "Unable to load bitmap from data/connecting.tga");
  EXPECT_FALSE(Game.MenuBackTexture.Loaded);
  EXPECT_FALSE(Game.NoneTexture.Loaded);

  unlink("data/menuback.tga");
  EXPECT_FALSE(LoadGame(Game));
  EXPECT_EQ(Game.LoadError, "Unable to load bitmap from data/menuback.tga");
}

TEST_F(CatalogueTest, ReloadLeavesTheSameCataloguesAndBars) {
  WriteCatalogue(1, 2, Entry(1, 0, "a.ms3d", "a.tga", "e0") + Entry(1, 1, "a.ms3d", "missing.tga", "e1"));
  ASSERT_TRUE(LoadGame(Game));
  const int icons = RVK_GetIconCount();
  const size_t sizes[2] = {Game.Eyes.size(), Game.EyesBar.Rows.size()};
  for (int round = 0; round < 2; round++) {
    UnloadGame(Game);
    EXPECT_TRUE(Game.Eyes.empty());
    EXPECT_TRUE(Game.EyesBar.Rows.empty());
    ASSERT_TRUE(LoadGame(Game));
    EXPECT_EQ(Game.Eyes.size(), sizes[0]);
    EXPECT_EQ(Game.EyesBar.Rows.size(), sizes[1]);
    EXPECT_EQ(Game.Eyes[1].Name, "e1");
    EXPECT_EQ(RVK_GetIconCount(), icons);
    // The failed thumbnail's stand-in is the icon table's own: a reload must
    // not have deleted it.
    EXPECT_TRUE(glIsTexture(RVK_GetDefaultIcon().TextureName));
    for (int i = 0; i < 9; i++) EXPECT_EQ(Game.Bar(i).Rows.size(), i == 0 ? 1u : 2u) << i;
  }
}

}  // namespace
