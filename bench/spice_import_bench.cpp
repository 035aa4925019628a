// Times `vesk-db import-spice` on a generated netlist of a million elements (the target is 5 s),
// and on smaller ones first, so that a step that grows faster than the netlist shows at once.
//
//   spice_import_bench [--bin DIR] [--work DIR] [--elements N] [--keep]
//
// DIR of --bin holds vesk-db (default: the folder above this program's own). --work is the scratch
// folder (default /tmp/vesk-spice-bench). The netlist is an RC ladder at the top level with a
// sub-circuit placed every thousand sections, a model and a library sub-circuit, so every road of
// the reader is taken.
#include <fcntl.h>
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

/// Writes a netlist with about `elements` element lines.
void WriteNetlist(const fs::path& file, long elements) {
  std::ofstream out(file, std::ios::binary);
  out << "generated RC ladder\nV1 n0 0 DC 1 AC 1\n.model dm d is=1e-14\n"
      << ".subckt cell a b\nR1 a m 1k\nC1 m 0 1p\nD1 m b dm\n.ends\n"
      << ".subckt tuned a b params: r=1k\nR1 a b {r}\n.ends\n";
  long written = 1;
  for (long i = 0; written < elements; ++i) {
    out << "R" << i << " n" << i << " n" << i + 1 << " 1k\n";
    out << "C" << i << " n" << i + 1 << " 0 1p\n";
    written += 2;
    if (i % 1000 == 999) {
      out << "X" << i << " n" << i + 1 << " 0 cell\nXT" << i << " n" << i + 1 << " 0 tuned r=2k\n";
      written += 2;
    }
  }
  out << ".tran 1n 1u\n.end\n";
}

/// Runs `args` in `folder`; returns the wall-clock seconds and sets the CPU seconds (user and system,
/// which the load of other programs on the machine disturbs less).
double RunSeconds(const std::vector<std::string>& args, const fs::path& folder, int& status, double& cpu) {
  std::vector<char*> argv;
  for (const std::string& arg : args) argv.push_back(const_cast<char*>(arg.c_str()));
  argv.push_back(nullptr);
  fflush(stdout);
  auto start = std::chrono::steady_clock::now();
  pid_t pid = fork();
  if (pid == 0) {
    if (chdir(folder.c_str()) != 0) _exit(127);
    int null = open("/dev/null", 1);
    dup2(null, 1);
    execv(argv[0], argv.data());
    _exit(127);
  }
  int raw = 0;
  struct rusage usage {};
  wait4(pid, &raw, 0, &usage);
  cpu = usage.ru_utime.tv_sec + usage.ru_stime.tv_sec +
        1e-6 * (usage.ru_utime.tv_usec + usage.ru_stime.tv_usec);
  status = WIFEXITED(raw) ? WEXITSTATUS(raw) : 128;
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

}  // namespace

int main(int argc, char** argv) {
  fs::path bin = fs::canonical("/proc/self/exe").parent_path().parent_path();
  fs::path work = "/tmp/vesk-spice-bench";
  long largest = 1000000;
  bool keep = false;
  for (int i = 1; i < argc; ++i) {
    if (!std::strcmp(argv[i], "--bin") && i + 1 < argc) {
      bin = argv[++i];
    } else if (!std::strcmp(argv[i], "--work") && i + 1 < argc) {
      work = argv[++i];
    } else if (!std::strcmp(argv[i], "--elements") && i + 1 < argc) {
      largest = std::atol(argv[++i]);
    } else if (!std::strcmp(argv[i], "--keep")) {
      keep = true;
    } else {
      std::fprintf(stderr, "usage: spice_import_bench [--bin DIR] [--work DIR] [--elements N] [--keep]\n");
      return 1;
    }
  }
  fs::create_directories(work);
  std::printf("%12s %10s %10s %14s\n", "elements", "seconds", "cpu", "cpu us/element");
  double previous = 0;
  for (long elements = largest / 100; elements <= largest; elements *= 10) {
    fs::path netlist = work / ("ladder" + std::to_string(elements) + ".cir");
    WriteNetlist(netlist, elements);
    int status = 0;
    double cpu = 0;
    double seconds = RunSeconds(
        {(bin / "vesk-db").string(), "import-spice", "--project", "p", netlist.filename().string()}, work,
        status, cpu);
    if (status != 0) {
      std::fprintf(stderr, "vesk-db failed (%d) on %s\n", status, netlist.c_str());
      return 1;
    }
    std::printf("%12ld %10.2f %10.2f %14.2f%s\n", elements, seconds, cpu, cpu * 1e6 / elements,
                previous > 0 ? (cpu > 15 * previous ? "  (grows faster than the netlist)" : "") : "");
    previous = cpu;
    if (!keep) fs::remove(netlist);
  }
  if (!keep) fs::remove_all(work);
  return 0;
}
