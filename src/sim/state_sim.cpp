// State machine simulation. One state is active at a time together with
// the composite states around it; the initial transition fires at the
// start, then every offered event either fires one transition or is
// skipped.
#include "sim/state_sim.h"

#include <algorithm>
#include <string_view>
#include <unordered_map>

#include "sim/behaviour_roles.h"

namespace modelyne::core::sim {

namespace {

constexpr int kNoVertex = -1;
// Transitions that lead on at once (through pseudostates, initial
// substates and history) nest; a chain longer than this is a cycle.
constexpr int kMaxChain = 200;

std::string_view trimmed(std::string_view s) {
  constexpr std::string_view kBlanks = " \t\r\n";
  const auto b = s.find_first_not_of(kBlanks);
  if (b == std::string_view::npos) return {};
  return s.substr(b, s.find_last_not_of(kBlanks) - b + 1);
}

struct Vertex {
  std::string id;
  std::string name;
  StateRole role = StateRole::none;
  int parent = kNoVertex;
  std::string entry, exit;
  std::string defaultTarget;
  std::vector<std::uint32_t> out;  ///< transitions, edge order
  std::vector<std::uint32_t> userChoices;
  float x = 0, y = 0, w = 0, h = 0;
};

struct Transition {
  std::string id;
  std::uint32_t source = 0, target = 0;
  std::string head;  ///< the label before "/": triggers and guard
  std::vector<std::string> triggers;
  GuardResult guard;
  std::string effect;
};

// "entry / lock()" lines of a state label, unless a property says it.
std::string actionOf(const Node& n, std::string_view key) {
  const auto p = n.properties.find(std::string(key));
  if (p != n.properties.end() && !trimmed(p->second).empty()) return std::string(trimmed(p->second));
  std::string_view text = n.text;
  while (!text.empty()) {
    const auto nl = text.find('\n');
    const std::string_view line = trimmed(text.substr(0, nl));
    text = nl == std::string_view::npos ? std::string_view{} : text.substr(nl + 1);
    if (line.starts_with(key)) {
      const std::string_view rest = trimmed(line.substr(key.size()));
      if (rest.starts_with("/")) return std::string(trimmed(rest.substr(1)));
    }
  }
  return {};
}

class StateMachineSimulation final : public Simulation {
 public:
  StateMachineSimulation(std::span<const Node> nodes, std::span<const Edge> edges, SimulationOptions options)
      : Simulation(std::move(options)) {
    build(nodes, edges);
    reset();
  }

  SimulationKind kind() const noexcept override { return SimulationKind::stateMachine; }
  RunStatus status() const noexcept override { return status_; }
  std::uint64_t steps() const noexcept override { return step_; }

  void reset() override {
    clearTrace();
    active_ = kNoVertex;
    lastTransition_ = -1;
    history_.assign(vertices_.size(), kNoVertex);
    deepHistory_.assign(vertices_.size(), kNoVertex);
    visits_.assign(vertices_.size(), 0);
    step_ = 0;
    fired_ = 0;
    started_ = false;
    status_ = RunStatus::running;
  }

  void start() override {
    if (started_) return;
    started_ = true;
    // The initial pseudostate outside every state starts the machine.
    int initial = kNoVertex;
    for (std::size_t v = 0; v < vertices_.size() && initial == kNoVertex; ++v)
      if (vertices_[v].role == StateRole::initial && vertices_[v].parent == kNoVertex) initial = static_cast<int>(v);
    if (initial == kNoVertex || vertices_[static_cast<std::size_t>(initial)].out.empty()) {
      TraceEvent e;
      e.kind = EventKind::stall;
      e.detail = initial == kNoVertex ? "no initial pseudostate outside the states"
                                      : "the initial pseudostate has no transition";
      if (initial != kNoVertex) e.node = vertices_[static_cast<std::size_t>(initial)].id;
      record(std::move(e));
      finish(RunStatus::stalled, {});
      return;
    }
    fire(vertices_[static_cast<std::size_t>(initial)].out[0], {});
    settle();
  }

  bool step() override {
    if (!started_) {
      start();
      return status_ == RunStatus::running;
    }
    if (status_ != RunStatus::running) return false;
    if (step_ >= options_.events.size()) {
      finish(RunStatus::completed, {});
      return false;
    }
    if (step_ >= options_.maxSteps) {
      finish(RunStatus::limit, "step limit " + std::to_string(options_.maxSteps) + " reached");
      return false;
    }
    const std::string& event = options_.events[step_++];
    offer(event);
    if (status_ == RunStatus::running) settle();
    if (status_ == RunStatus::running && step_ >= options_.events.size()) finish(RunStatus::completed, {});
    return status_ == RunStatus::running;
  }

