// The post-process pass line by line where whole decks do not reach: the first and last lines,
// blank lines, trimming, lower-case letters, PARAMS: per dialect and across "+" lines, the
// width-length split of instance words, Dracula words and the folding limit. Whole decks pin
// the filters, the keywords of each dialect and the files.
#include "post/post_process.h"

#include <gtest/gtest.h>

#include <random>
#include <unordered_map>
#include <vector>

#include "gen/dialect_of.h"
#include "post/line_words.h"

namespace {

class PostProcess : public ::testing::Test {
 protected:
  void SetUp() override { options.wirelistKind = kPspice; }

  std::string Pass(const std::string& text) {
    options.dialect = DialectOf(options);
    ReadStripWords(config);
    return PostProcessText(text, settings);
  }

  WireOptions options;
  SpiceConfig config;
  std::unordered_map<std::string, std::string> internalNames;
  std::string currentInstance;
  PostSettings settings{options, config, internalNames, currentInstance};
};

TEST_F(PostProcess, PspiceLineRules) {
  const std::pair<const char*, const char*> cases[] = {
      {"", "\n"},
      // The last line and a line ahead of an empty line go through as they stand.
      {"R1 A B W = X", "\nR1 A B W = X\n"},
      {"R1 A B W = X\nR2 A B W = X\n", "\nR1 A B W={X}\nR2 A B W = X\n"},
      {"R1 A B W = X\n\nR2 A B W = X\nR3 A B 1\n", "\nR1 A B W = X\n\nR2 A B W={X}\nR3 A B 1\n"},
      {"R1 A B 1\n\n\nR2 A B 1\n\n", "\nR1 A B 1\n\n\nR2 A B 1\n\n"},
      {"  R1   A B W = X \r\n\tR2 A B 1\r\n", "\nR1 A B W={X}\nR2 A B 1\n"},
      {"R1 A B W = 1\nR2 A B K  =  { X + 1 }\nC1 A B V= X\nC2 A B V =X\n*.END\n",
       "\nR1 A B W=1\nR2 A B K={X+1}\nC1 A B V={X}\nC2 A B V={X}\n*.END\n"},
      {"m1 d g s b n l=1 k=a\n*.END", "\nm1 d g s b n L=1U k={a}\n*.END\n"},
      {".PARAM  V=X\n*.END", "\n.PARAM V=X\n*.END\n"},
      {".ENDS   INV  @\nR1 A B 1\n", "\n.ENDS   INV  @\n\nR1 A B 1\n"},
      {"X1 A SUB W=\n*.END", "\nX1 A SUB W=\n*.END\n"},
      // Behind an X line the keyword comes with the first parameter; behind a .SUBCKT the
      // first word decides and a "+" line is left alone.
      {"X1 A B SUB\n+ W=1 L=2\n*.END", "\nX1 A B SUB\n+ PARAMS: W=1 L=2\n*.END\n"},
      {".SUBCKT S A\n+ W=1\n*.END", "\n.SUBCKT S A\n+ W=1\n*.END\n"},
  };
  for (const auto& [text, expected] : cases) EXPECT_EQ(Pass(text), expected) << text;
}

// Lines that need no copy beside lines that do: blanks beside "=" or not, instance lines with
// single or repeated blanks, keywords and parameters, element lines with words to quote or not.
TEST_F(PostProcess, LinesLeftAloneAndLinesRewritten) {
  const std::pair<const char*, const char*> cases[] = {
      {"* N1=3\n* N2 =4\n* N3= 5\n*.END", "\n* N1=3\n* N2=4\n* N3=5\n*.END\n"},
      {"R1 A B {X}\nR2 A B K={ X}\n*.END", "\nR1 A B {X}\nR2 A B K={X}\n*.END\n"},
      {"R1 A=B 1\nR2 A==B 1\n*.END", "\nR1 A={B} 1\nR2 A={=B} 1\n*.END\n"},
      {"X1 A B SUB\nX2  A   B SUB\nX3 A B SUB \t\n*.END", "\nX1 A B SUB\nX2 A B SUB\nX3 A B SUB\n*.END\n"},
      {"X1 A B SUB PARAMS:\nX2 A B SUB W=1\n*.END", "\nX1 A B SUB PARAMS:\nX2 A B SUB PARAMS: W=1\n*.END\n"},
      {"X1 A\tB SUB\nX2 A/B SUB\nX3 A B SUB:1\n*.END", "\nX1 A\tB SUB\nX2 A/B SUB\nX3 A B SUB:1\n*.END\n"},
      {"V1 A 0 DC 5\nV2 A 0 DC 5 \n*.END", "\nV1 A 0 DC 5\nV2 A 0 DC 5\n*.END\n"},
  };
  for (const auto& [text, expected] : cases) EXPECT_EQ(Pass(text), expected) << text;
}

// An instance line with nothing to rewrite keeps its words, each with a blank behind it and
// one more for the end, and names the instance as any other line does.
TEST_F(PostProcess, InstanceWordsKeptAsTheyStand) {
  const std::pair<const char*, const char*> cases[] = {
      {"X7 A B SUB", "X7 A B SUB  "},
      {"X7  A B SUB", "X7 A B SUB  "},
      {"X7", "X7  "},
      {"X7 A B SUB PARAMS:", "X7 A B SUB PARAMS:  "},
  };
  for (const auto& [text, expected] : cases) {
    std::string line = text;
    bool needsParams = true;
    currentInstance.clear();
    RewriteParameterWords(line, needsParams, settings);
    EXPECT_EQ(line, expected) << text;
    EXPECT_EQ(currentInstance, "X7") << text;
  }
}

TEST_F(PostProcess, ParamsKeywordOfKelpoAndBerkeley) {
  options.wirelistKind = kKelpo;
  EXPECT_EQ(Pass("X1 A B SUB W=1\n*.END"), "\nX1 A B SUB W=1\n*.END\n");
  EXPECT_EQ(Pass("X1 A B SUB PARAMS: W=1\n*.END"), "\nX1 A B SUB PARAMS: W=1\n*.END\n");
  options.analogDeps = true;
  EXPECT_EQ(Pass("X1 A B SUB W=1\n*.END"), "\nX1 A B SUB PARAMS: W=1\n*.END\n");
  options.analogDeps = false;
  options.wirelistKind = kBerkeley;
  options.dracula = true;
  EXPECT_EQ(Pass("X1 A B SUB PARAMS: W=1\n*.END"), "\nX1 A B SUB W=1\n*.END\n");
}

TEST_F(PostProcess, ParameterWordsSplitWidthAndLength) {
  config.wlSplit = 1;
  std::string line = "X1 A SUB Wl1=2/3 Wl=4\\5 wl=WL2 Wl=7 Wl=/3 Wl=2/ WL=1/2";
  bool needsParams = true;
  RewriteParameterWords(line, needsParams, settings);
  EXPECT_EQ(TrimRight(line), "X1 A SUB PARAMS: L1=3 W1=2 L=5U W=4U L2=L2 W2=W2 WL=1/2");
  EXPECT_EQ(currentInstance, "X1");
  EXPECT_EQ(Pass("X1 A SUB Wl=WL1\n*.END"), "\nX1 A SUB PARAMS: L1={L1} W1={W1}\n*.END\n");
}

TEST_F(PostProcess, DraculaElementWords) {
  options.wirelistKind = kHspice;
  options.dracula = true;
  const char* deck = "R1 A B 1 NOT4ECAD\nR2 A B M=2X\nR3 A B V='X'\nQ1 C B E NPN M=2 $EA=M*3\n*.END\n";
  // V='X' loses its quotes, and then its X like a multiplier "2X": the rest, empty, counts as a number.
  EXPECT_EQ(Pass(deck), "\n\nR2 A B M=2\nR3 A B V=\nQ1 C B E NPN M=2 $EA='2*3'\n*.END\n");
}

TEST_F(PostProcess, FoldingBreakRules) {
  options.hdlSpiceSources = 1;
  options.dialect = DialectOf(options);
  auto fold = [&](const std::string& line) {
    std::string output;
    FoldLine(output, line, true, settings);
    return output;
  };
  std::string shortLine = "R1 " + std::string(73, 'x');  // 76 characters
  EXPECT_EQ(fold(shortLine), shortLine + "\n");
  // 77 characters count as long: cut behind the last blank, which stays in front.
  std::string exact = "R1 " + std::string(74, 'x');
  EXPECT_EQ(fold(exact), "R1 \n+" + std::string(74, 'x') + "\n");
  // A blank at position 77: the cut is there and the rest begins with it.
  std::string atBlank = std::string(77, 'a') + " bbb";
  EXPECT_EQ(fold(atBlank), std::string(77, 'a') + "\n+ bbb\n");
  EXPECT_EQ(fold("\n"), "\n");
}

TEST(ReadStripWordsTest, SetsFlagsFromExactWords) {
  SpiceConfig config;
  config.stripWords = "TRANS_SIZE  UNITS COMMENTS";
  ReadStripWords(config);
  EXPECT_TRUE(config.stripTransSize && config.stripUnits && config.stripComments);
  SpiceConfig other;
  other.stripWords = "COMMENT trans_size UNITS,";
  ReadStripWords(other);
  EXPECT_FALSE(other.stripTransSize || other.stripUnits || other.stripComments);
}

TEST_F(PostProcess, MissingPathOrFileGivesTheMessages) {
  testing::internal::CaptureStdout();
  PostProcessFile("", settings);
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "No Project found to PostProcess... \n");
  testing::internal::CaptureStdout();
  PostProcessFile("Out\\none.cir", settings);
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "Error: Could not open data file Out\\none.cir\n");
}

}  // namespace

