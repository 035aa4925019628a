// Print statements of a hierarchical deck, from the probe pass's scopes and items.
#include "post/print_statements.h"

#include <algorithm>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "design/probe_text.h"

PrintSettings PrintSettingsOf(const WireOptions& options) {
  PrintSettings settings;
  settings.printWord = options.printWord;
  settings.wirelistKind = options.wirelistKind;
  settings.analogDeps = options.analogDeps;
  return settings;
}

namespace {

bool IsPrint(const PrintSettings& settings) { return settings.printWord == ".PRINT"; }

// Pspice: brackets around a named node's path; decibel and phase on AC.
void PspiceStatements(const std::string& key, bool current, const std::string& path,
                      const ProbePassState& state, const PrintSettings& settings, std::string& text) {
  const std::string t = current ? "I" : "V";
  const bool plain = current || IsAllDigits(key);
  const std::string open = plain ? "(" : "([";
  const std::string close = plain ? ")" : "])";
  const std::string& word = settings.printWord;
  const std::string probe = open + path + close;
  if (state.hasAcAnalysis) {
    // .PROBE/CSDF ends its line; the items go on the next one, which a simulator reads as part of
    // the statement only behind the continuation mark.
    text += IsPrint(settings) ? word + " AC " : word + "/CSDF\n+ ";
    text += t + "DB" + probe + " " + t + "P" + probe + "\n";
  }
  if (state.hasDcAnalysis && IsPrint(settings)) text += word + " DC " + t + probe + "\n";
  if (state.hasTranAnalysis && IsPrint(settings)) text += word + " TRAN " + t + probe + "\n";
  if ((state.hasDcAnalysis || state.hasTranAnalysis) && !IsPrint(settings) && !settings.analogDeps)
    text += word + " " + t + probe + "\n";
}

// Kelpo and HSPICE: decibel and phase words under every analysis.
void DecibelStatements(bool current, const std::string& path, const ProbePassState& state,
                       const PrintSettings& settings, std::string& text) {
  const std::string t = current ? "I" : "V";
  const std::string tail = t + "DB(" + path + ") " + t + "P(" + path + ")\n";
  if (state.hasAcAnalysis) text += settings.printWord + " AC " + tail;
  if (state.hasDcAnalysis) text += settings.printWord + " DC " + tail;
  if (state.hasTranAnalysis) text += settings.printWord + " TRAN " + tail;
}

// Berkeley SPICE: one plain .PRINT line under each analysis.
void BerkeleyStatements(bool current, const std::string& path, const ProbePassState& state,
                        std::string& text) {
  const std::string tail = (current ? "I(" : "V(") + path + ")\n";
  if (state.hasAcAnalysis) text += ".PRINT AC " + tail;
  if (state.hasDcAnalysis) text += ".PRINT DC " + tail;
  if (state.hasTranAnalysis) text += ".PRINT TRAN " + tail;
}

void ProbeStatements(const std::string& key, const std::string& kind, const std::string& path,
                     const ProbePassState& state, const PrintSettings& settings, std::string& text) {
  const bool current = kind == "c";
  switch (settings.wirelistKind) {
    case kPspice:
      PspiceStatements(key, current, path, state, settings, text);
      break;
    case kKelpo:
    case kHspice:
      DecibelStatements(current, path, state, settings, text);
      break;
    case kBerkeley:
      BerkeleyStatements(current, path, state, text);
      break;
    default:
      break;
  }
}

// The chain of scopes as a vector, oldest first, with an index by name so that the
// definition behind an instance is found without walking the chain.
class ScopeChain {
 public:
  explicit ScopeChain(const ProbeScope* any) {
    const ProbeScope* head = any;
    while (head->prev) head = head->prev;
    for (const ProbeScope* s = head; s; s = s->next) {
      if (s == any) start_ = records_.size();
      if (s->name.empty()) {
        topLevel_.push_back(records_.size());
        topLevelProbes_ += s->probes.size();
        topLevelInstances_ += s->instances.size();
      } else {
        byName_[s->name].push_back(records_.size());
      }
      records_.push_back(s);
    }
  }
  const ProbeScope* At(size_t pos) const { return records_[pos]; }
  /// The position of the scope the chain was made from.
  size_t Start() const { return start_; }
  /// The positions of the unnamed (top-level) records, oldest first.
  const std::vector<size_t>& TopLevel() const { return topLevel_; }
  size_t TopLevelProbes() const { return topLevelProbes_; }
  size_t TopLevelInstances() const { return topLevelInstances_; }

