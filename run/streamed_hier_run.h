// RunStreamedHierarchy: a hierarchical deck whose root block's components are loaded on a
// thread of their own while the sub-blocks load and the deck is written, with both passes on
// the text as it is written. Deck and console are those of the classic run; a run that cannot
// promise that returns kRunClassically before it has printed or written anything.
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
#include "run/hier_passes.h"
#include "run/streamed_passes.h"
#include "run/streamed_run.h"

/// Batches of the root's components the pipe holds while the main thread is still on the nodes
/// and sub-blocks (ComponentPipe::kBatchSize each): a few megabytes.
constexpr size_t kRootBatchesAhead = 48;

/// RunStreamedHierarchy takes the runs whose passes may run on the deck's text as it is
/// written (PassesMayStream, run/hier_passes.h): hierarchical decks of the plain flavours.
template <class Flavour>
int RunStreamedHierarchy(const WireOptions& options, const std::string& group) {
  // The classic run prints: the root block's load, the sub-blocks' loads, the configuration,
  // the generator, the passes. Each is held back and printed in that order at the end.
  ConsoleCapture console;
  Flavour gen(options);
  gen.SetDatabaseName(group);
  const bool configRead = gen.ReadConfigFile() == 0;
  const std::string configText = console.Take();
  if (!configRead) return kRunClassically;

  auto project = std::make_unique<SpiceProject>();
  Tessel::ContainerT<const Tessel::IBlock> block;
  // The root's components are loaded below, beside the rest of the walk.
  const bool opened = gen.OpenDesign(group, *project, options, block, false, false);
  const std::string rootText = console.Take();
  if (!opened) {
    console.Print(rootText);
    return gen.loadFailure;
  }
  // Each block's load starts the list of used deck names over, and the classic walk names the
  // root's components first: on their own thread they take a list of their own.
  project->rootBlock.options.usedNames = std::make_shared<UsedNames>();
  // That thread prints nothing: a component's load of these flavours has nothing to say.
  // The generator starts on them only once the nodes and the sub-blocks are known; the pipe
  // holds enough for the thread to keep going until then.
  ComponentPipe pipe(kRootBatchesAhead);
  PipeFiller rootWalk(pipe, [&] { return project->StreamRootComponents(&pipe); });

  // What the classic walk does behind the root's components: its nodes, then the sub-blocks.
  bool walked = true;
  try {
    project->ScanRootNodes();
  } catch (...) {
    walked = false;
  }
  walked = walked && gen.WalkDesign(group, *project, block, nullptr);
  const std::string walkText = console.Take();
  // A failed load writes no deck; the classic run says what it said up to the failure, which
  // is the root's part alone when the root's components failed.
  auto failed = [&]() {
    pipe.Stop();
    console.Print(rootWalk.Join() ? rootText + walkText : rootText);
    return kExitNoDatabase;
  };
  if (!walked) return failed();

  HoldWorkingFolder();
  const std::string path = gen.CircuitPathOf(*project);
  const std::vector<std::string> madeFolders = MakeDeckFolders(path);
  auto deck = std::make_unique<DeckFile>();
  deck->Open(FileSystemPath(path));
  // Both passes run on the text as it is written, as in RunClassic.
  StreamedPassSettings settings(gen);
  gen.probePass.probeScopeTail = gen.probePass.NewProbeScope();
  std::string passMessages;
  bool rootLoaded = false;
  {
    DeckPassesStream passes(settings.probe ? &gen.probePass : nullptr, settings.print, settings.post, *deck);
    gen.streamedComponents = &pipe;
    gen.streamedBlock = &project->Root();
    // No -param.txt file lies under sym (PassesMayStream), so the passes never ask for them.
    gen.keepsInternalNames = false;
    try {
      gen.Run(*project, passes);
      rootLoaded = rootWalk.Join();
      if (rootLoaded) {
        project.reset();
        gen.ReleaseWrittenState();
        passes.Finish();
        passMessages = passes.Messages();
      }
    } catch (...) {
      console.Print(rootText + walkText + configText + console.Take());
      throw;
    }
  }  // the passes' thread has ended
  if (!rootLoaded) {
    // The classic run stops before the deck: no deck, no folders made for it.
    deck.reset();
    RemoveMadeFolders(madeFolders);
    console.Print(rootText);
    return kExitNoDatabase;
  }
  const bool written = deck->Commit();
  console.Print(rootText + walkText + configText + console.Take() + (written ? passMessages : std::string()));
  if (!written) return kExitWriteFailed;
  return WriteFailureCount() > 0 ? kExitWriteFailed : kExitDeckWritten;
}
