// Designs as a designer draws them, each in tests/sim/<design>: the design, its model files in sym/,
// its analyses in a header file and a reference deck written by hand. vesk writes the deck in each
// flavour, flat and hierarchical; ngspice runs it as written, in the folder it was written to, and
// its gain, corner frequency and transient amplitude must be those of the reference deck.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <string>

#include "tests/deck_harness.h"
#include "tests/sim_harness.h"

namespace {

/// A design of tests/sim and what its response must be.
struct DrawnDesign {
  const char* folder;
  const char* group;             // the group vesk is run with (a test bench name or the root block's)
  const char* deck;              // the deck's base name: the root block's name
  double passFrequency;          // where the pass-band gain is read
  double gainDb;                 // pass-band gain, by hand
  double cornerLow, cornerHigh;  // the -3 dB frequency above the pass band lies between these
  double settledFrom;            // the transient amplitude is read from this time on
  double amplitude;              // by hand
  double level;                  // the output's mean over the same time: its bias point
};

const DrawnDesign kDesigns[] = {
    // Two inverting stages of -10 with a bias divider each: 40 dB; each stage closes at 1 MHz / 11.
    {"amplifier", "ampbench", "AMPTB", 1e3, 40.0, 45e3, 70e3, 5e-3, 0.1, 5.0},
    // Two unity-gain Sallen-Key stages of 10K and 10N: 0 dB, four poles at 1.59 kHz.
    {"filter", "FILTER", "FILTER", 10.0, 0.0, 600.0, 800.0, 10e-3, 0.969, 0.0},
};

void PrintTo(const DrawnDesign& design, std::ostream* out) { *out << "tests/sim/" << design.folder; }

/// The deck's flavour and where it is written, relative to the project folder.
struct Form {
  const char* testName;
  const char* switches;
  const char* ngBehavior;
  const char* folder;  // "" for the project folder
};

const Form kForms[] = {
    {"Pspice", "-p", "psa", ""},
    {"PspiceHier", "-p -h", "psa", ""},
    {"Hspice", "-m", "hsa", ""},
    {"HspiceHier", "-m -h", "hsa", ""},
    {"Berkeley", "-s", "", ""},
    {"BerkeleyHier", "-s -h", "", ""},
    // A deck in a folder of its own reaches the models through "../sym".
    {"BerkeleyHierInFolder", "-s -h -%decks", "", "decks"},
};

/// What the test reads of a run.
struct Response {
  double gainDb = NAN;
  double corner = NAN;
  double amplitude = NAN;
  double level = NAN;
};

double Magnitude(const std::vector<std::complex<double>>& node, size_t i) { return std::abs(node[i]); }

/// Gain in dB at `frequency`, read between the two nearest points on a log scale.
double GainDbAt(const SimPlot& plot, const std::vector<std::complex<double>>& node, double frequency) {
  const auto& f = *plot.Vector("frequency");
  for (size_t i = 1; i < f.size(); ++i) {
    if (f[i].real() < frequency) continue;
    double t = std::log(frequency / f[i - 1].real()) / std::log(f[i].real() / f[i - 1].real());
    double low = 20 * std::log10(Magnitude(node, i - 1)), high = 20 * std::log10(Magnitude(node, i));
    return low + t * (high - low);
  }
  return NAN;
}

/// The first frequency above `from` where the gain has fallen 3 dB below `passDb`.
double CornerAbove(const SimPlot& plot, const std::vector<std::complex<double>>& node, double from,
                   double passDb) {
  const auto& f = *plot.Vector("frequency");
  double target = passDb - 3.0;
  for (size_t i = 1; i < f.size(); ++i) {
    if (f[i].real() <= from) continue;
    double low = 20 * std::log10(Magnitude(node, i - 1)), high = 20 * std::log10(Magnitude(node, i));
    if (high > target) continue;
    double t = (low - target) / (low - high);
    return f[i - 1].real() * std::pow(f[i].real() / f[i - 1].real(), t);
  }
  return NAN;
}

/// Half the peak-to-peak swing from `from` on.
double AmplitudeFrom(const SimPlot& plot, const std::vector<std::complex<double>>& node, double from) {
  const auto& time = *plot.Vector("time");
  double low = INFINITY, high = -INFINITY;
  for (size_t i = 0; i < time.size(); ++i) {
    if (time[i].real() < from) continue;
    low = std::min(low, node[i].real());
    high = std::max(high, node[i].real());
  }
  return (high - low) / 2;
}

/// The mean from `from` on, by the trapezoid rule.
double LevelFrom(const SimPlot& plot, const std::vector<std::complex<double>>& node, double from) {
  const auto& time = *plot.Vector("time");
  double area = 0, span = 0;
  for (size_t i = 1; i < time.size(); ++i) {
    if (time[i - 1].real() < from) continue;
    double step = time[i].real() - time[i - 1].real();
    area += step * (node[i].real() + node[i - 1].real()) / 2;
    span += step;
  }
  return span > 0 ? area / span : NAN;
}

/// Reads the response at `node` (as ngspice names it) from a run; fails the test when it is not there.
Response ReadResponse(const SimResult& run, const std::string& node, const DrawnDesign& design) {
  Response response;
  const SimPlot* ac = run.Plot("AC Analysis");
  const SimPlot* tran = run.Plot("Transient Analysis");
  std::string vector = "v(" + node + ")";
  if (!ac || !ac->Vector("frequency") || !ac->Vector(vector)) {
    ADD_FAILURE() << "no AC response at " << vector << "\n" << run.transcript;
    return response;
  }
  if (!tran || !tran->Vector("time") || !tran->Vector(vector)) {
    ADD_FAILURE() << "no transient response at " << vector << "\n" << run.transcript;
    return response;
  }
  response.gainDb = GainDbAt(*ac, *ac->Vector(vector), design.passFrequency);
  response.corner = CornerAbove(*ac, *ac->Vector(vector), design.passFrequency, response.gainDb);
  response.amplitude = AmplitudeFrom(*tran, *tran->Vector(vector), design.settledFrom);
  response.level = LevelFrom(*tran, *tran->Vector(vector), design.settledFrom);
  return response;
}

class DrawnDesignTest : public ::testing::TestWithParam<DrawnDesign> {
 protected:
  void TearDown() override { RemoveScratch(folder_); }
  std::string folder_;
};

TEST_P(DrawnDesignTest, EveryFlavourRespondsAsTheReferenceDeck) {
  if (FindOnPath("ngspice").empty())
    GTEST_SKIP() << "ngspice is not installed (scripts/setup installs it): decks not simulated";
  const DrawnDesign& design = GetParam();
  std::string error, output, errors;
  folder_ = MakeDesignProject(design.folder, error);
  ASSERT_EQ(error, "");

  SimResult reference = RunNgspice(folder_, "reference.cir", "");
  ASSERT_EQ(reference.rc, 0) << reference.transcript;
  Response want = ReadResponse(reference, "out", design);
  // The reference itself answers to the figures worked out by hand.
  EXPECT_NEAR(want.gainDb, design.gainDb, 0.5) << reference.transcript;
  EXPECT_GT(want.corner, design.cornerLow);
  EXPECT_LT(want.corner, design.cornerHigh);
  EXPECT_NEAR(want.amplitude, design.amplitude, design.amplitude * 0.03);
  EXPECT_NEAR(want.level, design.level, 0.01);

  for (const Form& form : kForms) {
    SCOPED_TRACE(std::string(form.testName) + " (vesk " + form.switches + ")");
    std::string args = std::string(form.switches) + " -ganalyses.inc " + design.group;
    ASSERT_EQ(RunProgram(BinaryDir() + "/vesk", args, folder_, ProjectEnvironment(), output, errors), 0)
        << output << errors;
    std::string deckFolder = *form.folder ? folder_ + "/" + form.folder : folder_;
    std::string deckName = std::string(design.deck) + ".cir";
    std::string deck = ReadText(deckFolder + "/" + deckName);
    ASSERT_FALSE(deck.empty()) << "no deck " << deckFolder << "/" << deckName << "\n" << output << errors;
    SimResult run = RunNgspice(deckFolder, deckName, form.ngBehavior);
    if (run.rc != 0 || run.transcript.find("rror") != std::string::npos) {
      ADD_FAILURE() << "ngspice does not run the deck as written:\n" << run.transcript;
      continue;
    }
    Response got = ReadResponse(run, NodeOfNet(RootDictionary(deck), "OUT"), design);
    EXPECT_NEAR(got.gainDb, want.gainDb, 0.05) << "gain in dB at " << design.passFrequency << " Hz";
    EXPECT_NEAR(got.corner, want.corner, want.corner * 0.01) << "-3 dB frequency";
    EXPECT_NEAR(got.amplitude, want.amplitude, want.amplitude * 0.01) << "transient amplitude";
    EXPECT_NEAR(got.level, want.level, 0.001) << "bias point of the output";
  }
}

INSTANTIATE_TEST_SUITE_P(Drawn, DrawnDesignTest, ::testing::ValuesIn(kDesigns),
                         [](const ::testing::TestParamInfo<DrawnDesign>& info) {
                           return std::string(info.param.folder);
                         });

}  // namespace