  Marking marking() const override {
    Marking m;
    for (int v = active_; v != kNoVertex; v = vertices_[static_cast<std::size_t>(v)].parent)
      m.activeStates.insert(m.activeStates.begin(), vertices_[static_cast<std::size_t>(v)].id);
    if (active_ != kNoVertex) m.activeNodes.push_back(vertices_[static_cast<std::size_t>(active_)].id);
    if (lastTransition_ >= 0) m.activeEdges.push_back(transitions_[static_cast<std::size_t>(lastTransition_)].id);
    return m;
  }

 private:
  // ---- Reading the machine

  void build(std::span<const Node> nodes, std::span<const Edge> edges) {
    std::unordered_map<std::string_view, int> index;  // node id to vertex, -2 for other nodes
    index.reserve(nodes.size());
    for (const Node& n : nodes) {
      const StateRole role = stateRole(n.type);
      if (role == StateRole::none) {
        index.emplace(n.id, -2);
        continue;
      }
      index.emplace(n.id, static_cast<int>(vertices_.size()));
      Vertex v;
      v.id = n.id;
      const std::string_view firstLine = trimmed(std::string_view(n.text).substr(0, n.text.find('\n')));
      v.name = firstLine.empty() ? n.id : std::string(firstLine);
      v.role = role;
      v.entry = actionOf(n, "entry");
      v.exit = actionOf(n, "exit");
      const auto d = n.properties.find("defaultTarget");
      if (d != n.properties.end()) v.defaultTarget = std::string(trimmed(d->second));
      v.x = n.geom.x;
      v.y = n.geom.y;
      v.w = n.geom.w;
      v.h = n.geom.h;
      vertices_.push_back(std::move(v));
    }
    placeVertices();

    GuardValues values;
    bool anyGuard = false;
    for (const Edge& e : edges) anyGuard = anyGuard || e.text.find('[') != std::string::npos;
    if (anyGuard) values = guardValues(nodes, edges, options_);
    for (const Edge& e : edges) {
      if (!isTransitionEdge(e.type)) continue;
      const auto s = index.find(e.source), t = index.find(e.target);
      if (s == index.end() || t == index.end()) {
        problem(e.id, "transition '" + e.id + "' names a missing node '" + (s == index.end() ? e.source : e.target) +
                          "'; it is ignored");
        continue;
      }
      if (s->second < 0 || t->second < 0) continue;
      Transition tr;
      tr.id = e.id;
      tr.source = static_cast<std::uint32_t>(s->second);
      tr.target = static_cast<std::uint32_t>(t->second);
      readLabel(e.text, tr, values);
      vertices_[tr.source].out.push_back(static_cast<std::uint32_t>(transitions_.size()));
      transitions_.push_back(std::move(tr));
    }

    for (const auto& [nodeId, chosen] : options_.choices) {
      const auto v = index.find(nodeId);
      if (v == index.end() || v->second < 0) {
        problem(nodeId, "--choose names '" + nodeId + "', which is no vertex of the state machine", true);
        continue;
      }
      Vertex& vertex = vertices_[static_cast<std::size_t>(v->second)];
      for (const std::string& edgeId : chosen) {
        const auto it = std::find_if(vertex.out.begin(), vertex.out.end(),
                                     [&](std::uint32_t t) { return transitions_[t].id == edgeId; });
        if (it == vertex.out.end())
          problem(nodeId, "--choose " + nodeId + "=" + edgeId + ": '" + edgeId + "' is no transition out of '" +
                              nodeId + "'", true);
        else
          vertex.userChoices.push_back(*it);
      }
    }
  }

  // "trigger, trigger [guard] / effect".
  static void readLabel(std::string_view label, Transition& t, const GuardValues& values) {
    std::size_t slash = std::string_view::npos;
    int depth = 0;
    for (std::size_t i = 0; i < label.size() && slash == std::string_view::npos; ++i) {
      if (label[i] == '[' || label[i] == '(') ++depth;
      if (label[i] == ']' || label[i] == ')') --depth;
      if (label[i] == '/' && depth <= 0) slash = i;
    }
    const std::string_view head = label.substr(0, slash);
    t.head = std::string(trimmed(head));
    if (slash != std::string_view::npos) t.effect = std::string(trimmed(label.substr(slash + 1)));
    t.guard = evaluateGuard(guardOfLabel(head), values);
    std::string_view triggers = trimmed(head.substr(0, head.find('[')));
    while (!triggers.empty()) {
      const auto comma = triggers.find(',');
      const std::string_view one = trimmed(triggers.substr(0, comma));
      if (!one.empty()) t.triggers.emplace_back(one);
      if (comma == std::string_view::npos) break;
      triggers.remove_prefix(comma + 1);
    }
  }

