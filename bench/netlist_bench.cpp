// Times whole runs of vesk-db and vesk on generated designs of growing size, and prints the time and
// peak memory of each run, the cost per component and how that cost grows, so that a step that is not
// linear shows at once.
//
//   netlist_bench [--bin DIR] [--work DIR] [--full] [--keep]
//
// DIR of --bin holds vesk and vesk-db (default: the folder above this program's own). --work is the
// scratch folder (default /tmp/vesk-bench). Without --full the sizes stop at 100k components.
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

namespace fs = std::filesystem;

namespace {

struct RunResult {
  int status = -1;
  double seconds = 0;     // wall clock
  double cpuSeconds = 0;  // user and system time, which other load on the machine disturbs less
  double peakMb = 0;
};

/// Runs `args` in `folder` with standard output sent to `outFile`, and measures it.
RunResult Run(const std::vector<std::string>& args, const fs::path& folder, const fs::path& outFile) {
  std::vector<char*> argv;
  for (const std::string& arg : args) argv.push_back(const_cast<char*>(arg.c_str()));
  argv.push_back(nullptr);
  fflush(stdout);  // else the child inherits what is still buffered and prints it again
  auto start = std::chrono::steady_clock::now();
  pid_t pid = fork();
  if (pid == 0) {
    if (chdir(folder.c_str()) != 0) _exit(127);
    if (!freopen(outFile.c_str(), "w", stdout)) _exit(127);
    execv(argv[0], argv.data());
    _exit(127);
  }
  RunResult result;
  int status = 0;
  struct rusage usage {};
  if (pid < 0 || wait4(pid, &status, 0, &usage) < 0) return result;
  result.seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
  result.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  result.peakMb = usage.ru_maxrss / 1024.0;
  auto seconds = [](const timeval& t) { return t.tv_sec + t.tv_usec / 1e6; };
  result.cpuSeconds = seconds(usage.ru_utime) + seconds(usage.ru_stime);
  return result;
}

struct Case {
  std::string name;
  std::vector<std::string> design;             // arguments of make_design before the output file
  long components;                             // primitives in the flattened design
  std::vector<std::vector<std::string>> runs;  // vesk switches of each timed run
};

struct Row {
  std::string label;
  long components;
  RunResult result;
};

void WriteFile(const fs::path& path, const std::string& text) {
  fs::create_directories(path.parent_path());
  std::ofstream(path) << text;
}

/// The model files that the generated designs name, so that the decks include them.
void WriteModels(const fs::path& folder) {
  for (const char* model : {"NCH0", "NCH1", "NCH2", "NCH3", "PCH0", "PCH1", "PCH2", "PCH3", "DMOD"}) {
    std::string type = model[0] == 'N' ? "NMOS" : model[0] == 'P' ? "PMOS" : "D";
    WriteFile(folder / "sym" / (std::string(model) + ".mod"),
              std::string(".MODEL ") + model + " " + type + " (LEVEL=1)\n");
  }
}

long LineCount(const fs::path& path) {
  std::ifstream in(path);
  long lines = 0;
  for (std::string line; std::getline(in, line);) ++lines;
  return lines;
}

void PrintRow(const Row& row, const Row* previous) {
  double perComp = row.result.cpuSeconds / row.components * 1e6;
  printf("%-36s %8ld %7.3f s %7.3f s %8.1f MB %7.3f us", row.label.c_str(), row.components,
         row.result.seconds, row.result.cpuSeconds, row.result.peakMb, perComp);
  if (previous && previous->components > 0) {
    double prevPer = previous->result.cpuSeconds / previous->components * 1e6;
    printf("   x%.0f size: x%.1f cpu, per-comp ratio %.2f", double(row.components) / previous->components,
           row.result.cpuSeconds / previous->result.cpuSeconds, perComp / prevPer);
  }
  printf("%s\n", row.result.status == 0 ? "" : "   FAILED");
  fflush(stdout);
}

}  // namespace

