// The probe pass: rereads a hierarchical deck, drops its probe markers, learns its
// subcircuits, models and analyses, and puts the print statements ahead of "*.END".
#pragma once

#include <ostream>
#include <string>
#include <string_view>

#include "post/print_statements.h"
#include "post/probe_scope.h"

/// Where the pass reads the deck's lines from: each line without its line end ("\r\n"
/// reads as an end of line too); false when there are no more.
class ProbeLineSource {
 public:
  virtual ~ProbeLineSource() = default;
  virtual bool Read(std::string& line) = 0;
  /// The text at hand behind the lines read, not yet read: whole lines and perhaps the start
  /// of one; empty when the source keeps none at hand.
  virtual std::string_view Ahead() const { return {}; }
  /// Passes over `size` characters of Ahead, which ends lines.
  virtual void Skip(size_t /*size*/) {}
};

/// Runs the pass over the whole text of a deck and returns the new text, which ends
/// in " \n". Duplicate definitions are reported on `console`. The state must hold the
/// first scope (one is made when it does not).
std::string ProbeProcessText(const std::string& text, ProbePassState& state, const PrintSettings& settings,
                             std::ostream& console);

/// The same pass over the lines of `source`: the new text (the one ProbeProcessText makes of
/// the whole) goes to `target` in large pieces as the lines come.
void ProbeProcessLines(ProbeLineSource& source, ProbePassState& state, const PrintSettings& settings,
                       std::ostream& target, std::ostream& console);

/// Enters a probe of `kind` ("v" or "c") in the scope of `subcircuit`; returns the scope
/// to go on with, a new one at the end of the chain when `scope` belongs to another.
ProbeScope* AddScopeProbe(ProbePassState& state, const std::string& kind, const std::string& node,
                          const std::string& subcircuit, ProbeScope* scope);

/// Enters the instance of the X line `line` in `subcircuit`; a top-level instance always opens
/// a new scope. Until the first probe the instances are held, and entered ahead of it.
ProbeScope* AddScopeInstance(ProbePassState& state, const std::string& line, const std::string& subcircuit,
                             ProbeScope* scope);

/// Records a model by its full path; a second definition queues a duplicate message.
void NoteModel(ProbePassState& state, const std::string& name);
/// Records a subcircuit by its full path; a second definition queues a duplicate message.
void NoteSubckt(ProbePassState& state, const std::string& path);
/// Records the text of a .probe/csdf line, once.
void NoteProbeItem(ProbePassState& state, const std::string& text);
/// Writes the queued duplicate messages, subcircuits first, newest first, and drops them.
void ReportDuplicates(ProbePassState& state, std::ostream& console);

/// The subcircuit an X line calls: the last word behind the instance name that is not
/// a parameter ("A" in "X1 N1 N2 A PARAMS: W=1" and in "X1 N1 N2 A W = 1").
std::string CalledSubckt(const std::string& line);
