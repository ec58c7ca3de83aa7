#pragma once
/// Behaviour simulation of a diagram: activity token flow, sequence
/// messages and state machines behind one interface. A `Simulation` is made
/// from a copy of what it needs of the diagram (it never changes the
/// document), then driven with `start`, `step` (one round, one message or
/// one event), `run` and `reset`; it reports the current marking and
/// appends every event to its trace. The same diagram and options give the
/// same trace, byte for byte.
///
///   auto sim = makeSimulation(doc.frame().kind, doc.nodes(), doc.edges(), options);
///   sim->run();
///   for (const TraceEvent& e : sim->trace()) out += formatTextLine(e);

#include <algorithm>
#include <cstdint>
#include <map>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "core/diagram_kind.h"
#include "core/model.h"
#include "sim/guard.h"
#include "sim/trace.h"

namespace modelyne::core::sim {

/// Rounds (or messages, or events) a run takes at most unless told.
inline constexpr std::uint64_t kDefaultMaxSteps = 10000;

struct SimulationOptions {
  /// Per node, the flows (or fragment operand numbers, 1-based; 0 for none)
  /// the user chose, used in turn at the node's successive decisions; the
  /// last one is kept once they are used up. An inclusive gateway takes all
  /// of its entries at once.
  std::map<std::string, std::vector<std::string>, std::less<>> choices;
  /// Named values for guards; they win over the diagram's value properties.
  std::map<std::string, double, std::less<>> values;
  /// Loop fragment id to number of iterations (default 1).
  std::map<std::string, std::uint64_t, std::less<>> loops;
  /// State machine events, offered in turn.
  std::vector<std::string> events;
  std::uint64_t maxSteps = kDefaultMaxSteps;
  /// When set, events go here instead of being kept in `trace()` (long runs).
  TraceSink sink;
};

enum class SimulationKind : unsigned char { activity, sequence, stateMachine };

/// "activity", "sequence", "state machine".
std::string_view simulationKindName(SimulationKind kind) noexcept;

/// What is where now. Lists are in document order.
struct Marking {
  std::vector<std::pair<std::string, std::uint32_t>> tokens;  ///< flow id, tokens on it (> 0)
  std::vector<std::string> activeNodes;   ///< fired in the last step; lifelines and activations of the current message
  std::vector<std::string> activeEdges;   ///< the current message or last transition
  std::vector<std::string> activeStates;  ///< the state configuration, outermost first
};

/// Something about the diagram the simulation could not use, with the
/// element it concerns.
struct SimulationProblem {
  std::string elementId;
  std::string message;
  bool option = false;  ///< about an option the user gave, not the diagram
};

class Simulation {
 public:
  virtual ~Simulation() = default;

  virtual SimulationKind kind() const noexcept = 0;
  /// Puts the initial tokens (sends nothing yet, enters the initial state).
  /// Does nothing when already started.
  virtual void start() = 0;
  /// One round of the activity, one message, or one event; starts first
  /// when needed. Returns false when the run is over.
  virtual bool step() = 0;
  /// Steps until the run is over; returns the status.
  RunStatus run();
  /// Back to before `start`, trace cleared.
  virtual void reset() = 0;

  virtual RunStatus status() const noexcept = 0;
  bool finished() const noexcept { return status() != RunStatus::running; }
  virtual std::uint64_t steps() const noexcept = 0;
  virtual Marking marking() const = 0;
  /// Nodes that will decide in the next step and have no choice set yet
  /// (for asking the user); empty for other kinds.
  virtual std::vector<std::string> pendingDecisions() const { return {}; }
  /// Sets the choice of a decision for its next visit (the id of one of its
  /// outgoing flows); false when the node or flow is not one.
  virtual bool choose(std::string_view node, std::string_view edge);

  const std::vector<TraceEvent>& trace() const noexcept { return trace_; }
  const std::vector<SimulationProblem>& problems() const noexcept { return problems_; }

 protected:
  explicit Simulation(SimulationOptions options) : options_(std::move(options)) {}
  void record(TraceEvent event);
  void clearTrace() { trace_.clear(); }
  /// Room for about this many events, so a long run does not move its trace.
  void reserveTrace(std::size_t events) {
    if (!options_.sink) trace_.reserve(std::min<std::size_t>(events, std::size_t{1} << 20));
  }
  void problem(std::string elementId, std::string message, bool option = false);

  SimulationOptions options_;

 private:
  std::vector<TraceEvent> trace_;
  std::vector<SimulationProblem> problems_;
};

/// Which simulation a diagram gets: "sd" a sequence, "stm" a state machine,
/// any other kind an activity.
SimulationKind simulationKindFor(DiagramKind kind) noexcept;

/// Guard values: the diagram's value properties (as parametric propagation
/// computes them), then `options.values` over them.
GuardValues guardValues(std::span<const Node> nodes, std::span<const Edge> edges,
                        const SimulationOptions& options);

std::unique_ptr<Simulation> makeSimulation(SimulationKind kind, std::span<const Node> nodes,
                                           std::span<const Edge> edges, SimulationOptions options);
std::unique_ptr<Simulation> makeSimulation(DiagramKind kind, std::span<const Node> nodes,
                                           std::span<const Edge> edges, SimulationOptions options);

}  // namespace modelyne::core::sim
