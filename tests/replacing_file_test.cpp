// The platform layer's file writing: where files may be written, and a replacement that is
// abandoned or completed.
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include "design/platform.h"

namespace {

namespace fs = std::filesystem;

class ScratchFolder : public ::testing::Test {
 protected:
  void SetUp() override {
    char pattern[] = "/tmp/vesk-replacing-XXXXXX";
    root_ = ::mkdtemp(pattern);
    fs::create_directories(root_ / "project" / "sym");
    old_ = fs::current_path();
    fs::current_path(root_ / "project");
  }
  void TearDown() override {
    fs::current_path(old_);
    fs::remove_all(root_);
  }
  std::string Read(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    return std::string((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
  }
  fs::path root_, old_;
};

TEST_F(ScratchFolder, WritesStayInsideTheProjectOrAnAllowedFolder) {
  const std::string project = fs::current_path().string();
  const std::pair<std::string, bool> cases[] = {
      {"TOP.cir", true},
      {"sym/a-param.txt", true},
      {"genhdl/TOP/../TOP/TOP.cir", true},
      {"sym/../TOP.cir", true},
      {"./x/./y", true},
      {project + "/sym/a.mod", true},
      {"../TOP.cir", false},
      {"sym/../../TOP.cir", false},
      {"genhdl/../../x/netUidMap", false},
      {"/tmp/x.cir", false},
      {project + "/../x", false},
      {project + "x/y", false},  // a sibling whose name begins like the project's
      {"/", false},
  };
  for (const auto& [path, inside] : cases) EXPECT_EQ(WritableLocation(path), inside) << path;

  AllowWritesUnder("..\\decks");
  EXPECT_TRUE(WritableLocation("../decks/TOP.cir"));
  EXPECT_TRUE(WritableLocation((root_ / "decks" / "a" / "b").string()));
  EXPECT_FALSE(WritableLocation("../decksx/TOP.cir"));
  EXPECT_FALSE(WritableLocation("../TOP.cir"));
}

TEST_F(ScratchFolder, ReplacementIsAllOrNothing) {
  std::ofstream("deck.cir") << "old";
  {
    ReplacingFile file;
    ASSERT_TRUE(file.Open("deck.cir"));
    file.Write("new text", 8);
    // Not committed: the old file stays and the temporary goes with the object.
  }
  EXPECT_EQ(Read("deck.cir"), "old");
  ReplacingFile file;
  ASSERT_TRUE(file.Open("deck.cir"));
  file.Write("new ", 4);
  file.Write("text", 4);
  EXPECT_EQ(Read("deck.cir"), "old");
  ASSERT_TRUE(file.Commit());
  EXPECT_EQ(Read("deck.cir"), "new text");
  for (const auto& entry : fs::directory_iterator("."))
    EXPECT_EQ(entry.path().filename().string().find(".vesk-"), std::string::npos) << entry.path();

  // Outside the project nothing is opened, and the failure is counted.
  const int failures = WriteFailureCount();
  ReplacingFile outside;
  testing::internal::CaptureStdout();
  EXPECT_FALSE(outside.Open("../outside.cir"));
  EXPECT_EQ(testing::internal::GetCapturedStdout(),
            "Error: cannot write ../outside.cir: outside the project folder\n");
  EXPECT_EQ(WriteFailureCount(), failures + 1);
  EXPECT_FALSE(fs::exists(root_ / "outside.cir"));
}

}  // namespace
