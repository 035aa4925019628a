// RunStreamed: a flat deck written while the walk of the design goes on, on a second thread,
// with the post-process pass run on the text as it is written. The deck and the console are
// those of the classic run (walk, configuration, deck, passes); a run that cannot promise
// that returns kRunClassically before it has printed or written anything.
#pragma once

#include <exception>
#include <memory>
#include <string>

#include "design/platform.h"
#include "design/spice_project.h"
#include "gen/component_pipe.h"
#include "gen/spice_gen.h"
#include "post/deck_passes_stream.h"
#include "run/console_capture.h"
#include "run/streamed_passes.h"

/// RunStreamed's answer when the run must be done the classic way.
constexpr int kRunClassically = -1;

/// Whether RunStreamed may take the run: a flat deck of a flavour whose walk keeps to itself
/// (not Kelpo: its walk maps models and writes parameter files that its generator and passes
/// read), without -x (the classic run writes that file only after a walk that succeeded).
bool MayStream(const WireOptions& options);

/// Removes the folders a run made for a deck it did not write (inner one first).
void RemoveMadeFolders(const std::vector<std::string>& made);

/// Batches of components (ComponentPipe::kBatchSize each) the flat walk may hand over before the
/// generator takes the first: some tens of megabytes.
constexpr size_t kFlatBatchesAhead = 256;

template <class Flavour>
int RunStreamed(const WireOptions& options, const std::string& group) {
  // The console is held back and printed at the end in the classic order: root block,
  // (walk,) configuration, deck and passes.
  ConsoleCapture console;
  Flavour gen(options);
  gen.SetDatabaseName(group);
  // The configuration comes first here: its NAME pairs change node names from the first line.
  const bool configRead = gen.ReadConfigFile() == 0;
  const std::string configText = console.Take();
  if (!configRead || !gen.config.nameMap.empty()) return kRunClassically;

  auto project = std::make_unique<SpiceProject>();
  Tessel::ContainerT<const Tessel::IBlock> block;
  // The root's nets are scanned below, while the walk already runs.
  const bool opened = gen.OpenDesign(group, *project, options, block, false);
  const std::string rootText = console.Take();
  if (!opened) {
    console.Print(rootText);
    return gen.loadFailure;
  }
  // The walk's thread hands each component over as soon as it is loaded; it prints nothing.
  // The generator starts on them once the root's nets are scanned and its node table is made:
  // the pipe holds enough for the walk to keep going meanwhile.
  ComponentPipe pipe(kFlatBatchesAhead);
  PipeFiller walker(pipe, [&] { return gen.WalkDesign(group, *project, block, &pipe); });

  HoldWorkingFolder();
  const std::string path = gen.CircuitPathOf(*project);
  const std::vector<std::string> madeFolders = MakeDeckFolders(path);
  auto deck = std::make_unique<DeckFile>();
  deck->Open(FileSystemPath(path));

  // What the root's ports and nets give the node tables is first read when the generator
  // begins the root block; the walk reads none of it.
  bool scanned = true;
  try {
    project->ScanRootNodes();
  } catch (...) {
    scanned = false;
    pipe.Stop();
  }

  // The post pass reads settings of its own (StreamedPassSettings); a flat deck has no probe pass.
  StreamedPassSettings settings(gen);
  DeckPassesStream postStream(nullptr, settings.print, settings.post, *deck);
  gen.streamedComponents = &pipe;
  gen.streamedBlock = &project->Root();
  try {
    if (scanned) gen.Run(*project, postStream);
    // The walk has handed over its last component: what the design and the generator hold goes
    // back while the post pass finishes the text.
    if (scanned && walker.Join()) {
      project.reset();
      gen.ReleaseWrittenState();
    }
    postStream.Finish();
  } catch (const GlobalNameCameLate&) {
    return kRunClassically;
  } catch (...) {
    console.Print(rootText + configText + console.Take());
    throw;
  }
  const bool walked = walker.Join();
  if (!walked || !scanned) {
    // The classic run stops before the deck: no deck, no folders made for it.
    deck.reset();
    RemoveMadeFolders(madeFolders);
    console.Print(rootText);
    return kExitNoDatabase;
  }
  const bool written = deck->Commit();
  console.Print(rootText + configText + console.Take());
  if (!written) return kExitWriteFailed;
  return WriteFailureCount() > 0 ? kExitWriteFailed : kExitDeckWritten;
}
