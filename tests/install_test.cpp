// `cmake --install` into a scratch prefix gives a working tool: the programs, the example
// configuration and the manual pages in their usual places, and the example runs from there.
#include <gtest/gtest.h>
#include <stdlib.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

#include "tests/deck_harness.h"

namespace fs = std::filesystem;

namespace {

std::string FindCmake() {
  for (const char* path : {"/usr/bin/cmake", "/usr/local/bin/cmake"})
    if (::access(path, X_OK) == 0) return path;
  return "";
}

std::string ReadFile(const fs::path& path) {
  std::ifstream in(path, std::ios::binary);
  std::ostringstream text;
  text << in.rdbuf();
  return text.str();
}

TEST(InstallTest, InstalledToolRunsTheExample) {
  std::string cmake = FindCmake();
  if (cmake.empty()) GTEST_SKIP() << "cmake is not installed";
  char pattern[] = "/tmp/vesk-install-XXXXXX";
  fs::path scratch = ::mkdtemp(pattern);
  fs::path prefix = scratch / "prefix", project = scratch / "project";
  std::string output, errors;
  ASSERT_EQ(RunProgram(cmake, "--install " + BinaryDir() + " --prefix " + prefix.string(), scratch.string(),
                       {}, output, errors),
            0)
      << output << errors;

  for (const char* file :
       {"bin/vesk", "bin/vesk-db", "share/vesk/standard/vesk.cfg", "share/vesk/examples/divider/design.json",
        "share/man/man1/vesk.1", "share/man/man1/vesk-db.1"})
    EXPECT_TRUE(fs::exists(prefix / file)) << file;
  EXPECT_NE(ReadFile(prefix / "share/man/man1/vesk.1").find(".SH EXIT STATUS"), std::string::npos);
  EXPECT_NE(ReadFile(prefix / "share/man/man1/vesk-db.1").find("import\\-spice"), std::string::npos);

  // The example, as a user would run it with nothing but the installed files.
  fs::create_directories(project);
  std::string vesk = (prefix / "bin/vesk").string(), vesk_db = (prefix / "bin/vesk-db").string();
  ASSERT_EQ(RunProgram(vesk_db, "import " + (prefix / "share/vesk/examples/divider/design.json").string(),
                       project.string(), {}, output, errors),
            0)
      << errors;
  ASSERT_EQ(RunProgram(vesk, "divider", project.string(), {{"GALT_HOME", (prefix / "share/vesk").string()}},
                       output, errors),
            0)
      << output << errors;
  std::string deck = ReadFile(project / "DIVIDER.cir");
  EXPECT_NE(deck.find("* Project DIVIDER"), std::string::npos) << output;
  EXPECT_NE(deck.find("\nR1 "), std::string::npos) << deck;
  EXPECT_EQ(RunProgram(vesk, "--version", project.string(), {}, output, errors), 0);
  EXPECT_EQ(output.rfind("vesk ", 0), 0u) << output;
  EXPECT_EQ(RunProgram(vesk_db, "--version", project.string(), {}, output, errors), 0);
  EXPECT_EQ(output.rfind("vesk-db ", 0), 0u) << output;

  std::error_code ignored;
  if (!std::getenv("VESK_KEEP")) fs::remove_all(scratch, ignored);
}

}  // namespace
