// The shipped data is what the generator makes, byte for byte.
#include <gtest/gtest.h>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>

namespace fs = std::filesystem;

static std::string Read(const fs::path &path) {
  std::ifstream in(path, std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

// The readme and every file under data/ with a hash of its bytes; the
// thumbnails, rendered after the generator has run, by name only.
static std::map<std::string, size_t> Content(const fs::path &root) {
  std::map<std::string, size_t> files = {{"Tumblekin.txt", std::hash<std::string>()(Read(root / "Tumblekin.txt"))}};
  for (const auto &e : fs::recursive_directory_iterator(root / "data")) {
    std::string name = fs::relative(e.path(), root).string();
    if (e.is_regular_file()) files[name] = name.find("_thumb.tga") == std::string::npos ? std::hash<std::string>()(Read(e.path())) : 0;
  }
  return files;
}

TEST(ContentData, GeneratorRebuildsTheShippedData) {
  char base[] = "/tmp/tumblekin-content-XXXXXX";
  const fs::path out = mkdtemp(base);
  ASSERT_EQ(std::system((std::string(TK_MAKE_CONTENT) + " '" + out.string() + "'").c_str()), 0);
  EXPECT_EQ(Content(out), Content(TK_SOURCE_DIR));
  fs::remove_all(out);
}