namespace {

// The lines the pass writes as they stand must be what the whole rewrite makes of them, with
// the same statement state behind: random decks under random dialects and configurations,
// once with the shortcut and once without.
TEST(PostPassShortcut, PlainLinesComeOutAsTheWholeRewriteMakesThem) {
  const char* lines[] = {"X1 1 2 STAGE", "X2 1 2 AMP PARAMS: G=1", "x3 a b sub W=1 L=2", "X8 1 2 sub\\dir",
                         "R1 1 2 1K", "r2 1 2 2k", "M1 d g s b NMOS W=1u L=1u", "* S1=2", "* IN0 = 1", "*x ={ 1}",
                         "+ G=3", "+ AMP", ".SUBCKT A 1 2 PARAMS: G=1", ".ENDS", "X5  1   2  STAGE ", "C1 1 0 {a b}",
                         "V1 1 0 DC 5", "Q1 c b e QN", "", "X6 1 2 A B=' 1 2 '", "R@3 1 2 5", "* a@b", "*", "B1 1 0 V=1",
                         "S1 1 2 3 4 SW", "P1 1 2", "Z9 @", "\tR7 1 2 3\t", "E1 1 0 2 0 1", ".tran 1n 1u", "; c",
                         "1 2 3", "R1 1 2 1K ; c",
                         "* a long comment xxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxx",
                         "X9 1 2 LONGNAMEXXXXXXXXXXXXXXXXXXXXXXXXXXXXXXXXXXXXXXXXXXXXXXXXXXXXXXXXXXXXXXXXXXXXXXXXXXXXXX"};
  const char* strips[] = {"@", "", "1 ", "X", "  "};
  const char* comments[] = {"*", "", "R1", "*x"};
  std::mt19937 random(11);
  for (int deckNumber = 0; deckNumber < 4000; ++deckNumber) {
    std::vector<std::string> deck;
    for (int count = 1 + random() % 14; count > 0; --count) deck.emplace_back(lines[random() % std::size(lines)]);
    WireOptions options;
    options.dialect = DialectOf(options);
    options.dialect.dracula = random() % 6 == 0;
    options.dialect.hdlSources = random() % 4 == 0;
    options.dialect.pspiceQuotesAlways = random() % 2;
    SpiceConfig config;
    config.stripChars = strips[random() % std::size(strips)];
    config.stripComs = comments[random() % std::size(comments)];
    config.stripComments = random() % 3 == 0;
    if (random() % 4 == 0) config.elements = "RCX";
    std::string results[2], instances[2], quotes[2];
    for (int whole = 0; whole < 2; ++whole) {
      SpiceConfig copy = config;
      std::unordered_map<std::string, std::string> internalNames;
      PostSettings settings{options, copy, internalNames, instances[whole]};
      PostPass pass(settings, 0);
      if (whole) pass.RewriteEveryLine();
      for (const std::string& line : deck) pass.Read(line);
      results[whole] = pass.Finish();
      quotes[whole] = copy.quoteOpen + copy.quoteClose;
    }
    std::string text;
    for (const std::string& line : deck) text += line + "\n";
    ASSERT_EQ(results[0], results[1]) << text;
    ASSERT_EQ(instances[0], instances[1]) << text;
    ASSERT_EQ(quotes[0], quotes[1]) << text;
  }
}

}  // namespace
