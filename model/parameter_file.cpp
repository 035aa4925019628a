// Parameter file text as indexed lines: section replacement in the size of the section.
#include "model/parameter_file.h"

#include <algorithm>

void ParameterFile::PushLine(std::string text) {
  lines_.push_back(Line{std::move(text), nextOrder_++, false, {}});
  auto line = std::prev(lines_.end());
  const std::string& added = line->text;
  if (added.empty()) {
    emptyLines_.push_back(line);
    return;
  }
  if (added[0] != '*') return;
  for (size_t pos = added.find('$'); pos != std::string::npos; pos = added.find('$', pos + 1))
    line->keys.push_back(heads_.emplace(added.substr(pos), line));
}

void ParameterFile::EraseLine(LineList::iterator line) {
  for (HeadIndex::iterator key : line->keys) heads_.erase(key);
  lines_.erase(line);
}

void ParameterFile::Assign(const std::string& text) {
  lines_.clear();
  heads_.clear();
  emptyLines_.clear();
  Append(text);
}

void ParameterFile::Append(const std::string& text) {
  size_t start = 0;
  size_t end = text.find('\n');
  std::string first = text.substr(0, end);
  if (lines_.empty()) {
    PushLine(first);
  } else if (!first.empty()) {
    // The text continues the last line: index that line anew.
    std::string joined = lines_.back().text + first;
    auto last = std::prev(lines_.end());
    if (joined.size() == first.size())
      emptyLines_.erase(std::find(emptyLines_.begin(), emptyLines_.end(), last));
    EraseLine(last);
    PushLine(joined);
  }
  while (end != std::string::npos) {
    start = end + 1;
    end = text.find('\n', start);
    PushLine(text.substr(start, end == std::string::npos ? std::string::npos : end - start));
  }
}

std::vector<ParameterFile::LineList::iterator> ParameterFile::FindHeads(const std::string& model,
                                                                        const std::string& instance) {
  std::vector<LineList::iterator> found;
  if (!instance.empty() && instance[0] == '$') {
    for (auto key = heads_.lower_bound(instance);
         key != heads_.end() && key->first.compare(0, instance.size(), instance) == 0; ++key) {
      if (IsSectionHead(key->second->text, model, instance)) found.push_back(key->second);
    }
  } else {
    for (auto line = lines_.begin(); line != lines_.end(); ++line)
      if (IsSectionHead(line->text, model, instance)) found.push_back(line);
  }
  std::sort(found.begin(), found.end(), [](auto a, auto b) { return a->order < b->order; });
  found.erase(std::unique(found.begin(), found.end()), found.end());
  return found;
}

// Marks the head and what belongs to its section as dropped: "+" lines, further heads of
// the instance, and the "*end" line. Other lines stay; empty lines are left for the caller.
void ParameterFile::DropSection(LineList::iterator head, const std::string& model,
                                const std::string& instance, std::vector<LineList::iterator>& dropped) {
  head->dropped = true;
  dropped.push_back(head);
  for (auto line = std::next(head); line != lines_.end(); ++line) {
    const std::string& text = line->text;
    if (text.empty()) continue;
    bool isHead = IsSectionHead(text, model, instance);
    bool ends = !isHead && text.find("*end") != std::string::npos;
    if (isHead || ends || text.find('+') != std::string::npos) {
      line->dropped = true;
      dropped.push_back(line);
    }
    if (ends) return;
  }
}

bool ParameterFile::ReplaceSection(const std::string& model, const std::string& instance,
                                   const std::string& section) {
  std::vector<LineList::iterator> heads = FindHeads(model, instance);
  if (heads.empty()) return false;
  std::vector<LineList::iterator> dropped;
  for (LineList::iterator head : heads) {
    // A later head may have gone with the section of an earlier one.
    if (!head->dropped) DropSection(head, model, instance, dropped);
  }
  for (LineList::iterator line : dropped) EraseLine(line);
  for (LineList::iterator line : emptyLines_) EraseLine(line);
  emptyLines_.clear();
  // The lines that stay now each end in "\n", and the section follows them.
  Append(lines_.empty() ? section : "\n" + section);
  return true;
}

std::string ParameterFile::Text() const {
  std::string text;
  bool first = true;
  for (const Line& line : lines_) {
    if (!first) text += '\n';
    text += line.text;
    first = false;
  }
  return text;
}
