// Device card rewrites (MOS, B, Dracula bipolar) and the word services QuoteValue,
// DraculaWord, ComputeGeometry and IsPlainArithmetic.
#include "post/device_lines.h"

#include <gtest/gtest.h>

#include "post/line_words.h"
#include "post/post_process.h"

namespace {

class DeviceLines : public ::testing::Test {
 protected:
  void SetUp() override { options.wirelistKind = kPspice; }

  // A device line as the pass writes it: the card rewrite, then the element words under
  // the letter of the statement (a + line keeps that of the line ahead).
  std::string Card(const std::string& line) {
    if (line[0] != '+') letter = UpperCopy(line.substr(0, 1));
    std::string text = line;
    RewriteDeviceCard(text, widthAndLength, settings);
    RewriteElementWords(text, letter, settings);
    return std::string(TrimRight(text));
  }
  std::string Quoted(std::string word) {
    QuoteValue(word, settings);
    return word;
  }
  void UseHspice() {
    options.wirelistKind = kHspice;
    config.quoteOpen = config.quoteClose = "'";
  }
  void UseDracula() {
    UseHspice();
    options.dracula = true;
  }

  WireOptions options;
  SpiceConfig config;
  std::unordered_map<std::string, std::string> internalNames;
  std::string currentInstance;
  PostSettings settings{options, config, internalNames, currentInstance};
  std::string widthAndLength;
  std::string letter;
};

// ---- QuoteValue ----

TEST_F(DeviceLines, QuoteValueMarksExpressionsPerDialect) {
  struct Case {
    int32_t kind;
    bool noQuotes;
    const char* word;
    const char* quoted;
  };
  const Case cases[] = {
      {kPspice, false, "VT=VTH0", "VT={VTH0}"}, {kPspice, false, "K=2*3", "K={2*3}"},
      {kHspice, false, "VT=VTH0", "VT='VTH0'"}, {kKelpo, false, "VT=VTH0", "VT='VTH0'"},
      // Numbers and special words stay.
      {kPspice, false, "W=10U", "W=10U"}, {kPspice, false, "W=1E-5", "W=1E-5"}, {kPspice, false, "W=", "W="},
      {kPspice, false, "NCH", "NCH"}, {kPspice, false, "$.MODEL=ABC", "$.MODEL=ABC"},
      {kPspice, false, "IS=XYZ", "IS=XYZ"}, {kPspice, false, "MODEL=NCH", "MODEL=NCH"},
      {kPspice, false, "model=nch", "model=nch"}, {kPspice, false, "MODELX=nch", "MODELX=nch"},
      {kPspice, false, "{A}=B", "{A}=B"}, {kPspice, false, "Model=nch", "Model={nch}"},
      // Half-quoted values are completed; HSPICE quotes braces, Kelpo keeps them.
      {kPspice, false, "A={X}", "A={X}"}, {kPspice, false, "A={X", "A={X}"}, {kPspice, false, "A=X}", "A={X}"},
      {kHspice, false, "A='X'", "A='X'"}, {kHspice, false, "A='X", "A='X'"}, {kHspice, false, "A=X'", "A='X'"},
      {kHspice, false, "A={X}", "A='{X}'"}, {kKelpo, false, "A={X}", "A={X}"}, {kKelpo, false, "A={X", "A={X}"},
      {kKelpo, false, "A=X}", "A={X}"}, {kKelpo, false, "A='X", "A='X'"},
      // Berkeley and the no-quotes setting leave every word.
      {kBerkeley, false, "VT=VTH0", "VT=VTH0"}, {kHspice, true, "VT=VTH0", "VT=VTH0"},
  };
  for (const Case& c : cases) {
    options.wirelistKind = c.kind;
    config.noQuotes = c.noQuotes;
    config.quoteOpen = config.quoteClose = c.kind == kPspice ? "" : "'";
    EXPECT_EQ(Quoted(c.word), c.quoted) << c.kind << " " << c.word;
  }
}

// ---- DraculaWord, IsPlainArithmetic ----

TEST_F(DeviceLines, DraculaWordDropsQuotesAndMultiplierX) {
  UseDracula();
  auto dracula = [&](std::string word) {
    DraculaWord(word, settings);
    return word;
  };
  EXPECT_EQ(dracula("M=2X"), "M=2");
  EXPECT_EQ(dracula("M=2x"), "M=2");
  EXPECT_EQ(dracula("M='2X'"), "M=2");
  EXPECT_EQ(dracula("K='A+B'"), "K=A+B");
  EXPECT_EQ(dracula("N=AX"), "N=AX");
  EXPECT_EQ(dracula("=2X"), "=2X");
  EXPECT_EQ(dracula("M="), "M=");
  EXPECT_EQ(dracula("2X"), "2X");
}

TEST(IsPlainArithmeticTest, AllowsNumbersSuffixesAndSizeLetters) {
  EXPECT_TRUE(IsPlainArithmetic("2*3"));
  EXPECT_TRUE(IsPlainArithmetic("2U*l"));
  EXPECT_TRUE(IsPlainArithmetic("W*L+M"));
  EXPECT_TRUE(IsPlainArithmetic("1E-5*2MEG"));
  EXPECT_TRUE(IsPlainArithmetic(""));
  EXPECT_FALSE(IsPlainArithmetic("A*2"));
  EXPECT_FALSE(IsPlainArithmetic("2*VTH"));
  EXPECT_FALSE(IsPlainArithmetic("2UF*3"));
}

// ---- ComputeGeometry ----

TEST_F(DeviceLines, ComputeGeometrySubstitutesSizes) {
  EXPECT_EQ(ComputeGeometry("L*W", "1", "2", 0, "AS", "5", "{", "}", settings), "");
  EXPECT_EQ(ComputeGeometry("", "1", "2", 1, "AS", "5", "{", "}", settings), "AS=5 ");
  EXPECT_EQ(ComputeGeometry("", "1", "2", 1, "AS", "", "{", "}", settings), "");
  EXPECT_EQ(ComputeGeometry("l*w", "1", "2", 1, "AS", "5", "{", "}", settings), "AS=1*2 ");
  EXPECT_EQ(ComputeGeometry("L*W", "LMIN", "2", 1, "AS", "", "{", "}", settings), "AS={LMIN*2} ");
  // A length that holds a W is itself replaced by the width.
  EXPECT_EQ(ComputeGeometry("L+W", "W1", "3", 1, "PD", "", "'", "'", settings), "PD='31+3' ");
  config.noQuotes = 1;
  EXPECT_EQ(ComputeGeometry("L*W", "LMIN", "2", 1, "AS", "", "{", "}", settings), "AS=LMIN*2 ");
}

// ---- MOS cards ----

TEST_F(DeviceLines, LengthAndWidthGetUnitsAndQuotes) {
  EXPECT_EQ(Card("M1 D G S B NCH L=1 W=10 M=2"), "M1 D G S B NCH L=1U W=10U M=2");
  EXPECT_EQ(Card("M1 D G S B NCH l=LMIN w=2u"), "M1 D G S B NCH L={LMIN} W=2u");
  EXPECT_EQ(widthAndLength, "LMIN,2u");
  UseHspice();
  EXPECT_EQ(Card("M1 D G S B NCH L='LMIN' K='A+B'"), "M1 D G S B NCH L='LMIN' K='A+B'");
}

TEST_F(DeviceLines, StripUnitsTakesUnitsOff) {
  config.stripUnits = true;
  EXPECT_EQ(Card("M1 D G S B NCH L=1U W=2u"), "M1 D G S B NCH L=1 W=2u");
}

TEST_F(DeviceLines, GeometryFormulasAreAddedOrReplaceTheirWords) {
  config.asName = config.adName = "L*W";
  // Without CALC_AREA the words stay and nothing is added.
  EXPECT_EQ(Card("M1 D G S B NCH L=1 W=2 AS=5"), "M1 D G S B NCH L=1U W=2U AS=5");
  config.calcArea = 1;
  config.adName = "";
  config.asName = "2*W";
  EXPECT_EQ(Card("M1 D G S B NCH L=1 W=10"), "M1 D G S B NCH L=1U W=10U AS={2*10}");
  config.asName = "L*W";
  config.nrdName = "0.5";
  widthAndLength.clear();
  EXPECT_EQ(Card("M1 D G S B NCH"), "M1 D G S B NCH AS={*} NRD=0.5");  // empty sizes
  config.nrdName = "";
  config.pdName = "2*(L+W)";
  EXPECT_EQ(Card("M1 D G S B NCH L=1 W=2 as=5"), "M1 D G S B NCH L=1U W=2U as={1*2} PD={2*(1+2)}");
  config.asName = config.pdName = "";
  EXPECT_EQ(Card("M1 D G S B NCH L=1 W=2 AS=5 nrs=3"), "M1 D G S B NCH L=1U W=2U AS=5 nrs=3");  // no formula
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
  EXPECT_EQ(Card("M1 D G S B NCH WL=1/2"), "M1 D G S B NCH WL={1/2} W=1U L=2U");
  widthAndLength.clear();
  EXPECT_EQ(Card("M1 D G S B NCH WL=1\\2"), "M1 D G S B NCH WL={1\\2} W=1U L=2U");
  widthAndLength.clear();
  EXPECT_EQ(Card("M1 D G S B NCH wl=WL"), "M1 D G S B NCH wl={WL} W={W} L={L}");
}

TEST_F(DeviceLines, WidthLengthSplitFillsExistingSlots) {
  config.wlSplit = 1;
  config.calcArea = 1;
  config.asName = "L*W";
  // The W slot lies behind the WL word and is rewritten there; the L slot lies ahead
  // and keeps its value; the formula sees the split values.
  EXPECT_EQ(Card("M1 D G S B NCH L=7 WL=1/2 W=9"), "M1 D G S B NCH L=7U WL={1/2} W=1U AS={2*1}");
  EXPECT_EQ(widthAndLength, "2,1");
}

TEST_F(DeviceLines, SingleWidthLengthValueBecomesTheWidth) {
  config.wlSplit = 1;
  config.calcArea = 1;
  config.asName = "L*W";
  EXPECT_EQ(Card("M1 D G S B NCH WL=5"), "M1 D G S B NCH W=5U AS={1.0*5}");
  EXPECT_EQ(widthAndLength, "1.0,5");
}

TEST_F(DeviceLines, WidthLengthIsNotSplitUnlessTheSettingIsOne) {
  config.wlSplit = 2;
  EXPECT_EQ(Card("M1 D G S B NCH WL=1/2"), "M1 D G S B NCH WL={1/2}");
}

TEST_F(DeviceLines, ModelWordStaysInTheHeadOnlyAheadOfTheParameters) {
  config.stripTransSize = true;
  EXPECT_EQ(Card("M1 D G S B MODEL=NCH L=1 W=2"), "M1 D G S B MODEL=NCH");
  EXPECT_EQ(Card("M1 D G S B NCH L=1 MODEL=NCH"), "M1 D G S B NCH");
  config.stripTransSize = false;
  EXPECT_EQ(Card("M1 D G S B L=1 MODEL=NCH"), "M1 D G S B L=1U MODEL=NCH");
}

TEST_F(DeviceLines, TransSizeKeepsOnlyTheHead) {
  config.stripTransSize = true;
  config.calcArea = 1;
  config.asName = "L*W";
  EXPECT_EQ(Card("M1 D G S B NCH L=1 W=2 AS=3"), "M1 D G S B NCH");
}

TEST_F(DeviceLines, BracedValueStaysBraced) {
  EXPECT_EQ(Card("M1 D G S B NCH K={2*3} L={LMIN}"), "M1 D G S B NCH K={2*3} L={LMIN}");
  config.noQuotes = 1;
  EXPECT_EQ(Card("M1 D G S B NCH K=A*3 L={LMIN}"), "M1 D G S B NCH K=A*3 L={LMIN}");
}

TEST_F(DeviceLines, BLinesGetUnitsButNoQuotingOfOtherWords) {
  EXPECT_EQ(Card("B1 D G S NCH L=1 K=A*2"), "B1 D G S NCH L=1U K=A*2");
}

TEST_F(DeviceLines, DraculaDropsGeometryWordsAndAddsNoneForThem) {
  UseDracula();
  config.calcArea = 1;
  config.asName = "L*W";
  config.adName = "L*W";
  EXPECT_EQ(Card("M1 D G S B NCH L=1 W=2 AS=5 PD=3"), "M1 D G S B NCH L=1U W=2U AD='1*2'");
}

// ---- Dracula bipolar cards ----

TEST_F(DeviceLines, BipolarEmitterAreaTakesTheMultiplier) {
  UseDracula();
  std::string out;
  RewriteBipolarParameters(out, {"M=2", "$EA=M*3", "AREA='1'", "OFF", ""}, settings);
  EXPECT_EQ(out, "M=2 $EA=2*3 AREA=1 OFF  ");
  out.clear();
  RewriteBipolarParameters(out, {"M=2", "$EA=m*VAR", "$EA=4", "M=K"}, settings);
  EXPECT_EQ(out, "M=2 $EA='2*VAR' $EA=4  M='K' ");
}

TEST_F(DeviceLines, BipolarCardInADraculaDeck) {
  UseDracula();
  EXPECT_EQ(Card("Q1 C B E NPN M=2X $EA=M*3"), "Q1 C B E NPN M=2 $EA='2X*3'");
  EXPECT_EQ(Card("Q1 C B E NPN M=2 $EA=M*3"), "Q1 C B E NPN M=2 $EA='2*3'");
}

}  // namespace
