// The pieces of a deck written during its walk: the pipe that hands components from the walk's
// thread to the generator's, and the post pass run on the text as it comes, which must make of
// any cut of the text what the pass makes of the whole deck (on its own thread:
// deck_passes_stream_test.cpp).
#include <gtest/gtest.h>

#include <random>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "gen/component_pipe.h"
#include "gen/dialect_of.h"
#include "post/post_stream.h"

namespace {

SpiceComp Labelled(int number) {
  SpiceComp comp;
  comp.label = "R" + std::to_string(number);
  return comp;
}

TEST(ComponentPipe, HandsEveryComponentOverInWalkOrder) {
  for (int count : {0, 1, 511, 512, 513, 20000}) {
    ComponentPipe pipe;
    std::thread walk([&] {
      for (int i = 0; i < count; ++i) ASSERT_TRUE(pipe.Take(Labelled(i)));
      pipe.Close();
    });
    std::vector<SpiceComp> batch;
    int next = 0;
    while (pipe.Next(batch))
      for (const SpiceComp& comp : batch) EXPECT_EQ(comp.Label(), "R" + std::to_string(next++));
    walk.join();
    EXPECT_EQ(next, count);
  }
}

TEST(ComponentPipe, AComponentWhoseLoadFailedIsNeverHandedOver) {
  // The walk loads in place; a load that throws leaves its component unhanded, in the middle
  // of a batch or at its end, and the generator must not see it.
  for (int failAt : {0, 7, 511, 512}) {
    ComponentPipe pipe;
    for (int i = 0; i < failAt; ++i) {
      pipe.NewComp().label = "R" + std::to_string(i);
      ASSERT_TRUE(pipe.Hand());
    }
    pipe.NewComp().label = "half loaded";
    pipe.Close();
    std::vector<SpiceComp> batch;
    int seen = 0;
    while (pipe.Next(batch))
      for (const SpiceComp& comp : batch) EXPECT_EQ(comp.Label(), "R" + std::to_string(seen++));
    EXPECT_EQ(seen, failAt);
  }
}

TEST(ComponentPipe, AStoppedReaderEndsAWalkThatWaitsOnAFullPipe) {
  ComponentPipe pipe;
  int taken = 0;
  std::thread walk([&] {
    while (pipe.Take(Labelled(taken))) ++taken;
    pipe.Close();
  });
  std::vector<SpiceComp> batch;
  ASSERT_TRUE(pipe.Next(batch));
  pipe.Stop();
  walk.join();  // would hang if the walk kept waiting for room
  // The walk could fill the pipe and one batch more before it learnt of the stop.
  EXPECT_LE(taken, static_cast<int>((ComponentPipe::kBatches + 2) * ComponentPipe::kBatchSize));
}

class PostStream : public ::testing::Test {
 protected:
  std::string Whole(const std::string& text) {
    SpiceConfig config = Config();
    std::string instance;
    PostSettings settings{options, config, internalNames, instance};
    return PostProcessText(text, settings);
  }
  // The text written in pieces of the given sizes, cycling.
  std::string Streamed(const std::string& text, const std::vector<size_t>& pieces) {
    SpiceConfig config = Config();
    std::string instance;
    PostSettings settings{options, config, internalNames, instance};
    std::ostringstream target;
    PostProcessStream stream(settings, target);
    for (size_t at = 0, i = 0; at < text.size(); ++i) {
      size_t size = std::min(pieces[i % pieces.size()], text.size() - at);
      stream.write(text.data() + at, static_cast<std::streamsize>(size));
      at += size;
    }
    stream.Finish();
    return target.str();
  }
  SpiceConfig Config() {
    SpiceConfig config;
    config.elements = "ALL";
    config.commands = "ALL";
    ReadStripWords(config);
    return config;
  }
  void SetUp() override {
    options.wirelistKind = kPspice;
    options.dialect = DialectOf(options);
  }
  WireOptions options;
  std::unordered_map<std::string, std::string> internalNames;
};

TEST_F(PostStream, AnyCutOfTheTextGivesTheWholeDecksPass) {
  const std::string decks[] = {
      "",
      "\n",
      "R1 A B W = X",
      "\n* Project TOP\nR1 A B W = X\nR2 A B W = X\n\nX1 A B SUB PARAMS: W=1 L = 2\n+ K=3\n*.END\n",
      "  R1   A B W = X \r\n\tR2 A B 1\r\n\n\n",
      "M1 D G S B NCH W=1U L=2U\nC1 A 0 1P\n.TRAN 1N 10N\n.PROBE V(A)\n*.END",
  };
  std::mt19937 random(11);
  for (const std::string& deck : decks) {
    const std::string whole = Whole(deck);
    EXPECT_EQ(Streamed(deck, {deck.size() + 1}), whole) << deck;
    EXPECT_EQ(Streamed(deck, {1}), whole) << deck;
    for (int round = 0; round < 20; ++round) {
      std::vector<size_t> pieces;
      for (int i = 0; i < 5; ++i) pieces.push_back(1 + random() % 9);
      EXPECT_EQ(Streamed(deck, pieces), whole) << deck;
    }
  }
}

TEST_F(PostStream, ALargeDeckIsHandedOnInPiecesAndWhole) {
  std::string deck;
  for (int i = 0; i < 100000; ++i)
    deck += "R" + std::to_string(i) + "  N" + std::to_string(i) + " 0  W = 1K\n";
  EXPECT_EQ(Streamed(deck, {4096, 77, 1 << 20}), Whole(deck));
}

}  // namespace
