// The text of one "-param.txt" file held as lines, with an index of its section heads.
#pragma once

#include <cstdint>
#include <list>
#include <map>
#include <string>
#include <vector>

#include "design/section_head.h"

/// A parameter file's text as lines joined by "\n". Replacing an instance's section costs
/// the size of that section, not of the file: head lines are indexed by each of their
/// suffixes that begin with "$", which is how every internal name begins.
class ParameterFile {
 public:
  ParameterFile() = default;
  explicit ParameterFile(const std::string& text) { Append(text); }
  ParameterFile(const ParameterFile&) = delete;
  ParameterFile& operator=(const ParameterFile&) = delete;

  /// Replaces the whole text.
  void Assign(const std::string& text);
  /// Appends `text` to the file as it stands.
  void Append(const std::string& text);
  /// If a head line of `model` and `instance` exists: drops every empty line and the
  /// instance's sections (head and "+" lines up to "*end"), then appends `section` behind
  /// the remaining lines, each now ending in "\n". Returns false, changing nothing, otherwise.
  bool ReplaceSection(const std::string& model, const std::string& instance, const std::string& section);
  std::string Text() const;

 private:
  struct Line;
  using LineList = std::list<Line>;
  using HeadIndex = std::multimap<std::string, LineList::iterator>;
  struct Line {
    std::string text;
    uint64_t order = 0;
    bool dropped = false;
    std::vector<HeadIndex::iterator> keys;
  };

  void PushLine(std::string text);
  void EraseLine(LineList::iterator line);
  std::vector<LineList::iterator> FindHeads(const std::string& model, const std::string& instance);
  void DropSection(LineList::iterator head, const std::string& model, const std::string& instance,
                   std::vector<LineList::iterator>& dropped);

  LineList lines_;
  HeadIndex heads_;
  std::vector<LineList::iterator> emptyLines_;
  uint64_t nextOrder_ = 0;
};
