// The data checker passes the shipped data and lists every problem of a
// broken copy of it, each on its own line, with a failing exit status.
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>
#include <cstdio>
#include <cstdlib>
#include <string>

static std::string Check(const std::string &dir, int &status) {
  std::string out;
  FILE *p = popen((std::string(TK_BUILD_DIR "/tools/checkdata/checkdata ") + dir).c_str(), "r");
  for (int c; (c = fgetc(p)) != EOF;) out += (char)c;
  status = WEXITSTATUS(pclose(p));
  return out;
}

static void Write(const std::string &path, const std::string &text) {
  std::remove(path.c_str());
  FILE *f = std::fopen(path.c_str(), "wb");
  std::fwrite(text.data(), 1, text.size(), f);
  std::fclose(f);
}

TEST(CheckData, ShippedDataPassesAndABrokenCopyListsEveryProblem) {
  int status = -1;
  EXPECT_EQ(Check(TK_GAME_DIR, status), "No problems found.\n");
  EXPECT_EQ(status, 0);

  // Links to the shipped files, some replaced.
  const std::string dir = testing::TempDir() + "checkdata" + std::to_string(getpid()), data = dir + "/data/";
  ASSERT_EQ(std::system(("rm -rf " + dir + "; mkdir " + dir + " && cp -rs " TK_SOURCE_DIR "/data " + dir).c_str()), 0);
  Write(data + "eyes.ini",
        "[info]\ncount = 3\ncolour = blue\n[eyes0]\nLeftModel = googly_left.ms3d\nRightModel = googly_right.ms3d\n"
        "thumb = gone.tga\n[eyes1]\nLefModel = googly_left.ms3d\nRightModel = broken.ms3d\nthumb = googly_thumb.tga\n"
        "[eyes7]\n");
  Write(data + "eyes/broken.ms3d", "MS3D000000\4\0\0\0\xff\xff");
  std::remove((data + "eyes/eye_googly.tga").c_str());
  Write(data + "noses.ini", "[info]\n\xc0\x80");
  Write(data + "hats.ini", "[info]\ncount=1\n[hat0]\nmodel = tophat.ms3d\nthumb = tophat_thumb.tga\nOffsetX = abc\n");
  Write(data + "none.tga", std::string("\0\0\2", 3));
  Write(data + "sounds/feet.wav", "RIFF");
  std::remove((data + "mouths.ini").c_str());
  EXPECT_EQ(Check(dir, status),
            "data/none.tga: cut short\n"
            "data/eyes.ini: [info] has a key the game doesn't read: colour\n"
            "data/eyes/eye_googly.tga: missing (texture of data/eyes/googly_left.ms3d)\n"
            "data/eyes/eye_googly.tga: missing (texture of data/eyes/googly_right.ms3d)\n"
            "data/eyes/gone.tga: missing (thumb of [eyes0] in data/eyes.ini)\n"
            "data/eyes.ini: [eyes1] has no LeftModel: the game stops reading here\n"
            "data/eyes/broken.ms3d: not a MilkShape 3D model that the game reads (RightModel of [eyes1] in "
            "data/eyes.ini)\n"
            "data/eyes.ini: [eyes1] has a key the game doesn't read: LefModel\n"
            "data/eyes.ini: [eyes2] is missing: the game stops reading here\n"
            "data/eyes.ini: [eyes7] is never read\n"
            "data/noses.ini: not UTF-8 text (line 2)\n"
            "data/mouths.ini: missing\n"
            "data/sounds/feet.wav: not a WAV sound: the cue stays silent\n"
            "data/hats.ini: [hat0] OffsetX is not a number: abc\n");
  EXPECT_EQ(status, 1);
  std::system(("rm -rf " + dir).c_str());
}
