// Longest-common-subsequence line diff; the texts of a test are small, so the table is too.
#include "tests/text_diff.h"

#include <algorithm>
#include <vector>

namespace {

struct Edit {
  char mark;  // ' ', '-' or '+'
  std::string line;
  size_t wantLine, gotLine;  // 1-based numbers of the line on each side, as far as it goes
};

std::vector<std::string> Lines(const std::string& text) {
  std::vector<std::string> lines;
  size_t start = 0;
  while (start < text.size()) {
    size_t end = text.find('\n', start);
    end = end == std::string::npos ? text.size() : end + 1;
    lines.push_back(text.substr(start, end - start));
    start = end;
  }
  return lines;
}

// A line as shown: its carriage return spelled out, a missing line end said.
std::string Shown(const std::string& line) {
  std::string shown;
  for (char c : line)
    if (c == '\r')
      shown += "\\r";
    else if (c != '\n')
      shown += c;
  return shown + (line.empty() || line.back() != '\n' ? "\n\\ No newline at end of text\n" : "\n");
}

std::vector<Edit> Edits(const std::vector<std::string>& want, const std::vector<std::string>& got) {
  const size_t n = want.size(), m = got.size();
  std::vector<std::vector<size_t>> common(n + 1, std::vector<size_t>(m + 1, 0));
  for (size_t i = n; i-- > 0;)
    for (size_t j = m; j-- > 0;)
      common[i][j] =
          want[i] == got[j] ? common[i + 1][j + 1] + 1 : std::max(common[i + 1][j], common[i][j + 1]);
  std::vector<Edit> edits;
  size_t i = 0, j = 0;
  while (i < n || j < m) {
    if (i < n && j < m && want[i] == got[j]) {
      edits.push_back({' ', want[i], i + 1, j + 1});
      ++i, ++j;
    } else if (i < n && (j == m || common[i + 1][j] >= common[i][j + 1])) {
      edits.push_back({'-', want[i], i + 1, j + 1});
      ++i;
    } else {
      edits.push_back({'+', got[j], i + 1, j + 1});
      ++j;
    }
  }
  return edits;
}

}  // namespace

std::string UnifiedDiff(const std::string& want, const std::string& got) {
  const std::vector<Edit> edits = Edits(Lines(want), Lines(got));
  const size_t context = 3;
  std::string out;
  size_t at = 0;
  while (at < edits.size()) {
    if (edits[at].mark == ' ') {
      ++at;
      continue;
    }
    // A hunk runs from `context` lines ahead of this change to `context` lines behind the last
    // change that lies closer than twice the context to the one before it.
    size_t begin = at >= context ? at - context : 0, end = at;
    for (size_t next = at; next < edits.size(); ++next)
      if (edits[next].mark != ' ') {
        if (next > end + 2 * context) break;
        end = next;
      }
    end = std::min(edits.size(), end + context + 1);
    out += "@@ -" + std::to_string(edits[begin].wantLine) + " +" + std::to_string(edits[begin].gotLine) +
           " @@\n";
    for (size_t k = begin; k < end; ++k) out += edits[k].mark + Shown(edits[k].line);
    at = end;
  }
  return out.empty() ? "(texts are equal)\n" : out;
}