  /// The position of the newest record at or before `pos` named `name`; false if none.
  bool FindAtOrBefore(size_t pos, const std::string& name, size_t& found) const {
    auto it = byName_.find(name);
    if (it == byName_.end()) return false;
    const std::vector<size_t>& list = it->second;
    auto after = std::upper_bound(list.begin(), list.end(), pos);
    if (after == list.begin()) return false;
    found = *(after - 1);
    return true;
  }

 private:
  std::vector<const ProbeScope*> records_;
  std::vector<size_t> topLevel_;
  size_t topLevelProbes_ = 0, topLevelInstances_ = 0;
  size_t start_ = 0;
  std::unordered_map<std::string, std::vector<size_t>> byName_;
};

// Walks scopes and instances. The top level may be spread over several stretches of the
// chain; there each probe and each instance is taken once, so every path is written once.
class ProbeWalker {
 public:
  ProbeWalker(const ScopeChain& chain, const ProbePassState& state, const PrintSettings& settings,
              std::string& text)
      : chain_(chain), state_(state), settings_(settings), text_(text) {}

  /// Every top-level stretch of the chain, in deck order.
  void WalkTopLevel(const std::string& prefix) {
    TopLevelSeen seen;
    seen.voltages.reserve(chain_.TopLevelProbes());
    seen.instances.reserve(chain_.TopLevelInstances());
    for (size_t pos : chain_.TopLevel()) WalkMatched(pos, prefix, &seen);
  }

  /// The nearest stretch at or before `pos` named `wanted`.
  void WalkNamed(size_t pos, const std::string& prefix, const std::string& wanted) {
    size_t found = 0;
    if (!wanted.empty() && chain_.FindAtOrBefore(pos, wanted, found)) WalkMatched(found, prefix, nullptr);
  }

 private:
  // Keys point into the scopes' own maps, which outlive the walk.
  struct TopLevelSeen {
    std::unordered_set<std::string_view> voltages, currents, instances;
  };

  static bool FirstTime(TopLevelSeen* seen, const std::string& key, const std::string& kind) {
    if (!seen) return true;
    return (kind == "c" ? seen->currents : seen->voltages).insert(key).second;
  }

  void WalkMatched(size_t pos, const std::string& prefix, TopLevelSeen* seen) {
    const ProbeScope& scope = *chain_.At(pos);
    for (const auto& [key, kind] : scope.probes)
      if (FirstTime(seen, key, kind)) ProbeStatements(key, kind, prefix + key, state_, settings_, text_);
    if (pos == 0) return;
    for (const auto& [instance, target] : scope.instances)
      if (!seen || seen->instances.insert(instance).second)
        WalkNamed(pos - 1, prefix + instance + ".", target);
  }

  const ScopeChain& chain_;
  const ProbePassState& state_;
  const PrintSettings& settings_;
  std::string& text_;
};

}  // namespace

void WalkProbeScopes(const ProbeScope* scope, const std::string& prefix, const std::string& wanted,
                     const ProbePassState& state, const PrintSettings& settings, std::string& text) {
  if (!scope) return;
  ScopeChain chain(scope);
  ProbeWalker walker(chain, state, settings, text);
  if (wanted.empty())
    walker.WalkTopLevel(prefix);
  else
    walker.WalkNamed(chain.Start(), prefix, wanted);
}

void ScopeStatements(const ProbeScope& scope, const std::string& prefix, const ProbePassState& state,
                     const PrintSettings& settings, std::string& text) {
  for (const auto& [key, kind] : scope.probes)
    ProbeStatements(key, kind, prefix + key, state, settings, text);
}

void ItemStatements(const ProbePassState& state, const PrintSettings& settings, std::string& text) {
  std::string local;
  if (settings.analogDeps && !IsPrint(settings)) local += ".PROBE/CSDF\n";
  state.probeItems.ForEachNewestFirst([&](std::string_view view) {
    if (view.empty()) return;
    const std::string item(view);
    if (IsPrint(settings)) {
      if (state.hasAcAnalysis) local += settings.printWord + " AC " + item + "\n";
      if (state.hasDcAnalysis) local += settings.printWord + " DC " + item + "\n";
      if (state.hasTranAnalysis) local += settings.printWord + " TRAN " + item + "\n";
    } else if (!settings.analogDeps) {
      local += settings.printWord + " " + item + "\n";
    }
  });
  text += local;
  text += "\n";
}
