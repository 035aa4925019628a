// Write failures of every file a run writes, injected through the platform layer's file
// writing (VESK_WRITE_FAULT) and, where the machine allows it, a real full file system: each
// gives a clear message and a non-zero exit, and the deck, parameter file or side file that
// was there before stays whole.
#include <gtest/gtest.h>
#include <sys/mount.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>

#include "tests/deck_harness.h"

namespace {

namespace fs = std::filesystem;

// probed.json: a resistor with a current probe, so the probe pass has a marker to rework.
// opamps.json with Models_Info.xml: a sub-circuit model with parameters, so a Kelpo run writes
// OpAmp-param.txt and genhdl/TOP/netUidMap beside the deck.
std::string Probed() { return SourceText("tests/write_faults/probed.json"); }

const char kOldDeck[] = "* the deck of an earlier run\n*.END\n";

// Temporary files of a replacement left anywhere in the run folder.
std::string LeftOvers(const std::string& folder) {
  std::string found;
  for (const auto& entry : fs::recursive_directory_iterator(folder))
    if (entry.path().filename().string().find(".vesk-") != std::string::npos)
      found += entry.path().string() + " ";
  return found;
}

struct WriteFault {
  const char* what;
  const char* fault;    // VESK_WRITE_FAULT
  bool kelpo;           // a Kelpo run (deck in genhdl/TOP/), else a Pspice one
  const char* file;     // the file that fails, relative to the run folder
  const char* message;  // the line that names it
  bool oldFileStays;    // the failing file is one that was there before
};

TEST(WriteFaultTest, EachFailureIsReportedAndLosesNothing) {
  const WriteFault faults[] = {
      {"deck folder not writable", "folder:TOP.cir:1", false, "TOP.cir",
       "Error: cannot write TOP.cir: Permission denied\n", true},
      {"disk full writing the deck", "full:TOP.cir:1", false, "TOP.cir",
       "Error: cannot write TOP.cir: No space left on device\n", true},
      {"deck rename refused", "rename:TOP.cir:1", false, "TOP.cir",
       "Error: cannot write TOP.cir: Permission denied\n", true},
      // A Kelpo deck is written whole, then replaced by each pass (a Pspice -h deck is written
      // once, through both passes: see DeckOfAHierarchicalRunIsWrittenOnce).
      {"disk full while the probe pass replaces the deck", "full:TOP.cir:2", true, "genhdl/TOP/TOP.cir",
       "Error: cannot write genhdl/TOP/TOP.cir: No space left on device\nCannot remove file 'genhdl\\TOP\\TOP.cir'\n", false},
      {"disk full while the post pass replaces the deck", "full:TOP.cir:3", true, "genhdl/TOP/TOP.cir",
       "Error: cannot write genhdl/TOP/TOP.cir: No space left on device\n", false},
      {"disk full writing the cross reference", "full:TOP.xrf", false, "TOP.xrf",
       "Error: cannot write TOP.xrf: No space left on device\n", true},
      {"disk full writing a -param.txt file", "full:-param.txt", true, "sym/OpAmp-param.txt",
       "sym/OpAmp-param.txt: No space left on device\n", true},
      {"disk full writing the netUidMap", "full:netUidMap", true, "genhdl/TOP/netUidMap",
       "Error: cannot write genhdl/TOP/netUidMap: No space left on device\n", true},
      {"Kelpo deck folder not writable", "folder:TOP.cir", true, "genhdl/TOP/TOP.cir",
       "Error: cannot write genhdl/TOP/TOP.cir: Permission denied\n", true},
  };
  for (const WriteFault& fault : faults) {
    SCOPED_TRACE(fault.what);
    VeskInput input;
    input.env["VESK_WRITE_FAULT"] = fault.fault;
    const std::string old = std::string("* earlier text of ") + fault.file + "\n";
    input.files[fault.file] = old;
    std::string args = "-h TOP";
    if (std::string(fault.file).find(".xrf") != std::string::npos) args = "-x TOP";
    if (fault.kelpo) {
      args = "-_ -h TOP";
      input.deckPath = "genhdl/TOP/TOP.cir";
      input.files["Sym/Models_Info.xml"] = SourceText("tests/write_faults/Models_Info.xml");
      input.files["sym/OpAmp.mod"] = ".SUBCKT opamp IN OUT\nRIN IN OUT 1MEG\n.ENDS\n";
    }
    VeskRun run = RunVesk(fault.kelpo ? SourceText("tests/write_faults/opamps.json") : Probed(), args, input);
    EXPECT_EQ(run.rc, 5) << run.errors;
    EXPECT_NE(run.output.find(fault.message), std::string::npos) << run.output;
    if (fault.oldFileStays) {
      EXPECT_EQ(run.Read(fault.file), old);
    }
    // The deck is the old one or a whole new one, never a part.
    if (input.deckPath != fault.file || !fault.oldFileStays) {
      EXPECT_NE(run.deck, old);
      EXPECT_NE(run.deck.find("*.END"), std::string::npos) << run.deck;
    }
    EXPECT_EQ(LeftOvers(run.folder), "");
  }
}

// The passes of a Pspice -h deck run on its text as it is written: the deck file is written once,
// so a fault on any later write of it finds none, and the deck is the one of a run without faults.
TEST(WriteFaultTest, DeckOfAHierarchicalRunIsWrittenOnce) {
  const VeskRun clean = RunVesk(Probed(), "-h TOP");
  ASSERT_EQ(clean.rc, 0) << clean.output;
  for (const char* fault : {"full:TOP.cir:2+", "rename:TOP.cir:2+", "folder:TOP.cir:2+"}) {
    SCOPED_TRACE(fault);
    VeskInput input;
    input.env["VESK_WRITE_FAULT"] = fault;
    input.files["TOP.cir"] = kOldDeck;
    VeskRun run = RunVesk(Probed(), "-h TOP", input);
    EXPECT_EQ(run.rc, 0) << run.output;
    EXPECT_EQ(run.output, clean.output);
    EXPECT_EQ(run.deck, clean.deck);
    EXPECT_EQ(LeftOvers(run.folder), "");
  }
}

// Without an earlier deck a failed deck leaves no file at all; the passes do not run.
TEST(WriteFaultTest, FailedDeckLeavesNoFile) {
  for (const char* fault : {"folder:TOP.cir:1", "full:TOP.cir:1", "rename:TOP.cir:1"}) {
    VeskInput input;
    input.env["VESK_WRITE_FAULT"] = fault;
    VeskRun run = RunVesk(Probed(), "-h TOP", input);
    EXPECT_EQ(run.rc, 5) << fault;
    EXPECT_EQ(run.deck, "<no deck>") << fault;
    EXPECT_EQ(run.output.find("Could not open"), std::string::npos) << run.output;
    EXPECT_EQ(LeftOvers(run.folder), "") << fault;
  }
}

// A real failure, without injection: the Kelpo deck's folder "genhdl" is a file.
TEST(WriteFaultTest, DeckFolderThatIsAFile) {
  VeskInput input;
  input.files["genhdl"] = "not a folder\n";
  input.deckPath = "genhdl";
  VeskRun run = RunVesk(Probed(), "-_ -h TOP", input);
  EXPECT_EQ(run.rc, 5);
  EXPECT_NE(run.output.find("Error: cannot write genhdl/TOP/TOP.cir: Not a directory\n"), std::string::npos)
      << run.output;
  EXPECT_EQ(run.Read("genhdl"), "not a folder\n");
}

// A real full file system: a small tmpfs (root only) holds the project; the earlier deck and
// the database stay whole when the new deck does not fit.
TEST(WriteFaultTest, SmallFullFileSystemKeepsTheOldDeck) {
  VeskRun prepared = RunVesk(Probed(), "-h TOP");
  ASSERT_EQ(prepared.rc, 0) << prepared.output;
  const fs::path mount = fs::path(prepared.folder).parent_path() / "small";
  fs::create_directories(mount);
  if (::geteuid() != 0 || ::mount("tmpfs", mount.c_str(), "tmpfs", 0, "size=4m") != 0)
    GTEST_SKIP() << "no small file system here (needs root and mount)";
  // Unmounted however the test ends.
  std::unique_ptr<const char, void (*)(const char*)> unmount(mount.c_str(),
                                                             [](const char* path) { ::umount(path); });
  for (const char* file : {"database/design.sqlite", "galt/standard/vesk.cfg"})
    WriteText((mount / file).string(), prepared.Read(file));
  const std::string database = prepared.Read("database/design.sqlite");
  WriteText((mount / "TOP.cir").string(), kOldDeck);
  {
    // Fill the rest of the file system.
    std::ofstream filler(mount / "filler", std::ios::binary);
    std::string block(4096, 'x');
    while (filler.write(block.data(), block.size()) && filler.flush()) {
    }
  }
  std::string output, errors;
  int rc =
      RunProgram(BinaryDir() + "/vesk", "-h TOP", mount.string(), {{"GALT_HOME", "galt"}}, output, errors);
  EXPECT_EQ(rc, 5) << output << errors;
  EXPECT_NE(output.find("Error: cannot write TOP.cir: No space left on device"), std::string::npos) << output;
  EXPECT_EQ(ReadText((mount / "TOP.cir").string()), kOldDeck);
  EXPECT_TRUE(ReadText((mount / "database/design.sqlite").string()) == database) << "the database changed";
  EXPECT_EQ(LeftOvers(mount.string()), "");
}

}  // namespace
