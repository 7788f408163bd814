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
#include <tuple>
#include "app/config.h"
#include "app/game.h"
#include "character/catalogue.h"
#include "rvk/console.h"
#include "rvk/texture.h"
#include "tools/ms3dwriter/ms3dwriter.h"

namespace {

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
  for (int k = 0; k < 3; k++) w.Triangles[0].VertexIndices[k] = (uint16_t)k;
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
    s += IsPair(cat) ? std::string("LeftModel = ") + model + "\nRightModel = " + model + "\n"
                     : std::string("model = ") + model + "\n";
    s += std::string("thumb = ") + thumb + "\n";
    if (name) s += std::string("name = ") + name + "\n";
    return s;
  }
  static void WriteCatalogue(int cat, int count, const std::string &entries) {
    std::ofstream(std::string("data/") + DIRS[cat] + ".ini")
        << "[info]\ncount = " << count << "\n" << entries;
  }
  std::string dir;
  char oldCwd[4096];
};

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
  const CharacterEntry &b = Game.Characters[0];
  EXPECT_EQ(std::make_tuple(b.Name, b.Scale, b.CameraPos[0], b.CameraPos[2], b.TargetPos[1], b.Hat[1], b.LeftFoot[0]),
            std::make_tuple(std::string("(no name)"), 2.5f, 0.0f, -500.0f, 40.0f, 75.5f, -3.0f));
  EXPECT_TRUE(b.Model.Loaded);
  EXPECT_TRUE(b.Thumbnail.HasBitmap);
  EXPECT_EQ(Game.CharacterBar.Rows.size(), 1u);  // no "none" row for bodies

  // ear1's thumbnail is missing: the entry keeps its model and the default
  // icon, and the bar has no row for it.
  ASSERT_EQ(Game.Ears.size(), 2u);
  EXPECT_TRUE(ConsoleHas("Loaded 2 ears"));
  EXPECT_TRUE(Game.Ears[1].LeftModel.Loaded);
  EXPECT_EQ(Game.Ears[1].Thumbnail.TextureName, RVK_GetDefaultIcon().TextureName);
  EXPECT_EQ(Game.EarsBar.Rows.size(), 2u);

  ASSERT_EQ(Game.Noses.size(), 1u);
  EXPECT_EQ(Game.Noses[0].Name, "");
  ASSERT_EQ(Game.Eyebrows.size(), 1u);
  EXPECT_EQ(Game.Eyebrows[0].Name, "b0");
  EXPECT_EQ(Game.LoadError, "Unable to load model from data/eyebrows/missing.ms3d");
  ASSERT_EQ(Game.Hats.size(), 1u);
  const HatEntry &h = Game.Hats[0];
  EXPECT_EQ(std::make_tuple(h.BackFaces, h.Offset[0], h.Offset[1], h.Offset[2]),
            std::make_tuple(true, 1.5f, 0.0f, -2.0f));
  EXPECT_EQ(Game.CharacterBar.BackgroundColour, makecol(151, 151, 151));
  EXPECT_EQ(Game.HatBar.BackgroundColour, makecol(51, 127, 178));
}

TEST_F(CatalogueTest, FailuresThatEndTheLoadLeaveNothingLoaded) {
  // Each row rewrites one catalogue and/or removes one file; the catalogue
  // is mended behind it, the files stay removed.
  struct Row {
    int Cat, Count;
    std::string Entries;
    const char *Remove, *Error;
  } rows[] = {
      {0, 2, "[character0]\nthumb = a.tga\n" + Entry(0, 1, "a.ms3d", "a.tga", "c1"), "",
       "No model specified for character0"},
      {0, 1, Entry(0, 0, "nothere.ms3d", "a.tga", "c0"), "", "Unable to load model from data/characters/nothere.ms3d"},
      {3, 0, "", "", "No noses found in noses.ini"},
      {8, 1, "", "data/hats.ini", "No hats found in hats.ini"},  // a missing file reads as a count of 0
      {-1, 0, "", "data/connecting.tga", "Unable to load bitmap from data/connecting.tga"},
      {-1, 0, "", "data/menuback.tga", "Unable to load bitmap from data/menuback.tga"},
  };
  for (const Row &row : rows) {
    if (row.Cat >= 0) WriteCatalogue(row.Cat, row.Count, row.Entries);
    if (row.Remove[0]) unlink(row.Remove);
    EXPECT_FALSE(LoadGame(Game)) << row.Error;
    EXPECT_EQ(Game.LoadError, row.Error);
    EXPECT_TRUE(Game.Characters.empty() && Game.Eyes.empty() && Game.Noses.empty()) << row.Error;
    for (int i = 0; i < 9; i++) EXPECT_TRUE(Game.Bar(i).Rows.empty()) << row.Error << " bar " << i;
    EXPECT_FALSE(Game.MenuBackTexture.Loaded || Game.NoneTexture.Loaded || Game.ConnectingTexture.Loaded) << row.Error;
    if (row.Cat >= 0) WriteCatalogue(row.Cat, 1, Entry(row.Cat, 0, "a.ms3d", "a.tga", "first"));
  }
}

TEST_F(CatalogueTest, FailingEntryStopsItsCatalogueAndReloadsLeaveTheSame) {
  // eyes1 lacks LeftModel (the path is the directory alone) after eyes0,
  // whose thumbnail is missing; eyes2 is never read.
  WriteCatalogue(1, 3, Entry(1, 0, "a.ms3d", "missing.tga", "e0") + "[eyes1]\nRightModel = a.ms3d\n" +
                           Entry(1, 2, "a.ms3d", "a.tga", "e2"));
  ASSERT_TRUE(LoadGame(Game));
  EXPECT_EQ(Game.LoadError, "Unable to load model from data/eyes/");
  for (const char *line : {"Loaded 1 eyes", "Loaded 1 ears", "Loaded 1 hats"}) EXPECT_TRUE(ConsoleHas(line)) << line;
  const int icons = RVK_GetIconCount();
  for (int round = 0; round < 3; round++) {
    if (round > 0) {
      UnloadGame(Game);
      EXPECT_TRUE(Game.Eyes.empty());
      EXPECT_TRUE(Game.EyesBar.Rows.empty());
      ASSERT_TRUE(LoadGame(Game));
    }
    ASSERT_EQ(Game.Eyes.size(), 1u);
    EXPECT_EQ(Game.Eyes[0].Name, "e0");
    EXPECT_EQ(Game.Ears.size(), 1u);
    EXPECT_EQ(RVK_GetIconCount(), icons);
    // The failed thumbnail's stand-in is the icon table's own: a reload must
    // not have deleted it.
    EXPECT_TRUE(glIsTexture(RVK_GetDefaultIcon().TextureName));
    // "No eyes" alone on the eyes bar; the others have "none" and one entry.
    for (int i = 0; i < 9; i++) EXPECT_EQ(Game.Bar(i).Rows.size(), i < 2 ? 1u : 2u) << i;
  }
}

}  // namespace
