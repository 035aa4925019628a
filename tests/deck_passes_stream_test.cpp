// The passes of a hierarchical deck run on its text as it is written: the queue of text pieces
// and its line reader, the probe pass fed in pieces, and both passes on their own thread, each
// against the passes run on the whole text.
#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "gen/dialect_of.h"
#include "post/deck_passes_stream.h"
#include "post/post_process.h"
#include "post/probe_pass.h"
#include "post/text_queue.h"

namespace {

// Every line the reader gives, each closed by "|".
std::string LinesOf(TextQueue& queue) {
  QueuedLineReader reader(queue);
  std::string lines, line;
  while (reader.Read(line)) lines += line + "|";
  return lines;
}

TEST(TextQueueTest, PiecesReadAsTheLinesOfOneText) {
  const std::pair<std::vector<std::string>, const char*> cases[] = {
      {{}, ""},
      {{""}, ""},
      {{"", "", ""}, ""},
      {{"\n"}, "|"},
      {{"A"}, "A|"},
      {{"A\n"}, "A|"},
      {{"A\n\n"}, "A||"},
      {{"A\nB"}, "A|B|"},
      {{"A", "B", "\n", "C"}, "AB|C|"},
      {{"A\r\n", "B\r", "\nC\r"}, "A|B|C|"},
      {{"one line ", "", "across ", "pieces\ntwo\n", "\n"}, "one line across pieces|two||"},
      {{"\r"}, "|"},
      {{"A\n", "", "\n", "B\n"}, "A||B|"},
  };
  for (const auto& [pieces, expected] : cases) {
    TextQueue queue(pieces.size() + 1);
    for (const std::string& piece : pieces) EXPECT_TRUE(queue.Push(piece));
    queue.Close();
    EXPECT_EQ(LinesOf(queue), expected) << ::testing::PrintToString(pieces);
  }
}

TEST(TextQueueTest, AWriterAheadOfAFullQueueWaitsAndKeepsTheOrder) {
  TextQueue queue(1);
  std::thread writer([&] {
    for (int i = 0; i < 2000; ++i) queue.Push("line " + std::to_string(i) + (i % 3 == 2 ? "\n" : "\nli"));
    queue.Close();
  });
  // Pieces "line 0\nli", "line 1\nli", "line 2\n" ... read as "line 0", "liline 1", ...: the
  // reader must join each piece's tail to the next one's head.
  std::string got = LinesOf(queue);
  writer.join();
  std::string joined;
  for (int i = 0; i < 2000; ++i) joined += "line " + std::to_string(i) + (i % 3 == 2 ? "\n" : "\nli");
  TextQueue whole(1);
  whole.Push(joined);
  whole.Close();
  EXPECT_EQ(got, LinesOf(whole));
  EXPECT_NE(got.find("liline 1|"), std::string::npos);
}

TEST(TextQueueTest, StopReleasesBothSides) {
  // A writer waiting on a full queue.
  {
    TextQueue queue(1);
    bool last = true;
    std::thread writer([&] {
      for (int i = 0; i < 3; ++i) last = queue.Push("x\n");
    });
    queue.Stop();
    writer.join();
    EXPECT_FALSE(last);
    std::string piece;
    EXPECT_FALSE(queue.Pop(piece));
  }
  // A reader waiting on an empty queue that is never closed.
  {
    TextQueue queue(4);
    std::string lines = "unset";
    std::thread reader([&] { lines = LinesOf(queue); });
    queue.Stop();
    reader.join();
    EXPECT_EQ(lines, "");
    EXPECT_FALSE(queue.Push("late\n"));
  }
}

TEST(TextQueueTest, CloseLetsTheReaderTakeWhatIsLeft) {
  TextQueue queue(3);
  queue.Push("A\nB");
  queue.Push("C\n");
  queue.Close();
  EXPECT_EQ(LinesOf(queue), "A|BC|");
}

// Decks for the probe pass: markers, nested definitions, model cards with comments inside,
// analyses, items, duplicates, and carriage returns.
std::vector<std::string> ProbeDecks() {
  std::vector<std::string> decks = {
      "",
      "\n",
      "A\n\n\n\n\nB\n",
      "R1 1 0 1\r\n\r\n\r\nR2 1 0 1\r\n",
      ".model A D\n* one\n* two\n+ IS=1\n.model B D\n* three\n; four\n.model C D\n*.END\n",
      ".SUBCKT A 1\n* voltage probe on node :  N1\n.ENDS\nX1 IN A\nX2 OUT A\n.tran 1n 1u\nX3 MID A\n*.END\n",
      ".SUBCKT A 1\n.ENDS\n.SUBCKT A 1\n.ENDS\n.model M D\n.model M D\n*.END",
      ".probe/csdf V(1)\n+ V(2)\n.probe/csdf V(1)\n.probe/csdf I(R1)\n*.end\n",
  };
  // A large deck, past the pieces in which the passes hand their text on.
  std::string large = "* Project TOP\n.SUBCKT CELL A B\n* voltage probe on node :  MID\nR1 A MID 1K\n"
                      "  * next line is a current sense\nV1 MID B 0\n.model DX D\n* inside\n+ IS=1\n.ENDS\n";
  for (int i = 0; i < 40000; ++i)
    large += "X" + std::to_string(i) + " N" + std::to_string(i) + " N" + std::to_string(i + 1) +
             " CELL PARAMS: W=1 L = 2\n";
  large += ".tran 1n 1u\n.SUBCKT CELL A B\n.ENDS\n*.END\n";
  decks.push_back(large);
  return decks;
}

// The text cut in pieces of the given sizes, cycling.
std::vector<std::string> Cut(const std::string& text, const std::vector<size_t>& sizes) {
  std::vector<std::string> pieces;
  for (size_t at = 0, i = 0; at < text.size(); ++i) {
    const size_t size = std::min(sizes[i % sizes.size()], text.size() - at);
    pieces.push_back(text.substr(at, size));
    at += size;
  }
  return pieces;
}

const std::vector<std::vector<size_t>> kCuts = {{1}, {2, 3}, {7, 1, 64}, {4096}, {77, 1 << 20}, {size_t(1) << 30}};

TEST(ProbeLinesTest, PiecesOfAnySizeGiveTheWholeTextsPass) {
  for (const std::string& deck : ProbeDecks()) {
    ProbePassState wholeState;
    std::ostringstream wholeConsole;
    const std::string whole = ProbeProcessText(deck, wholeState, PrintSettings(), wholeConsole);
    for (const auto& sizes : kCuts) {
      if (sizes[0] < 7 && deck.size() > 100000) continue;  // the small cuts on the small decks
      const std::vector<std::string> pieces = Cut(deck, sizes);
      TextQueue queue(pieces.size() + 1);
      for (const std::string& piece : pieces) queue.Push(piece);
      queue.Close();
      QueuedLineReader reader(queue);
      ProbePassState state;
      std::ostringstream target, console;
      ProbeProcessLines(reader, state, PrintSettings(), target, console);
      EXPECT_EQ(target.str(), whole) << deck.substr(0, 200) << " cut " << sizes[0];
      EXPECT_EQ(console.str(), wholeConsole.str()) << deck.substr(0, 200);
    }
  }
}

class DeckPasses : public ::testing::Test {
 protected:
  void SetUp() override {
    options.wirelistKind = kPspice;
    options.dialect = DialectOf(options);
    config.elements = "ALL";
    config.commands = "ALL";
    ReadStripWords(config);
  }
  // Both passes over the whole text, one after the other.
  std::string Whole(const std::string& deck, bool probe, std::string& messages) {
    std::string text = deck;
    if (probe) {
      ProbePassState state;
      std::ostringstream console;
      text = ProbeProcessText(deck, state, PrintSettings(), console);
      messages = console.str();
    }
    SpiceConfig copy = config;
    std::string instance;
    PostSettings settings{options, copy, internalNames, instance};
    return PostProcessText(text, settings);
  }
  WireOptions options;
  SpiceConfig config;
  std::unordered_map<std::string, std::string> internalNames;
};

TEST_F(DeckPasses, OnTheirThreadGiveTheWholeDecksPasses) {
  for (const std::string& deck : ProbeDecks()) {
    for (bool probe : {true, false}) {
      std::string wholeMessages;
      const std::string whole = Whole(deck, probe, wholeMessages);
      for (const auto& sizes : kCuts) {
        if (sizes[0] < 7 && deck.size() > 100000) continue;
        SpiceConfig copy = config;
        std::string instance;
        PostSettings settings{options, copy, internalNames, instance};
        ProbePassState state;
        state.probeScopeTail = state.NewProbeScope();
        std::ostringstream target;
        const PrintSettings print;
        DeckPassesStream stream(probe ? &state : nullptr, print, settings, target);
        for (const std::string& piece : Cut(deck, sizes)) stream << piece;
        stream.Finish();
        EXPECT_EQ(target.str(), whole) << deck.substr(0, 200) << " probe " << probe << " cut " << sizes[0];
        EXPECT_EQ(stream.Messages(), wholeMessages) << deck.substr(0, 200);
      }
    }
  }
}

TEST_F(DeckPasses, ADroppedStreamStopsItsThread) {
  SpiceConfig copy = config;
  std::string instance;
  PostSettings settings{options, copy, internalNames, instance};
  ProbePassState state;
  std::ostringstream target;
  const PrintSettings print;
  {
    DeckPassesStream stream(&state, print, settings, target);
    std::string lines(9 << 20, 'R');
    for (size_t i = 80; i < lines.size(); i += 80) lines[i] = '\n';
    stream << lines;
  }  // no Finish: the destructor must not wait for text that never comes
  // Nothing of an unfinished deck reaches the target past what was handed back while writing.
  EXPECT_EQ(target.str().find(" \n"), std::string::npos);
}

}  // namespace
