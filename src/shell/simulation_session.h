#pragma once
/// SimulationSession: the editor's side of a behaviour simulation. It runs
/// the simulation of the open diagram on a copy of its nodes and edges (the
/// document is never changed), steps it by hand or on a timer at 0.5x, 1x
/// or 2x, stops at breakpoints and, when asked to, at decisions, keeps the
/// elements to highlight (active, visited, last visited, breakpoints),
/// words every event for the output log through the "ui.log.act_*",
/// "ui.log.seq_*" and "ui.log.stm_*" keys, and exports the trace in the
/// same bytes as `modelyne simulate`. Editing is locked while a simulation
/// is open.

#include <QObject>
#include <QString>
#include <QStringList>
#include <QTimer>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "core/document.h"
#include "sim/simulation.h"

namespace modelyne::shell {

class SimulationSession : public QObject {
  Q_OBJECT
 public:
  explicit SimulationSession(QObject* parent = nullptr);
  ~SimulationSession() override;

  /// Opens a simulation of the document's diagram (replacing any other).
  void open(const core::Document& doc, core::sim::SimulationOptions options = {});
  /// Ends the simulation; editing is unlocked.
  void close();
  bool isOpen() const noexcept { return sim_ != nullptr; }
  /// Whether editing must be refused: a simulation is open.
  bool editingLocked() const noexcept { return isOpen(); }

  /// One step (round, message or event); false when the run is over.
  bool step();
  /// Automatic motion: one step per interval until paused, finished, at a
  /// breakpoint or at a decision that needs asking.
  void run();
  void pause();
  bool running() const noexcept { return timer_.isActive(); }
  /// 0.5, 1 or 2 (other values are clamped to that range).
  void setSpeed(double factor);
  double speed() const noexcept { return speed_; }
  /// Milliseconds between steps at the current speed.
  int interval() const noexcept;
  /// Back to before the first step; highlights and log cleared.
  void reset();

  void toggleBreakpoint(const std::string& nodeId);
  const std::set<std::string>& breakpoints() const noexcept { return breakpoints_; }
  void setAskAtDecisions(bool ask) { ask_ = ask; }
  bool askAtDecisions() const noexcept { return ask_; }
  /// Answers a pending decision with one of its outgoing flows.
  bool choose(const std::string& nodeId, const std::string& edgeId);

  /// Element ids to highlight.
  const std::set<std::string>& active() const noexcept { return active_; }
  const std::set<std::string>& visited() const noexcept { return visited_; }
  const std::set<std::string>& lastVisited() const noexcept { return lastVisited_; }

  const core::sim::Simulation* simulation() const noexcept { return sim_.get(); }
  /// The trace in the text form, or one JSON object per line.
  std::string traceText(bool jsonl) const;
  /// Writes the trace to `path` in one piece; false with `error` on failure.
  bool exportTrace(const QString& path, bool jsonl, QString* error = nullptr) const;

  /// The log line of one event, in the current language.
  static QString logLine(core::sim::SimulationKind kind, const core::sim::TraceEvent& event);

 signals:
  /// A log line for the output log, one per event.
  void logged(const QString& line);
  /// The highlights or the state changed.
  void changed();
  /// The run paused at a decision: `nodeId` waits for `choose`.
  void decisionNeeded(const QString& nodeId, const QStringList& outgoing);

 private:
  void afterStep(std::size_t firstNew);
  bool pausesBefore();

  std::unique_ptr<core::sim::Simulation> sim_;
  std::vector<core::Node> nodes_;
  std::vector<core::Edge> edges_;
  QTimer timer_;
  double speed_ = 1.0;
  bool ask_ = false;
  std::set<std::string> breakpoints_;
  std::set<std::string> active_, visited_, lastVisited_;
};

}  // namespace modelyne::shell
