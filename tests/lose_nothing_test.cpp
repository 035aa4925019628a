// Runs cut short and runs side by side: `vesk-db import` killed at random moments keeps the old
// database whole; two `vesk` runs at once in one project folder each leave a whole deck.
#include <gtest/gtest.h>
#include <signal.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "design/db/design_import.h"
#include "tests/deck_harness.h"

namespace {

namespace fs = std::filesystem;

// A design of two separate blocks, TOP and ALT, with `count` resistors each: big enough that an
// import and a run take a while.
std::string TwoBlocks(int count, const std::string& value) {
  std::string json = R"({ "symbols": { "RES.1": { "PREFIX": "R", "ORDER": "VALUE$" } }, "blocks": [)";
  for (const char* block : {"TOP", "ALT"}) {
    json += std::string(block == std::string("TOP") ? "" : ",") + R"({ "name": ")" + block +
            R"(", "nets": [ { "label": "GND", "global": true } ], "components": [)";
    for (int i = 0; i < count; ++i) {
      json += std::string(i ? "," : "") + R"({ "label": "R)" + std::to_string(i) +
              R"(", "name": "RES.1", "attributes": { "VALUE": ")" + value + R"(" }, "pins": [)" +
              R"({ "name": "A", "net": "N)" + std::to_string(i) + R"(" }, { "name": "B", "net": "N)" +
              std::to_string(i + 1) + R"(" } ] })";
    }
    json += "] }";
  }
  return json + "] }";
}

// Starts `program` with `args` in `folder`, output nowhere; returns its process id.
int Start(const std::string& program, const std::string& args, const fs::path& folder) {
  return StartProgram(program, args, folder.string(), {{"GALT_HOME", "galt"}, {"SOURCE_DATE_EPOCH", "0"}});
}

class ProjectFolder : public ::testing::Test {
 protected:
  void SetUp() override {
    folder_ = MakeScratch("lose");
    WriteText(folder_ / "galt/standard/vesk.cfg", "");
  }
  void TearDown() override { RemoveScratch(folder_.string()); }
  fs::path folder_;
};

// The old design or the new one, described back whole, after every kill.
TEST_F(ProjectFolder, ImportKilledAtRandomMomentsKeepsTheOldDatabase) {
  const std::string oldDesign = TwoBlocks(5, "1K"), newDesign = TwoBlocks(3000, "2K");
  WriteText(folder_ / "new.json", newDesign);
  std::string error, oldText, newText;
  ASSERT_TRUE(ImportDesign(newDesign, folder_.string(), error)) << error;
  ASSERT_TRUE(ExportDesign(folder_.string(), newText, error)) << error;
  ASSERT_TRUE(ImportDesign(oldDesign, folder_.string(), error)) << error;
  ASSERT_TRUE(ExportDesign(folder_.string(), oldText, error)) << error;

  // How long one import takes here; the kills fall anywhere up to a little beyond that.
  auto begin = std::chrono::steady_clock::now();
  ASSERT_EQ(WaitProgram(Start(BinaryDir() + "/vesk-db", "import new.json", folder_)), 0);
  const auto took =
      std::chrono::duration_cast<std::chrono::microseconds>(std::chrono::steady_clock::now() - begin);
  ASSERT_TRUE(ImportDesign(oldDesign, folder_.string(), error)) << error;

  std::mt19937 random(14);
  std::uniform_int_distribution<long> moment(0, took.count() * 5 / 4);
  int replaced = 0;
  for (int run = 0; run < 40; ++run) {
    int child = Start(BinaryDir() + "/vesk-db", "import new.json", folder_);
    std::this_thread::sleep_for(std::chrono::microseconds(moment(random)));
    ::kill(child, SIGKILL);
    WaitProgram(child);
    std::string text;
    ASSERT_TRUE(ExportDesign(folder_.string(), text, error)) << "after kill " << run << ": " << error;
    if (text == newText) {
      ++replaced;
      ASSERT_TRUE(ImportDesign(oldDesign, folder_.string(), error)) << error;
    } else {
      ASSERT_EQ(text, oldText) << "after kill " << run;
    }
  }
  // A run that vesk reads after all the kills writes the old design's deck.
  std::string output, errors;
  EXPECT_EQ(
      RunProgram(BinaryDir() + "/vesk", "TOP", folder_.string(), {{"GALT_HOME", "galt"}}, output, errors), 0)
      << output;
  const std::string deck = ReadText(folder_ / "TOP.cir");
  EXPECT_NE(deck.find("\nR4 "), std::string::npos) << deck;
  EXPECT_EQ(deck.find("\nR5 "), std::string::npos) << deck;
  RecordProperty("imports finished before the kill", replaced);
}

// Two runs at once on different groups and on the same group: each deck equals the deck of a run
// alone.
TEST_F(ProjectFolder, TwoRunsAtOnceEachWriteAWholeDeck) {
  std::string error;
  ASSERT_TRUE(ImportDesign(TwoBlocks(2000, "1K"), folder_.string(), error)) << error;
  std::string alone[2];
  const char* groups[2] = {"TOP", "ALT"};
  for (int i = 0; i < 2; ++i) {
    ASSERT_EQ(WaitProgram(Start(BinaryDir() + "/vesk", std::string("-h ") + groups[i], folder_)), 0);
    alone[i] = ReadText(folder_ / (std::string(groups[i]) + ".cir"));
    ASSERT_NE(alone[i].find("*.END"), std::string::npos);
  }
  for (int round = 0; round < 4; ++round) {
    for (const auto& [first, second] : {std::pair<int, int>{0, 1}, {0, 0}}) {
      fs::remove(folder_ / "TOP.cir");
      fs::remove(folder_ / "ALT.cir");
      int a = Start(BinaryDir() + "/vesk", std::string("-h ") + groups[first], folder_);
      int b = Start(BinaryDir() + "/vesk", std::string("-h ") + groups[second], folder_);
      EXPECT_EQ(WaitProgram(a), 0);
      EXPECT_EQ(WaitProgram(b), 0);
      EXPECT_EQ(ReadText(folder_ / (std::string(groups[first]) + ".cir")), alone[first]) << round;
      EXPECT_EQ(ReadText(folder_ / (std::string(groups[second]) + ".cir")), alone[second]) << round;
    }
  }
  for (const auto& entry : fs::directory_iterator(folder_))
    EXPECT_EQ(entry.path().filename().string().find(".vesk-"), std::string::npos) << entry.path();
}

}  // namespace
