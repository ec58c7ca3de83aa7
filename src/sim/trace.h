#pragma once
/// The trace of a behaviour simulation: one `TraceEvent` per thing that
/// happened (a node fired, a decision chose, a message was sent, a
/// transition fired, the run ended), and its two written forms: a
/// tab-separated line for people ("STEP EVENT ID IN OUT DETAIL", "-" for
/// empty) and one JSON object per line for tools. Both are deterministic:
/// the same events give the same bytes.

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace modelyne::core::sim {

enum class EventKind : std::uint8_t {
  start,       ///< an initial node offered its tokens
  fire,        ///< a node consumed and offered tokens
  decide,      ///< a decision passed its token to one flow (or could not)
  final,       ///< an activity final node ended the run
  flowFinal,   ///< a flow final node or end event consumed its token
  message,     ///< a sequence message was sent
  skip,        ///< a message (or an offered event) was not taken
  enter,       ///< a fragment operand, or a state, was entered
  transition,  ///< a state machine transition fired
  stall,       ///< tokens wait at a node that can no longer fire
  end,         ///< the run is over (always the last event)
};

/// Why a decision took its flow.
enum class DecideReason : std::uint8_t { none, user, guard, elseFlow, unknownGuard };

enum class RunStatus : std::uint8_t { running, completed, stalled, limit };

/// Key of an event kind as written ("fire", "flowFinal", ...).
std::string_view eventKindKey(EventKind kind) noexcept;
/// "user", "guard", "else", "unknown-guard"; empty for none.
std::string_view decideReasonKey(DecideReason reason) noexcept;
/// "running", "completed", "stalled", "limit".
std::string_view runStatusKey(RunStatus status) noexcept;

/// One event. Which fields apply depends on the kind; unused ones stay
/// empty. Ids are node and edge ids of the simulated diagram.
struct TraceEvent {
  std::uint64_t step = 0;
  EventKind kind = EventKind::fire;
  std::string node;                  ///< the node (or fragment, or state)
  std::vector<std::string> in;       ///< flows whose tokens it consumed
  std::vector<std::string> out;      ///< flows it offered tokens on
  std::string chosen;                ///< decide: the flow taken (empty: none)
  DecideReason reason = DecideReason::none;
  std::vector<std::string> destroyed;  ///< final: flows whose tokens it destroyed
  std::string edge;                  ///< message, skip, transition
  std::string from, to;              ///< message ends, transition source and target
  std::string detail;
  RunStatus status = RunStatus::running;  ///< end
  std::vector<std::string> waiting;  ///< end: flows that still hold tokens
};

/// Receives events as they happen.
using TraceSink = std::function<void(const TraceEvent&)>;

/// "STEP\tEVENT\tID\tIN\tOUT\tDETAIL\n". ID is the node, else the edge; for
/// messages and transitions IN and OUT are the source and target; for
/// decisions OUT is the chosen flow and DETAIL starts with the reason; for
/// final nodes DETAIL starts with "destroyed " and the flows; the end line
/// has the status as ID, the steps as STEP and the waiting flows as IN.
/// Tabs and line breaks inside a field become blanks.
std::string formatTextLine(const TraceEvent& event);

/// One JSON object and a line feed, keys in the order step, event, node,
/// in, out, chosen, reason, destroyed, edge, from, to, detail, each only
/// where it applies; the end event is {"event": "end", "status": ...,
/// "steps": N, "waiting": [...]}.
std::string formatJsonLine(const TraceEvent& event);

}  // namespace modelyne::core::sim
