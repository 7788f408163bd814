// The shipped data is what the generator makes, byte for byte.
#include <gtest/gtest.h>
#include <filesystem>
#include <fstream>
#include <map>

namespace fs = std::filesystem;

// The readme and every file under data/ with a hash of its bytes; the
// thumbnails, rendered after the generator has run, by name only.
std::map<std::string, size_t> Content(const fs::path &root) {
  std::map<std::string, size_t> files{{"Tumblekin.txt", 0}};
  for (const auto &e : fs::recursive_directory_iterator(root / "data"))
    if (e.is_regular_file()) files[fs::relative(e.path(), root)] = 0;
  for (auto &[name, hash] : files) {
    std::ifstream in(root / name, std::ios::binary);
    if (name.find("_thumb.tga") == std::string::npos) hash = std::hash<std::string>()({std::istreambuf_iterator<char>(in), {}});
  }
  return files;
}

TEST(ContentData, GeneratorRebuildsTheShippedData) {
  char base[] = "/tmp/tumblekin-content-XXXXXX";
  const fs::path out = mkdtemp(base);
  ASSERT_EQ(std::system((TK_MAKE_CONTENT " '" + out.string() + "'").c_str()), 0);
  EXPECT_EQ(Content(out), Content(TK_SOURCE_DIR));
  fs::remove_all(out);
}