  static double area(const Vertex& v) { return static_cast<double>(v.w) * static_cast<double>(v.h); }

  // A vertex's parent is the smallest state whose box holds its box (equal
  // boxes: the one drawn first holds the other).
  void placeVertices() {
    for (std::size_t i = 0; i < vertices_.size(); ++i) {
      const Vertex& v = vertices_[i];
      int best = kNoVertex;
      for (std::size_t j = 0; j < vertices_.size(); ++j) {
        const Vertex& p = vertices_[j];
        if (j == i || p.role != StateRole::state) continue;
        if (!(p.x <= v.x && p.y <= v.y && p.x + p.w >= v.x + v.w && p.y + p.h >= v.y + v.h)) continue;
        const bool same = p.x == v.x && p.y == v.y && p.w == v.w && p.h == v.h;
        if (same && j > i) continue;
        if (best == kNoVertex || area(p) < area(vertices_[static_cast<std::size_t>(best)])) best = static_cast<int>(j);
      }
      vertices_[i].parent = best;
    }
  }

  // ---- Running

  bool isAncestor(int a, int v) const {
    for (; v != kNoVertex; v = vertices_[static_cast<std::size_t>(v)].parent)
      if (v == a) return true;
    return false;
  }

  // Offers one event: the innermost active state with a transition whose
  // trigger matches and whose guard holds (edge order within a state) fires.
  void offer(const std::string& event) {
    std::string unknown;
    for (int s = active_; s != kNoVertex; s = vertices_[static_cast<std::size_t>(s)].parent)
      for (const std::uint32_t t : vertices_[static_cast<std::size_t>(s)].out) {
        const Transition& tr = transitions_[t];
        if (std::find(tr.triggers.begin(), tr.triggers.end(), event) == tr.triggers.end()) continue;
        if (tr.guard.outcome == GuardOutcome::unknown) {
          unknown += (unknown.empty() ? "" : "; ") + describeUnknown(tr.id, tr.guard);
          continue;
        }
        if (!guardHolds(tr.guard)) continue;
        fire(t, unknown);
        return;
      }
    TraceEvent e;
    e.step = step_;
    e.kind = EventKind::skip;
    if (active_ != kNoVertex) e.node = vertices_[static_cast<std::size_t>(active_)].id;
    e.detail = "event " + event + " not accepted" + (unknown.empty() ? "" : "; " + unknown);
    record(std::move(e));
  }

  // Fires a transition: exits the states that the target is not inside (exit
  // actions, history remembered), then the effect, then enters the target.
  void fire(std::uint32_t t, const std::string& note) {
    if (++fired_ > transitionBudget()) {
      finish(RunStatus::limit, "transition limit reached (a cycle of transitions without events)");
      return;
    }
    if (chain_ >= kMaxChain) {
      finish(RunStatus::limit, "more than " + std::to_string(kMaxChain) +
                                   " transitions in a row without reaching a state (a cycle of pseudostates)");
      return;
    }
    struct Nesting {
      int& depth;
      explicit Nesting(int& d) : depth(d) { ++depth; }
      ~Nesting() { --depth; }
    } nesting(chain_);
    const Transition& tr = transitions_[t];
    lastTransition_ = static_cast<int>(t);
    const int target = static_cast<int>(tr.target);
    // The innermost state holding both ends stays active.
    int common = vertices_[tr.source].parent;
    while (common != kNoVertex && !isAncestor(common, target)) common = vertices_[static_cast<std::size_t>(common)].parent;
    std::string detail;
    const auto add = [&detail](const std::string& s) { detail += (detail.empty() ? "" : "; ") + s; };
    if (!tr.head.empty()) add(tr.head);
    // Every active state below the common one is left, innermost first; each
    // state around it remembers it (shallow) and the innermost (deep).
    const int leaf = active_;
    for (int s = active_; s != kNoVertex && s != common; s = vertices_[static_cast<std::size_t>(s)].parent) {
      const Vertex& v = vertices_[static_cast<std::size_t>(s)];
      if (v.parent != kNoVertex) {
        history_[static_cast<std::size_t>(v.parent)] = s;
        deepHistory_[static_cast<std::size_t>(v.parent)] = leaf;
      }
      if (!v.exit.empty()) add("exit " + v.name + " / " + v.exit);
    }
    if (!tr.effect.empty()) add("effect / " + tr.effect);
    if (!note.empty()) add(note);
    TraceEvent e;
    e.step = step_;
    e.kind = EventKind::transition;
    e.edge = tr.id;
    e.from = vertices_[tr.source].id;
    e.to = vertices_[tr.target].id;
    e.detail = std::move(detail);
    record(std::move(e));
    active_ = common;
    enter(target, common);
  }