int main(int argc, char** argv) {
  fs::path self = fs::canonical("/proc/self/exe");
  fs::path bin = self.parent_path().parent_path(), work = "/tmp/vesk-bench";
  bool full = false, keep = false;
  for (int i = 1; i < argc; ++i) {
    std::string arg = argv[i];
    if (arg == "--bin" && i + 1 < argc) {
      bin = fs::absolute(argv[++i]);
    } else if (arg == "--work" && i + 1 < argc) {
      work = fs::absolute(argv[++i]);
    } else if (arg == "--full") {
      full = true;
    } else if (arg == "--keep") {
      keep = true;
    } else {
      fprintf(stderr, "usage: netlist_bench [--bin DIR] [--work DIR] [--full] [--keep]\n");
      return 2;
    }
  }
  std::string makeDesign = (self.parent_path() / "make_design").string();
  std::string vesk = (bin / "vesk").string(), veskDb = (bin / "vesk-db").string();

  std::vector<Case> cases = {
      {"flat 10k", {"flat", "10000"}, 10000, {{"TOP"}, {"-s", "TOP"}}},
      {"flat 100k", {"flat", "100000"}, 100000, {{"TOP"}, {"-s", "TOP"}}},
  };
  if (full) {
    cases.push_back({"flat 1M", {"flat", "1000000"}, 1000000, {{"TOP"}, {"-s", "TOP"}}});
  }
  cases.push_back({"hier 10k blocks x 10", {"hier", "10000", "10"}, 100000, {{"TOP"}, {"-h", "TOP"}}});
  if (full) {
    cases.push_back({"hier 100k blocks x 10", {"hier", "100000", "10"}, 1000000, {{"TOP"}, {"-h", "TOP"}}});
  }

  fs::create_directories(work);
  WriteFile(work / "galt" / "standard" / "vesk.cfg", "");
  setenv("GALT_HOME", "galt", 1);
  setenv("SOURCE_DATE_EPOCH", "0", 1);
  printf("%-36s %8s %9s %9s %11s %10s\n", "run", "comps", "wall", "cpu", "peak RSS", "cpu/comp");
  std::vector<Row> imports, decks[2];
  for (const Case& c : cases) {
    fs::path folder = work / c.name;
    for (char& ch : const_cast<std::string&>(folder.native()))
      if (ch == ' ') ch = '_';
    fs::remove_all(folder);
    fs::create_directories(folder);
    fs::copy(work / "galt", folder / "galt", fs::copy_options::recursive);
    WriteModels(folder);
    std::vector<std::string> gen = {makeDesign};
    gen.insert(gen.end(), c.design.begin(), c.design.end());
    gen.push_back("design.json");
    if (Run(gen, folder, folder / "make.out").status != 0) {
      fprintf(stderr, "make_design failed for %s\n", c.name.c_str());
      return 1;
    }
    Row import{"import " + c.name, c.components,
               Run({veskDb, "import", "design.json"}, folder, folder / "import.out")};
    PrintRow(import, imports.empty() || imports.back().label.find("flat") == std::string::npos ||
                             c.name.find("flat") == std::string::npos
                         ? nullptr
                         : &imports.back());
    imports.push_back(import);
    for (size_t r = 0; r < c.runs.size(); ++r) {
      std::vector<std::string> args = {vesk};
      args.insert(args.end(), c.runs[r].begin(), c.runs[r].end());
      std::string label = "vesk";
      for (size_t i = 1; i < args.size(); ++i) label += " " + args[i];
      Row row{label + " (" + c.name + ")", c.components, Run(args, folder, folder / "vesk.out")};
      bool sameKind = !decks[r].empty() && decks[r].back().label.substr(0, 12) == row.label.substr(0, 12) &&
                      (decks[r].back().label.find("flat") != std::string::npos) ==
                          (row.label.find("flat") != std::string::npos);
      PrintRow(row, sameKind ? &decks[r].back() : nullptr);
      printf("%-36s deck lines %ld\n", "", LineCount(folder / "TOP.cir"));
      decks[r].push_back(row);
    }
    if (!keep) fs::remove_all(folder);
  }
  return 0;
}
