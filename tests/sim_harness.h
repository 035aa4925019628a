// Runs ngspice and netgen-lvs on decks that vesk wrote, and reads back what they computed.
#pragma once

#include <complex>
#include <map>
#include <ostream>
#include <string>
#include <vector>

#include "tests/deck_harness.h"

/// Full path of `program` on PATH, "" when it is not installed.
std::string FindOnPath(const std::string& program);

/// One plot of an ngspice raw file: an analysis and its vectors, names in lower case.
struct SimPlot {
  std::string name;  // "Operating Point", "AC Analysis", "Transient Analysis"
  std::vector<std::string> names;
  std::vector<std::vector<std::complex<double>>> columns;  // columns[vector][point]

  /// The vector of that name ("v(out)", "frequency"), nullptr when absent.
  const std::vector<std::complex<double>>* Vector(const std::string& name) const;
};

/// What ngspice left behind: exit code, console text and the plots of its raw file.
struct SimResult {
  int rc = -1;
  std::string transcript;
  std::vector<SimPlot> plots;

  /// The first plot whose name begins with `prefix`, nullptr when there is none.
  const SimPlot* Plot(const std::string& prefix) const;
  /// The node voltages of the operating point, node (lower case) to volts.
  std::map<std::string, double> OperatingPoint() const;
};

/// Parses an ASCII raw file of ngspice, every plot in it.
std::vector<SimPlot> ParseRawFile(const std::string& text);

/// Runs `ngspice -b -r <deck>.raw <deck>` in `folder`, the deck as it stands. ngspice reads a Pspice
/// or HSPICE deck in its compatibility mode `behavior` ("psa", "hsa"; "" for Berkeley SPICE), which
/// goes into the folder's .spiceinit, as a designer sets it up. A Pspice deck with `$G_` nodes runs
/// through a wrapper that declares them global, as PSpice itself does, and includes the deck untouched.
SimResult RunNgspice(const std::string& folder, const std::string& deck, const std::string& behavior);

/// Net name to node of the root's dictionary ("* Dictionary n" with "* NET = node" or "* NET=node"
/// lines). Only nets whose node differs from their name are listed there.
std::map<std::string, std::string> RootDictionary(const std::string& deck);

/// The node of a root net as ngspice names it (lower case): its dictionary entry, else its name.
std::string NodeOfNet(const std::map<std::string, std::string>& dictionary, const std::string& net);

/// How a deck flavour is asked for and simulated.
struct DeckForm {
  std::string testName;
  std::string switches;
  std::string ngBehavior;
};
inline void PrintTo(const DeckForm& form, std::ostream* out) { *out << "vesk " << form.switches; }

/// Every plain flavour (Berkeley SPICE, Pspice, HSPICE), flat and hierarchical, numbered and named.
const std::vector<DeckForm>& PlainDeckForms();

/// The environment of a vesk run in a project folder made by the tests.
const std::map<std::string, std::string>& ProjectEnvironment();

/// A fresh project folder holding tests/sim/<design> (design, sym/, header, references), the
/// configuration file and the database imported from design.json; `error` tells what failed.
std::string MakeDesignProject(const std::string& design, std::string& error);
