// Backslash paths, case-insensitive lookup, safe file replacement and %NAME% expansion.
#include "design/platform.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <tuple>

namespace fs = std::filesystem;

namespace {

class TempFolder : public ::testing::Test {
 protected:
  void SetUp() override {
    root_ = fs::temp_directory_path() / ("vesk-platform-" + std::to_string(::getpid()));
    fs::remove_all(root_);
    fs::create_directories(root_ / "Sym" / "Models");
    std::ofstream(root_ / "Sym" / "Models" / "Info.xml") << "x";
    old_ = fs::current_path();
    fs::current_path(root_);
  }
  void TearDown() override {
    fs::current_path(old_);
    fs::remove_all(root_);
  }
  fs::path root_, old_;
};

TEST_F(TempFolder, BackslashesAndCaseAreResolved) {
  EXPECT_EQ(FileSystemPath("sym\\models\\info.XML"), "Sym/Models/Info.xml");
  EXPECT_EQ(FileSystemPath("Sym/Models/Info.xml"), "Sym/Models/Info.xml");
  EXPECT_TRUE(FileExists("SYM\\MODELS\\INFO.XML"));
  EXPECT_FALSE(FileExists("sym\\models"));
  EXPECT_TRUE(PathExists("sym\\models"));
  // Elements that do not exist stay as spelled.
  EXPECT_EQ(FileSystemPath("sym\\New\\deck.cir"), "Sym/New/deck.cir");
  EXPECT_EQ(FileSystemPath("genhdl\\TOP\\TOP.cir"), "genhdl/TOP/TOP.cir");
}

// Paths a deck names, from the deck's folder: "/" always, the spelling on disk where the
// file exists, absolute paths (a drive letter too) unchanged but for the separator.
TEST_F(TempFolder, RelativePathFromTheDeckFolder) {
  const std::tuple<const char*, const char*, const char*> cases[] = {
      {"sym\\models\\info.xml", "", "Sym/Models/Info.xml"},
      {"sym\\models\\info.xml", "genhdl\\TOP", "../../Sym/Models/Info.xml"},
      {"sym/NCH.mod", "genhdl/TOP", "../../Sym/NCH.mod"},
      {"sym\\NCH.mod", "out", "../Sym/NCH.mod"},
      {"sym\\NCH.mod", "Sym", "NCH.mod"},
      {"sym\\NCH.mod", "./a/../b", "../Sym/NCH.mod"},
      {"genhdl\\TOP\\TOP_sources.cir", "genhdl\\TOP", "TOP_sources.cir"},
      {"/opt/va/amp.va", "genhdl\\TOP", "/opt/va/amp.va"},
      {"C:\\va\\amp.va", "genhdl\\TOP", "C:/va/amp.va"},
      {"", "genhdl\\TOP", ""},
  };
  for (const auto& [path, folder, expected] : cases) EXPECT_EQ(RelativePath(path, folder), expected) << path;
  // A deck folder given absolute meets a path relative to the working folder.
  EXPECT_EQ(RelativePath("sym\\NCH.mod", (root_ / "genhdl").string()), "../Sym/NCH.mod");
  EXPECT_EQ(RelativePath("sym\\NCH.mod", "/"), (root_ / "Sym" / "NCH.mod").relative_path().string());
}

TEST_F(TempFolder, ReplaceFileKeepsOldTextOnFailure) {
  std::ofstream("deck.cir") << "old";
  ASSERT_TRUE(ReplaceFile("deck.cir", "new"));
  std::string text;
  ASSERT_TRUE(ReadWholeFile("deck.cir", text));
  EXPECT_EQ(text, "new");
  if (::geteuid() != 0) {  // root may write anywhere
    ::chmod(".", 0555);
    EXPECT_FALSE(ReplaceFile("deck.cir", "lost"));
    ::chmod(".", 0755);
    ASSERT_TRUE(ReadWholeFile("deck.cir", text));
    EXPECT_EQ(text, "new");
  }
  EXPECT_FALSE(ReplaceFile("no\\such\\folder\\deck.cir", "x"));
}

TEST(Environment, PercentReferencesExpandLikeWindows) {
  ::setenv("VESK_T_HOME", "galt", 1);
  ::unsetenv("VESK_T_UNSET");
  EXPECT_EQ(ExpandPercentEnvironment("%VESK_T_HOME%\\standard"), "galt\\standard");
  EXPECT_EQ(ExpandPercentEnvironment("%VESK_T_UNSET%\\standard"), "%VESK_T_UNSET%\\standard");
  EXPECT_EQ(ExpandPercentEnvironment("a%b"), "a%b");
  EXPECT_EQ(ExpandPercentEnvironment("%VESK_T_UNSET%VESK_T_HOME%"), "%VESK_T_UNSETgalt");
}

}  // namespace
