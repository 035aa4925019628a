// Runs the built programs in temporary folders and reads back what they leave there.
#include "tests/deck_harness.h"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <vector>

namespace fs = std::filesystem;

extern char** environ;

#ifndef VESK_SOURCE_DIR
#define VESK_SOURCE_DIR "."
#endif
#ifndef VESK_BIN_DIR
#define VESK_BIN_DIR "build"
#endif

namespace {

std::vector<std::string> SplitAtBlanks(const std::string& text) {
  std::vector<std::string> words;
  std::istringstream in(text);
  std::string word;
  while (in >> word) words.push_back(word);
  return words;
}

// The environment of a run: ours without the variables that steer vesk, then `extra`.
std::vector<std::string> RunEnvironment(const std::map<std::string, std::string>& extra) {
  std::vector<std::string> result;
  for (char** entry = environ; *entry; ++entry) {
    std::string text = *entry;
    std::string name = text.substr(0, text.find('='));
    if (name == "WDIR" || name == "CURRENT_PROJECT_PATH" || name == "GALT_HOME" || extra.count(name))
      continue;
    result.push_back(text);
  }
  for (const auto& [name, value] : extra) result.push_back(name + "=" + value);
  return result;
}

std::string ReadStream(std::FILE* file) {
  std::string text;
  std::rewind(file);
  char buffer[4096];
  size_t count;
  while ((count = std::fread(buffer, 1, sizeof buffer, file)) > 0) text.append(buffer, count);
  std::fclose(file);
  return text;
}

std::vector<char*> Pointers(std::vector<std::string>& texts) {
  std::vector<char*> pointers;
  for (std::string& text : texts) pointers.push_back(text.data());
  pointers.push_back(nullptr);
  return pointers;
}

}  // namespace

std::string ReadText(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  std::ostringstream text;
  text << in.rdbuf();
  return text.str();
}

void WriteText(const std::string& path, const std::string& text) {
  fs::path file(path);
  if (file.has_parent_path()) fs::create_directories(file.parent_path());
  std::ofstream(file, std::ios::binary) << text;
}

std::string MakeScratch(const std::string& tag) {
  std::string pattern = "/tmp/vesk-" + tag + "-XXXXXX";
  std::vector<char> buffer(pattern.begin(), pattern.end());
  buffer.push_back('\0');
  return ::mkdtemp(buffer.data());
}

void RemoveScratch(const std::string& folder) {
  if (folder.empty() || std::getenv("VESK_KEEP")) return;
  std::error_code ignored;
  fs::remove_all(folder, ignored);
}

std::string SourceText(const std::string& relative) {
  return ReadText(std::string(VESK_SOURCE_DIR) + "/" + relative);
}

std::vector<std::pair<std::string, std::string>> ReadCaseTable(const std::string& relative) {
  std::vector<std::pair<std::string, std::string>> cases;
  std::istringstream table(SourceText(relative));
  std::string text, line;
  while (std::getline(table, line)) {
    if (line.rfind("#", 0) == 0 || (line.empty() && text.empty())) continue;
    if (line.rfind("=> ", 0) == 0) {
      cases.emplace_back(text, line.substr(3));
      text.clear();
    } else {
      text += (text.empty() ? "" : "\n") + line;
    }
  }
  return cases;
}

std::string BinaryDir() { return VESK_BIN_DIR; }

int StartProgram(const std::string& program, const std::string& args, const std::string& folder,
                 const std::map<std::string, std::string>& env, std::FILE* out, std::FILE* err) {
  std::vector<std::string> argv = SplitAtBlanks(args);
  argv.insert(argv.begin(), program);
  std::vector<std::string> envp = RunEnvironment(env);
  std::vector<char*> argPointers = Pointers(argv), envPointers = Pointers(envp);
  std::fflush(nullptr);
  pid_t child = ::fork();
  if (child == 0) {
    int devNull = ::open("/dev/null", O_RDWR);
    ::dup2(devNull, 0);
    ::dup2(out ? ::fileno(out) : devNull, 1);
    ::dup2(err ? ::fileno(err) : devNull, 2);
    if (::chdir(folder.c_str()) == 0) ::execve(program.c_str(), argPointers.data(), envPointers.data());
    std::fprintf(stderr, "cannot run %s: %s\n", program.c_str(), std::strerror(errno));
    ::_exit(127);
  }
  return child;
}

int WaitProgram(int child) {
  int status = 0;
  ::waitpid(child, &status, 0);
  return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

int RunProgram(const std::string& program, const std::string& args, const std::string& folder,
               const std::map<std::string, std::string>& env, std::string& output, std::string& errors) {
  std::FILE* out = std::tmpfile();
  std::FILE* err = std::tmpfile();
  const int rc = WaitProgram(StartProgram(program, args, folder, env, out, err));
  output = ReadStream(out);
  errors = ReadStream(err);
  return rc;
}

std::string MaskDate(const std::string& deck) {
  const std::string mark = "* File created ";
  std::string result;
  std::istringstream in(deck);
  std::string line;
  while (std::getline(in, line)) {
    if (line.rfind(mark, 0) == 0) line = mark + "<date>";
    result += line + "\n";
  }
  if (!deck.empty() && deck.back() != '\n' && !result.empty()) result.pop_back();
  return result;
}

VeskRun::VeskRun(VeskRun&& other) noexcept
    : rc(other.rc),
      output(std::move(other.output)),
      errors(std::move(other.errors)),
      deck(std::move(other.deck)),
      folder(std::move(other.folder)) {
  other.folder.clear();
}

VeskRun::~VeskRun() {
  if (folder.empty() || std::getenv("VESK_KEEP")) return;
  std::error_code ignored;
  fs::remove_all(fs::path(folder).parent_path(), ignored);
}

bool VeskRun::Exists(const std::string& relative) const { return fs::exists(fs::path(folder) / relative); }

std::string VeskRun::Read(const std::string& relative) const { return ReadText(folder + "/" + relative); }

VeskRun RunVesk(const std::string& designJson, const std::string& args, const VeskInput& input) {
  char pattern[] = "/tmp/vesk-run-XXXXXX";
  VeskRun run;
  fs::path root = ::mkdtemp(pattern);
  run.folder = (root / "run").string();
  fs::create_directories(run.folder);
  for (const auto& [path, text] : input.files) WriteText(run.folder + "/" + path, text);
  if (input.config) WriteText(run.folder + "/galt/standard/vesk.cfg", *input.config);
  std::map<std::string, std::string> env = {{"GALT_HOME", "galt"}, {"SOURCE_DATE_EPOCH", "0"}};
  for (const auto& [name, value] : input.env) env[name] = value;
  std::string ignored;
  if (!designJson.empty() && input.import) {
    WriteText((root / "design.json").string(), designJson);
    int rc =
        RunProgram(BinaryDir() + "/vesk-db", "import ../design.json", run.folder, env, ignored, run.errors);
    if (rc != 0) {
      run.output = "vesk-db import failed: " + run.errors;
      return run;
    }
  }
  run.rc = RunProgram(BinaryDir() + "/vesk", args, run.folder, env, run.output, run.errors);
  run.deck = run.Exists(input.deckPath) ? MaskDate(run.Read(input.deckPath)) : "<no deck>";
  return run;
}