  // Enters `target` from inside `from` (a state around it, or none): the
  // states between, outermost first, then what the target is.
  void enter(int target, int from) {
    std::vector<int> chain;
    for (int v = target; v != kNoVertex && v != from; v = vertices_[static_cast<std::size_t>(v)].parent) chain.push_back(v);
    std::reverse(chain.begin(), chain.end());
    for (const int v : chain) {
      const Vertex& vertex = vertices_[static_cast<std::size_t>(v)];
      if (vertex.role != StateRole::state) continue;
      active_ = v;
      emitEnter(v, {});
    }
    resolve(target);
  }

  void emitEnter(int v, const std::string& note) {
    const Vertex& vertex = vertices_[static_cast<std::size_t>(v)];
    TraceEvent e;
    e.step = step_;
    e.kind = EventKind::enter;
    e.node = vertex.id;
    if (!vertex.entry.empty()) e.detail = "entry / " + vertex.entry;
    if (!note.empty()) e.detail += (e.detail.empty() ? "" : "; ") + note;
    record(std::move(e));
  }

  int initialInside(int state) const {
    for (std::size_t v = 0; v < vertices_.size(); ++v)
      if (vertices_[v].role == StateRole::initial && vertices_[v].parent == state && !vertices_[v].out.empty())
        return static_cast<int>(v);
    return kNoVertex;
  }

  void resolve(int target) {
    if (status_ != RunStatus::running) return;
    const Vertex& v = vertices_[static_cast<std::size_t>(target)];
    switch (v.role) {
      case StateRole::state: {
        active_ = target;
        // A composite state enters its initial substate.
        const int initial = initialInside(target);
        if (initial != kNoVertex) fire(vertices_[static_cast<std::size_t>(initial)].out[0], {});
        return;
      }
      case StateRole::choice:
      case StateRole::junction:
      case StateRole::initial:
        pick(target);
        return;
      case StateRole::shallowHistory:
      case StateRole::deepHistory:
        restore(target);
        return;
      case StateRole::terminate:
        active_ = target;
        finish(RunStatus::completed, "terminated in " + v.id);
        return;
      case StateRole::final:
        active_ = target;
        // A final state outside every state ends the machine.
        if (v.parent == kNoVertex) finish(RunStatus::completed, "final state " + v.id + " reached");
        return;
      case StateRole::none: return;
    }
  }

  // Choice and junction pseudostates: the user's choice, else the first
  // transition in edge order whose guard holds, else the "[else]" one.
  void pick(int vertex) {
    const Vertex& v = vertices_[static_cast<std::size_t>(vertex)];
    TraceEvent e;
    e.step = step_;
    e.kind = EventKind::decide;
    e.node = v.id;
    if (lastTransition_ >= 0) e.in = {transitions_[static_cast<std::size_t>(lastTransition_)].id};
    int chosen = -1, elseT = -1;
    bool unknown = false;
    if (!v.userChoices.empty()) {
      chosen = static_cast<int>(v.userChoices[std::min<std::size_t>(visits_[static_cast<std::size_t>(vertex)]++,
                                                                    v.userChoices.size() - 1)]);
      e.reason = DecideReason::user;
    } else {
      for (const std::uint32_t t : v.out) {
        const GuardResult& g = transitions_[t].guard;
        if (g.outcome == GuardOutcome::elseBranch) {
          if (elseT < 0) elseT = static_cast<int>(t);
          continue;
        }
        if (g.outcome == GuardOutcome::unknown) {
          unknown = true;
          e.detail += (e.detail.empty() ? "" : "; ") + describeUnknown(transitions_[t].id, g);
        }
        if (guardHolds(g)) {
          chosen = static_cast<int>(t);
          e.reason = DecideReason::guard;
          break;
        }
      }
      if (chosen < 0 && elseT >= 0) {
        chosen = elseT;
        e.reason = unknown ? DecideReason::unknownGuard : DecideReason::elseFlow;
      } else if (chosen < 0 && unknown) {
        e.reason = DecideReason::unknownGuard;
      }
    }
    if (chosen < 0) {
      e.detail += std::string(e.detail.empty() ? "" : "; ") + "no transition can be taken";
      record(std::move(e));
      TraceEvent s;
      s.step = step_;
      s.kind = EventKind::stall;
      s.node = v.id;
      s.detail = "the machine is stuck in a pseudostate";
      record(std::move(s));
      finish(RunStatus::stalled, {});
      return;
    }
    e.chosen = transitions_[static_cast<std::size_t>(chosen)].id;
    e.out = {e.chosen};
    record(std::move(e));
    fire(static_cast<std::uint32_t>(chosen), {});
  }

