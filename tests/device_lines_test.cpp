// Device card rewrites where whole decks do not reach: the quoting table of each dialect,
// Dracula words, plain arithmetic, geometry substitution, "+" lines, WL words and the model word
// under TRANS_SIZE. The deck device tests pin the cards of each configuration.
#include "post/device_lines.h"

#include <gtest/gtest.h>

#include "gen/dialect_of.h"
#include "post/line_words.h"
#include "post/post_process.h"

namespace {

class DeviceLines : public ::testing::Test {
 protected:
  void SetUp() override { options.wirelistKind = kPspice; }

  // A device line as the pass writes it: the card rewrite, then the element words under
  // the letter of the statement (a + line keeps that of the line ahead).
  std::string Card(const std::string& line) {
    if (line[0] != '+') letter = UpperText(line.substr(0, 1));
    std::string text = line;
    RewriteDeviceCard(text, widthAndLength, settings);
    RewriteElementWords(text, letter, settings);
    return std::string(TrimRight(text));
  }
  void UseDracula() {
    options.wirelistKind = kHspice;
    config.quoteOpen = config.quoteClose = "'";
    options.dracula = true;
    options.dialect = DialectOf(options);
  }

  WireOptions options;
  SpiceConfig config;
  std::unordered_map<std::string, std::string> internalNames;
  std::string currentInstance;
  PostSettings settings{options, config, internalNames, currentInstance};
  std::string widthAndLength;
  std::string letter;
};

TEST_F(DeviceLines, QuoteValueMarksExpressionsPerDialect) {
  struct Case {
    int32_t kind;
    bool noQuotes;
    const char* word;
    const char* quoted;
  };
  const Case cases[] = {
      {kPspice, false, "VT=VTH0", "VT={VTH0}"},
      {kPspice, false, "K=2*3", "K={2*3}"},
      {kHspice, false, "VT=VTH0", "VT='VTH0'"},
      {kKelpo, false, "VT=VTH0", "VT='VTH0'"},
      // Numbers and special words stay.
      {kPspice, false, "W=10U", "W=10U"},
      {kPspice, false, "W=1E-5", "W=1E-5"},
      {kPspice, false, "W=", "W="},
      {kPspice, false, "NCH", "NCH"},
      {kPspice, false, "$.MODEL=ABC", "$.MODEL=ABC"},
      {kPspice, false, "IS=XYZ", "IS=XYZ"},
      {kPspice, false, "MODEL=NCH", "MODEL=NCH"},
      {kPspice, false, "model=nch", "model=nch"},
      {kPspice, false, "MODELX=nch", "MODELX=nch"},
      {kPspice, false, "{A}=B", "{A}=B"},
      {kPspice, false, "Model=nch", "Model={nch}"},
      // Half-quoted values are completed; HSPICE quotes braces, Kelpo keeps them.
      {kPspice, false, "A={X}", "A={X}"},
      {kPspice, false, "A={X", "A={X}"},
      {kPspice, false, "A=X}", "A={X}"},
      {kHspice, false, "A='X'", "A='X'"},
      {kHspice, false, "A='X", "A='X'"},
      {kHspice, false, "A=X'", "A='X'"},
      {kHspice, false, "A={X}", "A='{X}'"},
      {kKelpo, false, "A={X}", "A={X}"},
      {kKelpo, false, "A={X", "A={X}"},
      {kKelpo, false, "A=X}", "A={X}"},
      {kKelpo, false, "A='X", "A='X'"},
      // Berkeley and the no-quotes setting leave every word.
      {kBerkeley, false, "VT=VTH0", "VT=VTH0"},
      {kHspice, true, "VT=VTH0", "VT=VTH0"},
  };
  for (const Case& c : cases) {
    options.wirelistKind = c.kind;
    options.dialect = DialectOf(options);
    config.noQuotes = c.noQuotes;
    config.quoteOpen = config.quoteClose = c.kind == kPspice ? "" : "'";
    std::string word = c.word;
    QuoteValue(word, settings);
    EXPECT_EQ(word, c.quoted) << c.kind << " " << c.word;
  }
}

TEST_F(DeviceLines, DraculaWordDropsQuotesAndMultiplierX) {
  UseDracula();
  const std::pair<const char*, const char*> cases[] = {
      {"M=2X", "M=2"},  {"M=2x", "M=2"}, {"M='2X'", "M=2"}, {"K='A+B'", "K=A+B"},
      {"N=AX", "N=AX"}, {"=2X", "=2X"},  {"M=", "M="},      {"2X", "2X"}};
  for (const auto& [word, expected] : cases) {
    std::string text = word;
    DraculaWord(text, settings);
    EXPECT_EQ(text, expected) << word;
  }
  EXPECT_EQ(Card("Q1 C B E NPN M=2X $EA=M*3"), "Q1 C B E NPN M=2 $EA='2X*3'");
  std::string out;
  RewriteBipolarParameters(out, {"M=2", "$EA=m*VAR", "$EA=4", "M=K"}, settings);
  EXPECT_EQ(out, "M=2 $EA='2*VAR' $EA=4  M='K' ");
}

TEST(IsPlainArithmeticTest, AllowsNumbersSuffixesAndSizeLetters) {
  for (const char* text : {"2*3", "2U*l", "W*L+M", "1E-5*2MEG", ""})
    EXPECT_TRUE(IsPlainArithmetic(text)) << text;
  for (const char* text : {"A*2", "2*VTH", "2UF*3"}) EXPECT_FALSE(IsPlainArithmetic(text)) << text;
}

TEST_F(DeviceLines, ComputeGeometrySubstitutesSizes) {
  EXPECT_EQ(ComputeGeometry("L*W", "1", "2", 0, "AS", "5", "{", "}", settings), "");
  EXPECT_EQ(ComputeGeometry("", "1", "2", 1, "AS", "5", "{", "}", settings), "AS=5 ");
  EXPECT_EQ(ComputeGeometry("", "1", "2", 1, "AS", "", "{", "}", settings), "");
  // A length that holds a W is itself replaced by the width.
  EXPECT_EQ(ComputeGeometry("L+W", "W1", "3", 1, "PD", "", "'", "'", settings), "PD='31+3' ");
  config.noQuotes = 1;
  EXPECT_EQ(ComputeGeometry("L*W", "LMIN", "2", 1, "AS", "", "{", "}", settings), "AS=LMIN*2 ");
}

TEST_F(DeviceLines, ContinuationLineSeesTheSizesOfItsStatement) {
  config.calcArea = 1;
  config.asName = "L*W";
  EXPECT_EQ(Card("M1 D G S B NCH"), "M1 D G S B NCH AS={*}");
  EXPECT_EQ(Card("+ L=1 W=2"), "+ L=1U W=2U AS={1*2}");
  EXPECT_EQ(widthAndLength, "1,2");
  EXPECT_EQ(Card("+ M=2"), "+ M=2 AS={1*2}");
}

TEST_F(DeviceLines, WidthLengthWordIsSplit) {
  config.wlSplit = 1;
  EXPECT_EQ(Card("M1 D G S B NCH WL=1\\2"), "M1 D G S B NCH WL={1\\2} W=1U L=2U");
  widthAndLength.clear();
  EXPECT_EQ(Card("M1 D G S B NCH wl=WL"), "M1 D G S B NCH wl={WL} W={W} L={L}");
  // The W slot lies behind the WL word and is rewritten there; the L slot lies ahead
  // and keeps its value; the formula sees the split values.
  config.calcArea = 1;
  config.asName = "L*W";
  widthAndLength.clear();
  EXPECT_EQ(Card("M1 D G S B NCH L=7 WL=1/2 W=9"), "M1 D G S B NCH L=7U WL={1/2} W=1U AS={2*1}");
  EXPECT_EQ(widthAndLength, "2,1");
}

TEST_F(DeviceLines, ModelWordStaysInTheHeadOnlyAheadOfTheParameters) {
  config.stripTransSize = true;
  EXPECT_EQ(Card("M1 D G S B MODEL=NCH L=1 W=2"), "M1 D G S B MODEL=NCH");
  EXPECT_EQ(Card("M1 D G S B NCH L=1 MODEL=NCH"), "M1 D G S B NCH");
  config.stripTransSize = false;
  EXPECT_EQ(Card("M1 D G S B L=1 MODEL=NCH"), "M1 D G S B L=1U MODEL=NCH");
}

}  // namespace
