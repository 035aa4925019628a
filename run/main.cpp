// The program's entry: options, the chosen generator, the design, the deck and its two passes.
#include <exception>
#include <iostream>
#include <memory>
#include <string>

#include "design/platform.h"
#include "design/spice_project.h"
#include "gen/dialect_of.h"
#include "gen/flavours.h"
#include "gen/kelpo_gen.h"
#include "gen/spice_gen.h"
#include "model/model_files.h"
#include "run/streamed_hier_run.h"
#include "run/streamed_run.h"

#ifndef VESK_VERSION
#define VESK_VERSION "0.0"
#endif

namespace {

// One run of the flavour `Flavour` in the classic order: the whole walk, the configuration,
// the deck, then the passes over the written deck; returns the exit code.
template <class Flavour>
int RunClassic(const WireOptions& options, const std::string& group) {
  Flavour gen(options);
  auto project = std::make_unique<SpiceProject>();
  gen.SetDatabaseName(group);
  if (!gen.LoadProject(group, *project, options)) return gen.loadFailure;
  project->ReleaseWalkState();
  if (gen.ReadConfigFile() != 0) return kExitBadConfiguration;
  HoldWorkingFolder();
  gen.OpenCrossReference(group);
  // The walk is over; the post pass reads the parameter files it produced (Kelpo).
  FlushParameterFiles();
  // The deck's file is opened here and handed to the generator, which writes it whole.
  const std::string path = gen.CircuitPathOf(*project);
  MakeDeckFolders(path);
  DeckFile deck;
  deck.Open(FileSystemPath(path));
  // The generator writes from the walked design itself: nothing reads the project after the
  // run, and a copy would hold every component twice.
  gen.Run(*project, deck);
  // The passes only reread the deck: the design's memory goes back before they hold its text.
  project.reset();
  // A deck that could not be written leaves the old one, which the passes must not touch.
  if (!deck.Commit()) return kExitWriteFailed;
  gen.ProbeProcess();
  gen.PostProcess();
  return WriteFailureCount() > 0 ? kExitWriteFailed : kExitDeckWritten;
}

// One run of the flavour `Flavour`: a deck is written during its walk when it can be.
template <class Flavour>
int RunFlavour(const WireOptions& options, const std::string& group) {
  if (MayStream(options)) {
    const int code = RunStreamed<Flavour>(options, group);
    if (code != kRunClassically) return code;
  }
  if (PassesMayStream(options)) {
    const int code = RunStreamedHierarchy<Flavour>(options, group);
    if (code != kRunClassically) return code;
  }
  return RunClassic<Flavour>(options, group);
}

int RunAll(int argc, const char* const* argv) {
  // The one long switch: the classic ones are single letters behind one "-".
  if (argc == 2 && std::string(argv[1]) == "--version") {
    std::cout << "vesk " << VESK_VERSION << std::endl;
    return 0;
  }
  // The command line and the ini file fill the options, and the options the dialect.
  CSpiceGen parser;
  if (CSpiceGen::CheckHelp(argc, argv) == 1) return 0;
  const char* groupArgument = nullptr;
  parser.ParseArguments(&groupArgument, argc, argv);
  if (!groupArgument) {
    std::cout << "Database Required" << std::endl;
    return kExitNoGroupGiven;
  }
  std::string group = groupArgument;
  WireOptions options = parser.options;
  options.dialect = DialectOf(options);
  // The output folder and deck name the user gives may lie anywhere; names from the design
  // may not lead out of the project.
  AllowWritesUnder(options.outputFolder);
  if (size_t slash = options.circuitFileName.find_last_of("\\/"); slash != std::string::npos)
    AllowWritesUnder(options.circuitFileName.substr(0, slash));
  switch (options.dialect.flavour) {
    case DeckFlavour::kKelpo:
      return RunFlavour<CKelpoSpiceGen>(options, group);
    case DeckFlavour::kPspice:
      return RunFlavour<PspiceGen>(options, group);
    case DeckFlavour::kHspice:
      return RunFlavour<HspiceGen>(options, group);
    case DeckFlavour::kBerkeley:
      return RunFlavour<GSpiceGen>(options, group);
  }
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  try {
    int code = RunAll(argc, argv);
    std::cout.flush();
    return code;
  } catch (const std::exception& error) {
    std::cout << "Error: " << error.what() << std::endl;
  } catch (...) {
    std::cout << "Error: unexpected internal failure" << std::endl;
  }
  return 1;
}
