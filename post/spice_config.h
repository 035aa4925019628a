// The configuration fields of a run: the dialect rules of vesk.cfg.
#pragma once

#include <cstdint>
#include <map>
#include <set>
#include <string>

struct SpiceConfig {
  SpiceConfig();

  std::string stripChars = "@";
  std::string stripComs = "*";
  std::string elements = "ALL";
  std::string commands = "ALL";
  std::string adName, asName, psName, pdName, nrdName, nrsName;
  std::string stripWords;
  std::set<std::string> uParNames;
  std::set<std::string> pParNames;
  int32_t calcArea = 0;
  int32_t calcRes = 0;
  int32_t wlSplit = 0;
  int32_t csdf = 1;
  int32_t noSlash = 0;
  int32_t suffix2ee = 0;
  int32_t noEquation = 0;
  int32_t noQuotes = 0;
  int32_t lineLength = 0;
  int32_t accuracy = 4;
  std::string continueString = "+";
  std::string breakString = " ";
  /// GND_NAME / VDD_NAME / NAME pairs: net name -> the net whose node it takes.
  std::map<std::string, std::string> nameMap;
  /// PATHS: how the deck names the files a simulator opens. "NATIVE" (any case; the default):
  /// relative to the deck's folder with "/"; "WINDOWS": the classic "..\..\sym\x.mod" text.
  std::string paths = "NATIVE";
  bool WindowsPaths() const;
  std::string quoteOpen = "'";
  std::string quoteClose = "'";

  // Set from stripWords by the post-process pass.
  bool stripComments = false;
  bool stripTransSize = false;
  bool stripUnits = false;
};

/// The default name lists of the two unit sets.
extern const char* const kDefaultUParNames;
extern const char* const kDefaultPParNames;
