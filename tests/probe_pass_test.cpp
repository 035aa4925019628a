// The probe pass's line loop where whole decks do not reach: blank lines, .ENDS, carriage
// returns, model cards, instances behind the analysis or across "+" lines, definitions met
// twice or never, joined items, .mc lines and nested definitions. Each dialect's form of the
// statements is pinned by the deck probe tests.
#include "post/probe_pass.h"
#include "post/text_queue.h"

#include <gtest/gtest.h>

#include <random>
#include <sstream>

namespace {

std::string Pass(const std::string& text, ProbePassState& state, std::ostringstream& console) {
  return ProbeProcessText(text, state, PrintSettings(), console);
}

TEST(ProbePassTest, LineLoopCornerCases) {
  const std::pair<const char*, const char*> cases[] = {
      {"", " \n"},
      {"A\n\n\n\n\nB\n", "A\n\n\nB\n \n"},
      {"A\n\n\n\nB\n", "A\n\nB\n \n"},
      {".SUBCKT A 1\nR1 1 0 1\n.ENDS\n\nR2 1 0 1\n", ".SUBCKT A 1\nR1 1 0 1\n.ENDS\n\nR2 1 0 1\n \n"},
      {".subckt A 1\n.ends\nR2 1 0 1", ".subckt A 1\n.ends\n\nR2 1 0 1\n \n"},
      {"R1 1 0 1\r\n\r\n\r\nR2 1 0 1\r\n", "R1 1 0 1\n\nR2 1 0 1\n \n"},
      // A model card loses the comment lines inside it, those that a "+" line follows; comment
      // lines behind its last line stand behind the card and stay.
      {".model X NPN (BF=100) * comment\n* note\n; other note\n+ IS=1E-15\n* behind the card\n"
       "R1 1 0 1\n* after the card\n",
       ".model X NPN (BF=100) * comment\n+ IS=1E-15\n* behind the card\nR1 1 0 1\n* after the card\n \n"},
      {".model A D\n* one\n* two\n+ IS=1\n.model B D\n* three\n; four\n.model C D\n*.END\n",
       ".model A D\n+ IS=1\n.model B D\n* three\n; four\n.model C D\n\n*.END\n \n"},
      // Without "*.END" or without an analysis no statement is written.
      {".SUBCKT A 1\n.ENDS\n.SUBCKT A 1\n.ENDS\n* voltage probe on node :  OUT\n.tran 1n 1u\n",
       ".SUBCKT A 1\n.ENDS\n\n.SUBCKT A 1\n.ENDS\n\n.tran 1n 1u\n \n"},
      {"* voltage probe on node :  OUT\nX1 1 A\n*.END\n", "X1 1 A\n\n*.END\n \n"},
      // Every top-level instance is reached, also one behind the analysis line.
      {".SUBCKT A 1\n* voltage probe on node :  N1\n.ENDS\nX1 IN A\nX2 OUT A\n.tran 1n 1u\nX3 MID A\n*.END\n",
       ".SUBCKT A 1\n.ENDS\n\nX1 IN A\nX2 OUT A\n.tran 1n 1u\nX3 MID A\n"
       ".PROBE V([X1.N1])\n.PROBE V([X2.N1])\n.PROBE V([X3.N1])\n\n*.END\n \n"},
      // The called subcircuit stands ahead of the parameters, also on a "+" line.
      {".SUBCKT AMP 1\n* voltage probe on node :  N1\n.ENDS\nX1 IN OUT\n+ AMP PARAMS: GAIN=2\n"
       "X2 IN OUT AMP GAIN = 3\nX3 IN OUT AMP G=1\n.tran 1n 1u\n*.END\n",
       ".SUBCKT AMP 1\n.ENDS\n\nX1 IN OUT\n+ AMP PARAMS: GAIN=2\nX2 IN OUT AMP GAIN = 3\nX3 IN OUT AMP G=1\n"
       ".tran 1n 1u\n.PROBE V([X1.N1])\n.PROBE V([X2.N1])\n.PROBE V([X3.N1])\n\n*.END\n \n"},
      // An instance finds the nearest definition ahead of it; an unknown one gives nothing.
      {".SUBCKT A 1\n* voltage probe on node :  OLD\n.ENDS\n"
       ".SUBCKT B 1\n* voltage probe on node :  P\n.ENDS\n"
       ".SUBCKT A 1\n* voltage probe on node :  NEW\n.ENDS\nX1 1 A\nX2 1 NOPE\n.tran 1n 1u\n"
       ".SUBCKT A 1\n* voltage probe on node :  LATER\n.ENDS\n*.END\n",
       ".SUBCKT A 1\n.ENDS\n\n.SUBCKT B 1\n.ENDS\n\n.SUBCKT A 1\n.ENDS\n\nX1 1 A\nX2 1 NOPE\n.tran 1n 1u\n"
       ".SUBCKT A 1\n.ENDS\n\n.PROBE V([X1.NEW])\n\n*.END\n \n"},
      // Instances met before the first probe lead to it as those behind it do: the one inside a
      // definition, the top-level ones ahead of a top-level probe. A top-level instance ahead of a
      // definition's first probe joins that definition's scope, and so gets no statement.
      {".SUBCKT B 1\n.ENDS\n.SUBCKT A 1\nX7 1 B\n* voltage probe on node :  N1\n.ENDS\nX1 1 A\n.ac dec 10 1 1g\n"
       "*.END\n",
       ".SUBCKT B 1\n.ENDS\n\n.SUBCKT A 1\nX7 1 B\n.ENDS\n\nX1 1 A\n.ac dec 10 1 1g\n"
       ".PROBE/CSDF\n+ VDB([X1.N1]) VP([X1.N1])\n\n*.END\n \n"},
      {".SUBCKT A 1\n* current probe\n.ENDS\nX1 1 A\nX2 2 A\n* voltage probe on node :  OUT\nX3 3 A\n.tran 1n 1u\n"
       "*.END\n",
       ".SUBCKT A 1\n* current probe\n.ENDS\n\nX1 1 A\nX2 2 A\nX3 3 A\n.tran 1n 1u\n.PROBE V([OUT])\n\n*.END\n \n"},
      {"X1 1 A\n.SUBCKT A 1\n* voltage probe on node :  N1\n.ENDS\n.tran 1n 1u\n*.END\n",
       "X1 1 A\n.SUBCKT A 1\n.ENDS\n\n.tran 1n 1u\n\n*.END\n \n"},
      // Items joined with their "+" lines, each once, newest first.
      {".probe/csdf V(1)\n+ V(2)\n.probe/csdf V(1)\n.probe/csdf I(R1)\n*.end\n",
       "+ V(2)\n.PROBE  I(R1)\n.PROBE  V(1)\n.PROBE  V(1)  V(2)\n\n*.end\n \n"},
  };
  for (const auto& [text, expected] : cases) {
    ProbePassState state;
    std::ostringstream console;
    EXPECT_EQ(Pass(text, state, console), expected) << text;
  }
}

// Every top-level instance line opens a scope record of its own, and the records are made in
// blocks: across several blocks each instance keeps its record and gets its statement once, in
// the order of the deck.
TEST(ProbePassTest, ManyTopLevelInstancesEachGetTheirStatement) {
  for (int count : {1, 255, 256, 257, 700}) {
    std::string deck = ".SUBCKT A 1 2\n* voltage probe on node : N1\nR1 1 2 1\n.ENDS\n";
    std::string statements;
    for (int i = 1; i <= count; ++i) {
      deck += "X" + std::to_string(i) + " 1 2 A\n";
      statements += ".PROBE V([X" + std::to_string(i) + ".N1])\n";
    }
    ProbePassState state;
    std::ostringstream console;
    std::string output = Pass(deck + ".tran 1n 1u\n*.END\n", state, console);
    size_t at = output.find(".tran 1n 1u\n");
    ASSERT_NE(at, std::string::npos) << count;
    EXPECT_EQ(output.substr(at), ".tran 1n 1u\n" + statements + "\n*.END\n \n") << count;
  }
}

TEST(ProbePassTest, MonteCarloLineSetsTheAnalysisItNames) {
  struct Case {
    const char* line;
    bool ac, dc, tran;
  };
  const Case cases[] = {{".mc 10 tran V(OUT) YMAX", false, false, true},
                        {".mc 5 .AC V(OUT)", true, false, false},
                        {".mc 5 Dc V(OUT)", false, true, false},
                        {".mc 5 noise V(OUT)", false, false, false},
                        {".mcx 5 tran", false, false, false},
                        {".TRAN 1n 10u", false, false, false}};
  for (const Case& c : cases) {
    ProbePassState state;
    std::ostringstream console;
    Pass(std::string("X1 IN OUT A\n") + c.line + "\n*.END\n", state, console);
    EXPECT_EQ(state.hasAcAnalysis, c.ac) << c.line;
    EXPECT_EQ(state.hasDcAnalysis, c.dc) << c.line;
    EXPECT_EQ(state.hasTranAnalysis, c.tran) << c.line;
  }
}

TEST(ProbePassTest, DuplicatesAreReportedByFullPath) {
  ProbePassState state;
  std::ostringstream console;
  const std::string output = Pass(
      ".SUBCKT A 1\n.model Q1 NPN (BF=100)\n.model Q1 NPN (BF=100)\n.ENDS\n.SUBCKT B 1\n.model Q1 NPN "
      "(BF=100)\n"
      ".ENDS\n.SUBCKT A 1\n.ENDS\n.model Q1 NPN\n.MODEL Q1 PNP\n.model E\n.model E\n",
      state, console);
  EXPECT_EQ(console.str(),
            "Duplicate sub-circuit definition: A\n"
            "Duplicate model definition: \n"
            "Duplicate model definition: Q1\n"
            "Duplicate model definition: A.Q1\n");
  EXPECT_NE(output.find(".MODEL Q1 PNP\n"), std::string::npos);
  EXPECT_TRUE(state.duplicateModels.Empty());
  EXPECT_TRUE(state.duplicateSubckts.Empty());

  ProbePassState nested;
  std::ostringstream nestedConsole;
  Pass(
      ".SUBCKT OUTER 1\n.SUBCKT INNER 1\n.model M D\n.ENDS\n.model M D\n.model M D\n.ENDS\n.SUBCKT INNER "
      "1\n.ENDS\n",
      nested, nestedConsole);
  EXPECT_EQ(nestedConsole.str(), "Duplicate model definition: OUTER.M\n");
  EXPECT_TRUE(nested.subcktNames.Contains("OUTER.INNER"));
  EXPECT_TRUE(nested.modelNames.Contains("OUTER.INNER.M"));
  EXPECT_TRUE(nested.subcktNames.Contains("INNER"));
}

TEST(ProbePassTest, CalledSubcktIsTheLastWordThatIsNotAParameter) {
  const std::pair<const char*, const char*> cases[] = {{"X1 N1 N2 AMP", "AMP"},
                                                       {"X1 N1 N2 AMP PARAMS: GAIN=2", "AMP"},
                                                       {"X1 N1 N2 AMP params: GAIN=2", "AMP"},
                                                       {"X1 N1 N2 AMP GAIN=2 W=1", "AMP"},
                                                       {"X1 N1 N2 AMP GAIN =2", "AMP"},
                                                       {"X1 N1 N2 AMP GAIN = 2", "AMP"},
                                                       {"X1  N1\tAMP ", "AMP"},
                                                       {"X1 A B =2", "A"},
                                                       {"X1 N1 =2", ""},
                                                       {"X1 =2", ""},
                                                       {"X1", ""},
                                                       {"X1 GAIN=2", ""}};
  for (const auto& [line, called] : cases) EXPECT_EQ(CalledSubckt(line), called) << line;
}

}  // namespace