  // History: the substate (shallow) or the innermost state (deep) that was
  // active when the composite state was last left; the first time, the
  // history's own transition, its "defaultTarget" or the initial substate.
  void restore(int vertex) {
    const Vertex& h = vertices_[static_cast<std::size_t>(vertex)];
    const int owner = h.parent;
    if (owner != kNoVertex) {
      const int remembered = h.role == StateRole::deepHistory ? deepHistory_[static_cast<std::size_t>(owner)]
                                                              : history_[static_cast<std::size_t>(owner)];
      if (remembered != kNoVertex) {
        std::vector<int> chain;
        for (int v = remembered; v != kNoVertex && v != owner; v = vertices_[static_cast<std::size_t>(v)].parent)
          chain.push_back(v);
        std::reverse(chain.begin(), chain.end());
        for (std::size_t i = 0; i < chain.size(); ++i) {
          active_ = chain[i];
          emitEnter(chain[i], i + 1 == chain.size() ? "restored by " + h.id : std::string{});
        }
        // A shallow history enters the remembered substate afresh below it.
        if (h.role == StateRole::shallowHistory) resolve(remembered);
        return;
      }
    }
    if (!h.out.empty()) {
      fire(h.out[0], {});
      return;
    }
    for (std::size_t v = 0; v < vertices_.size() && !h.defaultTarget.empty(); ++v)
      if (vertices_[v].parent == owner && vertices_[v].role == StateRole::state &&
          (vertices_[v].id == h.defaultTarget || vertices_[v].name == h.defaultTarget)) {
        enter(static_cast<int>(v), owner);
        return;
      }
    if (owner != kNoVertex) resolve(owner);
  }

  // Completion transitions: a transition without trigger out of the active
  // state (or a state around it) fires as soon as its guard holds.
  void settle() {
    bool moved = true;
    while (moved && status_ == RunStatus::running) {
      moved = false;
      for (int s = active_; s != kNoVertex && !moved; s = vertices_[static_cast<std::size_t>(s)].parent) {
        const Vertex& v = vertices_[static_cast<std::size_t>(s)];
        if (v.role != StateRole::state && v.role != StateRole::final) continue;
        for (const std::uint32_t t : v.out)
          if (transitions_[t].triggers.empty() && guardHolds(transitions_[t].guard)) {
            fire(t, {});
            moved = true;
            break;
          }
      }
    }
  }

  std::uint64_t transitionBudget() const { return 16 * options_.maxSteps + 1024; }

  void finish(RunStatus status, std::string detail) {
    if (status_ != RunStatus::running) return;
    status_ = status;
    // Events never offered are logged as skipped.
    if (started_)
      for (std::size_t i = step_; i < options_.events.size() && status != RunStatus::limit; ++i) {
        TraceEvent s;
        s.step = step_;
        s.kind = EventKind::skip;
        s.detail = "event " + options_.events[i] + " not offered: the machine has ended";
        record(std::move(s));
      }
    TraceEvent e;
    e.kind = EventKind::end;
    e.step = step_;
    e.status = status;
    e.detail = std::move(detail);
    record(std::move(e));
  }

  std::vector<Vertex> vertices_;
  std::vector<Transition> transitions_;

  int active_ = kNoVertex;
  int lastTransition_ = -1;
  std::vector<int> history_;      // per composite: the direct substate last active
  std::vector<int> deepHistory_;  // per composite: the innermost state last active
  std::vector<std::uint32_t> visits_;
  std::uint64_t step_ = 0;
  std::uint64_t fired_ = 0;
  int chain_ = 0;  // transitions nested in the one being fired
  bool started_ = false;
  RunStatus status_ = RunStatus::running;
};

}  // namespace

std::unique_ptr<Simulation> makeStateMachineSimulation(std::span<const Node> nodes, std::span<const Edge> edges,
                                                       SimulationOptions options) {
  return std::make_unique<StateMachineSimulation>(nodes, edges, std::move(options));
}

}  // namespace modelyne::core::sim
