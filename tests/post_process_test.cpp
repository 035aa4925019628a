// The post-process pass line by line: blank lines, closed-up equals, parameter and element words,
// folding, and deck files that cannot be read or replaced. Whole decks pin the filters.
#include "post/post_process.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>

#include "design/platform.h"
#include "post/line_words.h"

namespace fs = std::filesystem;

namespace {

class PostProcess : public ::testing::Test {
 protected:
  void SetUp() override { options.wirelistKind = kPspice; }

  std::string Pass(const std::string& text) {
    ReadStripWords(config);
    return PostProcessText(text, settings);
  }
  std::string Fold(const std::string& line) {
    std::string output;
    FoldLine(output, line, true, settings);
    return output;
  }
  std::string ParameterWords(std::string line, bool needsParams = true) {
    RewriteParameterWords(line, needsParams, settings);
    return std::string(TrimRight(line));
  }

  WireOptions options;
  SpiceConfig config;
  std::unordered_map<std::string, std::string> internalNames;
  std::string currentInstance;
  PostSettings settings{options, config, internalNames, currentInstance};
};

// ---- the whole pass ----

TEST_F(PostProcess, FirstAndLastLinesAndBlankLines) {
  EXPECT_EQ(Pass(""), "\n");
  EXPECT_EQ(Pass("R1 A B W = X"), "\nR1 A B W = X\n");
  EXPECT_EQ(Pass("R1 A B W = X\nR2 A B W = X\n"), "\nR1 A B W={X}\nR2 A B W = X\n");
  // A line ahead of an empty line goes through as it stands; blank lines stay.
  EXPECT_EQ(Pass("R1 A B W = X\n\nR2 A B W = X\nR3 A B 1\n"), "\nR1 A B W = X\n\nR2 A B W={X}\nR3 A B 1\n");
  EXPECT_EQ(Pass("R1 A B 1\n\n\nR2 A B 1\n\n"), "\nR1 A B 1\n\n\nR2 A B 1\n\n");
  // White space around lines and carriage returns are trimmed.
  EXPECT_EQ(Pass("  R1   A B W = X \r\n\tR2 A B 1\r\n"), "\nR1 A B W={X}\nR2 A B 1\n");
}

TEST_F(PostProcess, BlanksAroundEqualsCloseUp) {
  const char* deck =
      "R1 A B W = 1\n"
      "R2 A B K  =  { X + 1 }\n"
      "C1 A B V= X\n"
      "C2 A B V =X\n"
      "*.END\n";
  EXPECT_EQ(Pass(deck), "\nR1 A B W=1\nR2 A B K={X+1}\nC1 A B V={X}\nC2 A B V={X}\n*.END\n");
}

TEST_F(PostProcess, LowerCaseStatementLetterIsUpperCased) {
  EXPECT_EQ(Pass("m1 d g s b n l=1 k=a\n*.END"), "\nm1 d g s b n L=1U k={a}\n*.END\n");
}

// ---- comments, COMMANDS, ELEMENTS, STRIP_CHARS ----

TEST_F(PostProcess, StripCharsGoAfterTheWordRewrites) {
  EXPECT_EQ(Pass("R1 A B V=@X+1\n.ENDS S@1\n*.END"), "\nR1 A B V={X+1}\n.ENDS S@1\n\n*.END\n");
  config.stripChars = "#";
  EXPECT_EQ(Pass("R#1 A B @1\n*.END"), "\nR1 A B @1\n*.END\n");
  config.stripChars = "";
  EXPECT_EQ(Pass("R@1 A B 1\n*.END"), "\nR@1 A B 1\n*.END\n");
}

// ---- PARAMS:, .SUBCKT, .MACRO, .EOM, .ENDS ----

TEST_F(PostProcess, ParamsKeywordPerDialect) {
  EXPECT_EQ(Pass("X1 A B SUB W=1 L=2\n*.END"), "\nX1 A B SUB PARAMS: W=1 L=2\n*.END\n");
  EXPECT_EQ(Pass("X1 A B SUB PARAMS: W=1\n*.END"), "\nX1 A B SUB PARAMS: W=1\n*.END\n");
  EXPECT_EQ(Pass("X1 A SUB W=\n*.END"), "\nX1 A SUB W=\n*.END\n");
  EXPECT_EQ(Pass(".SUBCKT SUB A B OPTIONAL: X=1\n*.END"), "\n.SUBCKT SUB A B OPTIONAL: X=1\n*.END\n");
  options.wirelistKind = kKelpo;
  EXPECT_EQ(Pass("X1 A B SUB W=1\n*.END"), "\nX1 A B SUB W=1\n*.END\n");
  EXPECT_EQ(Pass("X1 A B SUB PARAMS: W=1\n*.END"), "\nX1 A B SUB PARAMS: W=1\n*.END\n");
  options.analogDeps = true;
  EXPECT_EQ(Pass("X1 A B SUB W=1\n*.END"), "\nX1 A B SUB PARAMS: W=1\n*.END\n");
  options.analogDeps = false;
  options.wirelistKind = kHspice;
  EXPECT_EQ(Pass("X1 A B SUB PARAMS: W=1\n.SUBCKT S A OPTIONAL: X=1\n*.END"),
            "\nX1 A B SUB W=1\n.SUBCKT S A X=1\n*.END\n");
  options.wirelistKind = kBerkeley;
  options.dracula = true;
  EXPECT_EQ(Pass("X1 A B SUB PARAMS: W=1\n*.END"), "\nX1 A B SUB W=1\n*.END\n");
}

TEST_F(PostProcess, ContinuationLinesFollowTheirStatement) {
  // Behind an X line the keyword comes with the first parameter; behind a .SUBCKT the
  // first word decides and a + line is left alone.
  EXPECT_EQ(Pass("X1 A B SUB\n+ W=1 L=2\n*.END"), "\nX1 A B SUB\n+ PARAMS: W=1 L=2\n*.END\n");
  EXPECT_EQ(Pass("X1 A B SUB W=1\n+ L=2\n*.END"), "\nX1 A B SUB PARAMS: W=1\n+ L=2\n*.END\n");
  EXPECT_EQ(Pass(".SUBCKT S A\n+ W=1\n*.END"), "\n.SUBCKT S A\n+ W=1\n*.END\n");
  EXPECT_EQ(Pass(".subckt s a w=1\n*.END"), "\n.subckt s a w=1\n*.END\n");
}

TEST_F(PostProcess, MacroAndEom) {
  const char* deck = ".MACRO AMP A B G=2\nR1 A B 1\n.EOM\n*.END\n";
  EXPECT_EQ(Pass(deck), "\n.MACRO AMP A B PARAMS: G=2\nR1 A B 1\n\n.EOM\n*.END\n");
}

TEST_F(PostProcess, EndsLineIsWrittenAsItStandsWithAnEmptyLineBehind) {
  EXPECT_EQ(Pass(".ENDS   INV  @\nR1 A B 1\n"), "\n.ENDS   INV  @\n\nR1 A B 1\n");
}

TEST_F(PostProcess, DraculaDropsSlashWordsUnderNoSlash) {
  options.wirelistKind = kHspice;
  options.dracula = true;
  EXPECT_EQ(Pass("X1 A /B SUB\n*.END"), "\nX1 A /B SUB\n*.END\n");
  config.noSlash = 1;
  EXPECT_EQ(Pass("X1 A /B SUB\n*.END"), "\nX1 A SUB\n*.END\n");
}

TEST_F(PostProcess, ParameterWordsSplitWidthAndLength) {
  config.wlSplit = 1;
  EXPECT_EQ(ParameterWords("X1 A SUB Wl1=2/3 Wl=4\\5 wl=WL2 Wl=7 Wl=/3 Wl=2/ WL=1/2"),
            "X1 A SUB PARAMS: L1=3 W1=2 L=5U W=4U L2=L2 W2=W2 WL=1/2");
  EXPECT_EQ(currentInstance, "X1");
  config.wlSplit = 0;
  EXPECT_EQ(ParameterWords("X1 A SUB Wl1=2/3", false), "X1 A SUB Wl1=2/3");
}

TEST_F(PostProcess, SplitWordsAreQuotedInThePass) {
  config.wlSplit = 1;
  EXPECT_EQ(Pass("X1 A SUB Wl=WL1\n*.END"), "\nX1 A SUB PARAMS: L1={L1} W1={W1}\n*.END\n");
}

// ---- element words ----

TEST_F(PostProcess, ElementWordsAreQuotedAndBlanksReduced) {
  auto words = [&](std::string line, const std::string& letter) {
    RewriteElementWords(line, letter, settings);
    return std::string(TrimRight(line));
  };
  EXPECT_EQ(words("R1  A   B V=X", "R"), "R1 A B V={X}");
  EXPECT_EQ(words("B1  A   B V=X", "B"), "B1 A B V=X");
  EXPECT_EQ(words(".PARAM  V=X", "."), ".PARAM V=X");
  EXPECT_EQ(words("*x  V=X", "*"), "*x V=X");
  options.hdlSpiceSources = 1;
  EXPECT_EQ(words("R1  A   B V=X", "R"), "R1 A B V=X");
}

TEST_F(PostProcess, DraculaElementWords) {
  options.wirelistKind = kHspice;
  options.dracula = true;
  const char* deck = "R1 A B 1 NOT4ECAD\nR2 A B M=2X\nR3 A B V='X'\nQ1 C B E NPN M=2 $EA=M*3\n*.END\n";
  // V='X' loses its quotes, and then its X like a multiplier "2X": the rest, empty, counts as a number.
  EXPECT_EQ(Pass(deck), "\n\nR2 A B M=2\nR3 A B V=\nQ1 C B E NPN M=2 $EA='2*3'\n*.END\n");
}

TEST_F(PostProcess, BipolarLinesOutsideDraculaAreElementsOnly) {
  EXPECT_EQ(Pass("Q1 C B E NPN L=1 X=A\nB1 A B N L=1 K=A\n*.END"),
            "\nQ1 C B E NPN L=1 X={A}\nB1 A B N L=1U K=A\n*.END\n");
}

// ---- folding ----

TEST_F(PostProcess, NoFoldingWithoutHdlSources) {
  std::string line = "R1 " + std::string(200, 'x') + " " + std::string(50, 'y');
  EXPECT_EQ(Fold(line + "  "), line + "\n");
  EXPECT_EQ(Fold("\n"), "\n");
}

TEST_F(PostProcess, FoldingBreakRules) {
  options.hdlSpiceSources = 1;
  std::string shortLine = "R1 " + std::string(73, 'x');  // 76 characters
  EXPECT_EQ(Fold(shortLine), shortLine + "\n");
  // 77 characters count as long: cut behind the last blank, which stays in front.
  std::string exact = "R1 " + std::string(74, 'x');
  EXPECT_EQ(Fold(exact), "R1 \n+" + std::string(74, 'x') + "\n");
  // A blank at position 77: the cut is there and the rest begins with it.
  std::string atBlank = std::string(77, 'a') + " bbb";
  EXPECT_EQ(Fold(atBlank), std::string(77, 'a') + "\n+ bbb\n");
  std::string noBlank(200, 'z');
  EXPECT_EQ(Fold(noBlank), noBlank + "\n");
  std::string comment = "* " + std::string(40, 'c') + " " + std::string(100, 'c');
  EXPECT_EQ(Fold(comment), comment + "\n");
  EXPECT_EQ(Fold("\n"), "\n");
}

TEST_F(PostProcess, FoldingOverSeveralLines) {
  options.hdlSpiceSources = 1;
  const std::string word = "ABCDEFGHIJ";
  std::string line, seven, six;
  for (int i = 0; i < 20; ++i) line += (i ? " " : "") + word;
  for (int i = 0; i < 7; ++i) seven += word + " ";
  for (int i = 0; i < 6; ++i) six += (i ? " " : "") + word;
  EXPECT_EQ(Fold(line), seven + "\n+" + seven + "\n+" + six + "\n");
  // In the pass, values are not quoted under -__.
  EXPECT_EQ(Pass("R1 A B V=X\n*.END"), "\nR1 A B V=X\n*.END\n");
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

// ---- files that cannot be read or replaced ----

class PostProcessFiles : public PostProcess {
 protected:
  void SetUp() override {
    PostProcess::SetUp();
    root_ = fs::temp_directory_path() / ("vesk-post-" + std::to_string(::getpid()));
    fs::remove_all(root_);
    fs::create_directories(root_ / "Sym");
    fs::create_directories(root_ / "Out");
    old_ = fs::current_path();
    fs::current_path(root_);
  }
  void TearDown() override {
    fs::current_path(old_);
    fs::remove_all(root_);
  }
  static std::string Read(const std::string& path) {
    std::string text;
    ReadWholeFile(path, text);
    return text;
  }
  fs::path root_, old_;
};

TEST_F(PostProcessFiles, MissingPathOrFileGivesTheMessages) {
  testing::internal::CaptureStdout();
  PostProcessFile("", settings);
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "No Project found to PostProcess... \n");
  testing::internal::CaptureStdout();
  PostProcessFile("Out\\none.cir", settings);
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "Error: Could not open data file Out\\none.cir\n");
  EXPECT_FALSE(fs::exists("Out/none.cir"));
}

TEST_F(PostProcessFiles, DeckInAFolderThatTakesNoFilesStaysWhole) {
  std::string before;
  if (!ReadWholeFile("/proc/version", before)) GTEST_SKIP() << "no /proc here";
  PostProcessFile("/proc/version", settings);
  EXPECT_EQ(Read("/proc/version"), before);
}

}  // namespace