namespace {

// The runs of lines the pass copies as they stand must come out as the line loop makes them:
// the whole text at hand (the longest runs) against the same text in pieces of a few
// characters (no run at all: every line goes through the loop), over random decks.
TEST(ProbePassTest, RunsOfPlainLinesComeOutAsTheLineLoopMakesThem) {
  const char* lines[] = {"X1 1 A", "x2 3 B", "X3 4 B PARAMS: G=1", "", "R1 1 2 1K", "V1 1 0 DC 1", " R2 1 0 2",
                         "* voltage probe on node :  N1", "* next line is a current sense",
                         "  * next line is a current sense", ".SUBCKT A 1", ".SUBCKT B 1 2", ".ENDS", ".tran 1n 1u",
                         ".ac dec 10 1 1g", ".probe/csdf V(1)", "* S1=2", "+ AMP", "+ W=1", ".model M1 NMOS",
                         "; note", "X7 1 2 A\r", "* comment\r", "*.END", "*.end", ".mc 10 tran"};
  std::mt19937 random(7);
  for (int deckNumber = 0; deckNumber < 3000; ++deckNumber) {
    std::string deck;
    for (int count = 1 + random() % 20; count > 0; --count)
      deck.append(lines[random() % (sizeof lines / sizeof *lines)]).append("\n");
    ProbePassState wholeState;
    std::ostringstream wholeConsole;
    const std::string whole = Pass(deck, wholeState, wholeConsole);

    TextQueue pieces(deck.size() + 1);
    for (size_t at = 0; at < deck.size(); at += 3) pieces.Push(deck.substr(at, 3));
    pieces.Close();
    QueuedLineReader reader(pieces);
    ProbePassState lineState;
    std::ostringstream lineConsole, byLine;
    ProbeProcessLines(reader, lineState, PrintSettings(), byLine, lineConsole);
    ASSERT_EQ(byLine.str(), whole) << deck;
    ASSERT_EQ(lineConsole.str(), wholeConsole.str()) << deck;
  }
}

}  // namespace
