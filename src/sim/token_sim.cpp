// Activity token simulation. Tokens sit on flows; a round fires every node
// that is enabled when the round begins, in drawing (z) order, so parallel
// branches advance together and the outcome never depends on anything but
// the diagram and the options.
#include "sim/token_sim.h"

#include <algorithm>
#include <cstdint>
#include <string_view>
#include <unordered_map>

#include "sim/behaviour_roles.h"

namespace modelyne::core::sim {

namespace {

constexpr std::uint32_t kNone = UINT32_MAX;
// Tokens can multiply in cycles (a task with two outgoing flows feeding
// itself doubles them every round); past this many the run ends as a limit.
constexpr std::uint64_t kTokenLimit = 100000;

struct FlowNode {
  std::string id;
  ActivityRole role = ActivityRole::none;
  std::vector<std::uint32_t> in;   ///< incoming flows, edge order
  std::vector<std::uint32_t> out;  ///< outgoing flows, edge order
  std::vector<std::uint32_t> userChoices;  ///< flows from the options, used in turn
};

struct Flow {
  std::string id;
  std::uint32_t source = 0;
  std::uint32_t target = 0;
  GuardResult guard;
};

// One node's firings planned for a round. Per-token nodes (tasks, merges,
// decisions, flow finals) note the tokens present when the round began, so
// that tokens arriving during the round wait for the next one.
struct Planned {
  std::uint32_t node;
  std::uint32_t snapshotBegin = 0;
  std::uint32_t snapshotEnd = 0;
};

bool perToken(ActivityRole r) {
  return r == ActivityRole::task || r == ActivityRole::decision || r == ActivityRole::flowFinal;
}

class ActivitySimulation final : public Simulation {
 public:
  ActivitySimulation(std::span<const Node> nodes, std::span<const Edge> edges, SimulationOptions options)
      : Simulation(std::move(options)) {
    build(nodes, edges);
    reset();
  }

  SimulationKind kind() const noexcept override { return SimulationKind::activity; }
  RunStatus status() const noexcept override { return status_; }
  std::uint64_t steps() const noexcept override { return step_; }

  void reset() override {
    clearTrace();
    std::fill(tokens_.begin(), tokens_.end(), 0u);
    std::fill(queued_.begin(), queued_.end(), char{0});
    std::fill(visits_.begin(), visits_.end(), 0u);
    std::fill(pendingChoice_.begin(), pendingChoice_.end(), kNone);
    std::fill(blocked_.begin(), blocked_.end(), char{0});
    candidates_.clear();
    plan_.clear();
    snapshot_.clear();
    fired_.clear();
    live_ = 0;
    step_ = 0;
    started_ = false;
    status_ = RunStatus::running;
  }

  void start() override {
    if (started_) return;
    started_ = true;
    // A run fires each node about once: room for that many events.
    reserveTrace(nodes_.size() + flows_.size() + 16);
    bool anything = false;
    for (std::uint32_t n = 0; n < nodes_.size(); ++n) {
      const FlowNode& node = nodes_[n];
      // Initial node, start event: one token on each outgoing flow.
      if (node.role == ActivityRole::initial) {
        anything = true;
        for (const std::uint32_t f : node.out) put(f);
        emitNode(EventKind::start, n, {}, node.out, {});
        fired_.push_back(n);
      }
      // An action or task without incoming flows fires once, at the start.
      if ((node.role == ActivityRole::action || node.role == ActivityRole::task) && node.in.empty()) {
        anything = true;
        for (const std::uint32_t f : node.out) put(f);
        emitNode(EventKind::fire, n, {}, node.out, "no incoming flow: fires at the start");
        fired_.push_back(n);
      }
    }
    if (!anything) {
      TraceEvent e;
      e.kind = EventKind::stall;
      e.detail = "nothing can start: no initial node, and every action waits for an incoming flow";
      record(std::move(e));
      finish(RunStatus::stalled);
      return;
    }
    afterRound();
  }

  bool step() override {
    if (!started_) {
      start();
      return status_ == RunStatus::running;
    }
    if (status_ != RunStatus::running) return false;
    ++step_;
    fired_.clear();
    std::vector<Planned> plan;
    plan.swap(plan_);
    for (const Planned& p : plan) {
      fire(p);
      if (status_ != RunStatus::running) break;
    }
    plan.clear();
    plan_.swap(plan);
    if (status_ == RunStatus::running) afterRound();
    return status_ == RunStatus::running;
  }

  Marking marking() const override {
    Marking m;
    for (std::uint32_t f = 0; f < flows_.size(); ++f)
      if (tokens_[f] > 0) m.tokens.emplace_back(flows_[f].id, tokens_[f]);
    std::vector<std::uint32_t> fired = fired_;
    std::sort(fired.begin(), fired.end());
    fired.erase(std::unique(fired.begin(), fired.end()), fired.end());
    for (const std::uint32_t n : fired) m.activeNodes.push_back(nodes_[n].id);
    return m;
  }

  std::vector<std::string> pendingDecisions() const override {
    std::vector<std::string> out;
    for (const Planned& p : plan_) {
      const FlowNode& node = nodes_[p.node];
      if (node.role == ActivityRole::decision && node.out.size() > 1 && pendingChoice_[p.node] == kNone &&
          node.userChoices.empty())
        out.push_back(node.id);
    }
    return out;
  }

  bool choose(std::string_view nodeId, std::string_view edgeId) override {
    const auto n = nodeIndex_.find(nodeId);
    if (n == nodeIndex_.end()) return false;
    for (const std::uint32_t f : nodes_[n->second].out)
      if (flows_[f].id == edgeId) {
        pendingChoice_[n->second] = f;
        // A decision that found no flow may go on now.
        if (blocked_[n->second]) {
          blocked_[n->second] = 0;
          if (status_ == RunStatus::running && started_ && enabled(n->second)) {
            planNode(n->second);
            std::sort(plan_.begin(), plan_.end(),
                      [](const Planned& a, const Planned& b) { return a.node < b.node; });
          }
        }
        return true;
      }
    return false;
  }

 private:
  // ---- Building the flow graph

  void build(std::span<const Node> nodes, std::span<const Edge> edges) {
    std::vector<std::uint32_t> indexOfDocNode(nodes.size(), kNone);
    std::unordered_map<std::string_view, std::uint32_t> docIndex;
    docIndex.reserve(nodes.size());
    for (std::uint32_t i = 0; i < nodes.size(); ++i) {
      docIndex.emplace(nodes[i].id, i);
      const ActivityRole role = activityRole(nodes[i].type);
      // Notes, boundaries, partitions, pools, lanes and pins take no part.
      if (role == ActivityRole::none) continue;
      indexOfDocNode[i] = static_cast<std::uint32_t>(nodes_.size());
      nodes_.push_back({nodes[i].id, role, {}, {}, {}});
    }
    for (const Edge& e : edges) {
      if (!isFlowEdge(e.type)) continue;
      const auto s = docIndex.find(e.source);
      const auto t = docIndex.find(e.target);
      if (s == docIndex.end() || t == docIndex.end()) {
        problem(e.id, "flow '" + e.id + "' names a missing node '" + (s == docIndex.end() ? e.source : e.target) +
                          "'; it is ignored");
        continue;
      }
      const std::uint32_t src = indexOfDocNode[s->second], tgt = indexOfDocNode[t->second];
      if (src == kNone || tgt == kNone) continue;
      const auto f = static_cast<std::uint32_t>(flows_.size());
      flows_.push_back({e.id, src, tgt, {}});
      nodes_[src].out.push_back(f);
      nodes_[tgt].in.push_back(f);
    }
    for (std::uint32_t n = 0; n < nodes_.size(); ++n) nodeIndex_.emplace(nodes_[n].id, n);

    // Guards depend only on the values, which do not change during a run.
    GuardValues values;
    bool anyGuard = false;
    for (const Edge& e : edges) anyGuard = anyGuard || e.text.find('[') != std::string::npos;
    if (anyGuard) values = guardValues(nodes, edges, options_);
    std::unordered_map<std::string_view, std::uint32_t> flowIndex;
    for (std::uint32_t f = 0; f < flows_.size(); ++f) flowIndex.emplace(flows_[f].id, f);
    for (const Edge& e : edges) {
      const auto f = flowIndex.find(e.id);
      if (f != flowIndex.end() && e.text.find('[') != std::string::npos)
        flows_[f->second].guard = evaluateGuard(guardOfLabel(e.text), values);
    }

    for (const auto& [nodeId, chosen] : options_.choices) {
      const auto n = nodeIndex_.find(nodeId);
      if (n == nodeIndex_.end()) {
        problem(nodeId, "--choose names '" + nodeId + "', which is no node of the activity", true);
        continue;
      }
      FlowNode& node = nodes_[n->second];
      for (const std::string& edgeId : chosen) {
        const auto it = std::find_if(node.out.begin(), node.out.end(),
                                     [&](std::uint32_t f) { return flows_[f].id == edgeId; });
        if (it == node.out.end())
          problem(nodeId, "--choose " + nodeId + "=" + edgeId + ": '" + edgeId + "' is no outgoing flow of '" +
                              nodeId + "'", true);
        else
          node.userChoices.push_back(*it);
      }
    }

    tokens_.assign(flows_.size(), 0);
    queued_.assign(nodes_.size(), 0);
    visits_.assign(nodes_.size(), 0);
    pendingChoice_.assign(nodes_.size(), kNone);
    blocked_.assign(nodes_.size(), 0);
    reachStamp_.assign(flows_.size(), 0);
  }

  // ---- Tokens

  void put(std::uint32_t f) {
    ++tokens_[f];
    ++live_;
    blocked_[flows_[f].target] = 0;
    queue(flows_[f].target);
  }

  void take(std::uint32_t f) {
    --tokens_[f];
    --live_;
  }

  void queue(std::uint32_t n) {
    if (queued_[n]) return;
    queued_[n] = 1;
    candidates_.push_back(n);
  }

  bool holdsToken(const FlowNode& node) const {
    for (const std::uint32_t f : node.in)
      if (tokens_[f] > 0) return true;
    return false;
  }

  // ---- Planning: which nodes are enabled when a round begins

  bool enabled(std::uint32_t n) {
    const FlowNode& node = nodes_[n];
    switch (node.role) {
      case ActivityRole::action:
      case ActivityRole::forkJoin:
        // Waits for a token on every incoming flow.
        if (node.in.empty()) return false;
        for (const std::uint32_t f : node.in)
          if (tokens_[f] == 0) return false;
        return true;
      case ActivityRole::inclusive:
        return holdsToken(node) && !tokenCanStillArrive(n);
      case ActivityRole::task:
      case ActivityRole::decision:
      case ActivityRole::flowFinal:
      case ActivityRole::final:
        return holdsToken(node);
      case ActivityRole::initial:
      case ActivityRole::none:
        return false;
    }
    return false;
  }

  // Inclusive join: whether a live token elsewhere can still reach one of
  // its empty incoming flows (searching backwards, never through the join).
  bool tokenCanStillArrive(std::uint32_t join) {
    ++stamp_;
    std::vector<std::uint32_t> stack;
    for (const std::uint32_t f : nodes_[join].in)
      if (tokens_[f] == 0) {
        reachStamp_[f] = stamp_;
        stack.push_back(f);
      }
    while (!stack.empty()) {
      const std::uint32_t f = stack.back();
      stack.pop_back();
      const std::uint32_t s = flows_[f].source;
      if (s == join) continue;
      for (const std::uint32_t g : nodes_[s].in) {
        if (reachStamp_[g] == stamp_) continue;
        reachStamp_[g] = stamp_;
        if (tokens_[g] > 0) return true;
        stack.push_back(g);
      }
    }
    return false;
  }

  void planRound() {
    std::vector<std::uint32_t> candidates;
    candidates.swap(candidates_);
    for (const std::uint32_t n : candidates) queued_[n] = 0;
    // Inclusive joins wait on tokens elsewhere, so they are looked at again
    // every round while they hold one.
    for (const std::uint32_t n : waitingJoins_) candidates.push_back(n);
    waitingJoins_.clear();
    std::sort(candidates.begin(), candidates.end());
    candidates.erase(std::unique(candidates.begin(), candidates.end()), candidates.end());
    for (const std::uint32_t n : candidates) {
      if (blocked_[n]) continue;
      if (!enabled(n)) {
        if (nodes_[n].role == ActivityRole::inclusive && holdsToken(nodes_[n])) waitingJoins_.push_back(n);
        continue;
      }
      planNode(n);
    }
    // `candidates` is sorted, so the plan is in z order.
    candidates.clear();
    candidates_.swap(candidates);
  }

  void planNode(std::uint32_t n) {
    Planned p{n};
    if (perToken(nodes_[n].role)) {
      p.snapshotBegin = static_cast<std::uint32_t>(snapshot_.size());
      for (const std::uint32_t f : nodes_[n].in)
        if (tokens_[f] > 0) snapshot_.insert(snapshot_.end(), tokens_[f], f);
      p.snapshotEnd = static_cast<std::uint32_t>(snapshot_.size());
    }
    plan_.push_back(p);
  }

  void afterRound() {
    if (live_ == 0) {
      finish(RunStatus::completed);
      return;
    }
    if (live_ > kTokenLimit) {
      limitDetail_ = "token limit " + std::to_string(kTokenLimit) + " exceeded";
      finish(RunStatus::limit);
      return;
    }
    snapshot_.clear();
    planRound();
    if (plan_.empty()) {
      reportStall();
      finish(RunStatus::stalled);
      return;
    }
    if (step_ >= options_.maxSteps) {
      limitDetail_ = "step limit " + std::to_string(options_.maxSteps) + " reached";
      finish(RunStatus::limit);
    }
  }

  // ---- Firing

  void fire(const Planned& p) {
    fired_.push_back(p.node);
    const FlowNode& node = nodes_[p.node];
    switch (node.role) {
      case ActivityRole::action:
      case ActivityRole::forkJoin:
        // Consumes one token from each incoming flow and offers one on every
        // outgoing flow: several outgoing flows are an implicit fork.
        for (const std::uint32_t f : node.in) take(f);
        for (const std::uint32_t f : node.out) put(f);
        emitNode(EventKind::fire, p.node, node.in, node.out, {});
        break;
      case ActivityRole::task:
        // BPMN: one firing per token that arrived, on whichever flow.
        for (std::uint32_t i = p.snapshotBegin; i < p.snapshotEnd; ++i) {
          const std::uint32_t f = snapshot_[i];
          take(f);
          for (const std::uint32_t g : node.out) put(g);
          emitNode(EventKind::fire, p.node, {f}, node.out, {});
        }
        break;
      case ActivityRole::flowFinal:
        // Flow final, end event: consumes its own token, nothing else.
        for (std::uint32_t i = p.snapshotBegin; i < p.snapshotEnd; ++i) {
          take(snapshot_[i]);
          emitNode(EventKind::flowFinal, p.node, {snapshot_[i]}, {}, {});
        }
        break;
      case ActivityRole::decision:
        for (std::uint32_t i = p.snapshotBegin; i < p.snapshotEnd; ++i)
          if (!decide(p.node, snapshot_[i])) break;
        break;
      case ActivityRole::inclusive:
        fireInclusive(p.node);
        break;
      case ActivityRole::final: fireFinal(p.node); break;
      case ActivityRole::initial:
      case ActivityRole::none: break;
    }
    if (status_ == RunStatus::running && !blocked_[p.node] && holdsToken(node)) queue(p.node);
  }

  // Decision with one outgoing flow (a merge): passes the token on. With
  // several: exactly one flow, the user's choice, else the first in edge
  // order whose guard is true (no guard counts as true), else the "[else]"
  // flow. A guard that cannot be evaluated counts as false and the event
  // says so. When no flow can be taken the token stays where it is.
  bool decide(std::uint32_t n, std::uint32_t in) {
    const FlowNode& node = nodes_[n];
    if (node.out.size() == 1) {
      take(in);
      put(node.out[0]);
      emitNode(EventKind::fire, n, {in}, node.out, {});
      return true;
    }
    TraceEvent e = nodeEvent(EventKind::decide, n, {in}, {});
    std::uint32_t chosen = kNone;
    if (pendingChoice_[n] != kNone) {
      chosen = pendingChoice_[n];
      pendingChoice_[n] = kNone;
      e.reason = DecideReason::user;
    } else if (!node.userChoices.empty()) {
      chosen = node.userChoices[std::min<std::size_t>(visits_[n], node.userChoices.size() - 1)];
      ++visits_[n];
      e.reason = DecideReason::user;
    } else {
      chosen = chooseByGuard(node, e);
    }
    if (chosen == kNone) {
      if (e.detail.empty()) e.detail = "no guard holds and there is no [else] flow";
      else e.detail += "; no flow can be taken";
      record(std::move(e));
      blockNode(n);
      return false;
    }
    take(in);
    put(chosen);
    e.out = {flows_[chosen].id};
    e.chosen = flows_[chosen].id;
    record(std::move(e));
    return true;
  }

  std::uint32_t chooseByGuard(const FlowNode& node, TraceEvent& e) {
    std::uint32_t elseFlow = kNone;
    bool unknown = false;
    for (const std::uint32_t f : node.out) {
      const GuardResult& g = flows_[f].guard;
      if (g.outcome == GuardOutcome::elseBranch) {
        if (elseFlow == kNone) elseFlow = f;
        continue;
      }
      if (g.outcome == GuardOutcome::unknown) {
        unknown = true;
        appendDetail(e.detail, describeUnknown(flows_[f].id, g));
      }
      if (guardHolds(g)) {
        e.reason = DecideReason::guard;
        if (g.outcome == GuardOutcome::isTrue) appendDetail(e.detail, flows_[f].id + " [" + g.text + "] holds");
        return f;
      }
    }
    if (elseFlow != kNone) e.reason = unknown ? DecideReason::unknownGuard : DecideReason::elseFlow;
    else if (unknown) e.reason = DecideReason::unknownGuard;
    return elseFlow;
  }

  // Inclusive gateway: consumes the tokens that arrived; offers one on every
  // outgoing flow whose guard holds (the user's choices when given), else on
  // the "[else]" flow.
  void fireInclusive(std::uint32_t n) {
    const FlowNode& node = nodes_[n];
    std::vector<std::uint32_t> out;
    std::string detail;
    if (node.out.size() <= 1) {
      out = node.out;
    } else if (!node.userChoices.empty()) {
      out = node.userChoices;
      std::sort(out.begin(), out.end());
      out.erase(std::unique(out.begin(), out.end()), out.end());
      detail = "chosen by the user";
    } else {
      std::uint32_t elseFlow = kNone;
      for (const std::uint32_t f : node.out) {
        const GuardResult& g = flows_[f].guard;
        if (g.outcome == GuardOutcome::elseBranch && elseFlow == kNone) elseFlow = f;
        if (g.outcome == GuardOutcome::unknown) appendDetail(detail, describeUnknown(flows_[f].id, g));
        if (guardHolds(g)) out.push_back(f);
      }
      if (out.empty() && elseFlow != kNone) out.push_back(elseFlow);
    }
    std::vector<std::uint32_t> in;
    for (const std::uint32_t f : node.in)
      if (tokens_[f] > 0) in.push_back(f);
    if (out.empty() && !node.out.empty()) {
      TraceEvent e = nodeEvent(EventKind::decide, n, in, {});
      appendDetail(detail, "no guard holds and there is no [else] flow; no flow can be taken");
      e.detail = detail;
      record(std::move(e));
      blockNode(n);
      return;
    }
    for (const std::uint32_t f : in) take(f);
    for (const std::uint32_t f : out) put(f);
    emitNode(EventKind::fire, n, in, out, detail);
  }

  // Activity final: ends the run and destroys every other token.
  void fireFinal(std::uint32_t n) {
    const FlowNode& node = nodes_[n];
    std::uint32_t in = kNone;
    for (const std::uint32_t f : node.in)
      if (tokens_[f] > 0) {
        in = f;
        break;
      }
    take(in);
    TraceEvent e = nodeEvent(EventKind::final, n, {in}, {});
    for (std::uint32_t f = 0; f < flows_.size(); ++f)
      if (tokens_[f] > 0) {
        e.destroyed.push_back(flows_[f].id);
        live_ -= tokens_[f];
        tokens_[f] = 0;
      }
    record(std::move(e));
    finish(RunStatus::completed);
  }

  // The values never change during a run, so the outcome would be the same
  // next round: the node waits until a token arrives or the user chooses.
  void blockNode(std::uint32_t n) { blocked_[n] = 1; }

  // ---- Ending

  void reportStall() {
    std::vector<std::uint32_t> holding;
    for (std::uint32_t f = 0; f < flows_.size(); ++f)
      if (tokens_[f] > 0) holding.push_back(flows_[f].target);
    std::sort(holding.begin(), holding.end());
    holding.erase(std::unique(holding.begin(), holding.end()), holding.end());
    for (const std::uint32_t n : holding) {
      const FlowNode& node = nodes_[n];
      std::vector<std::uint32_t> in, empty;
      for (const std::uint32_t f : node.in) (tokens_[f] > 0 ? in : empty).push_back(f);
      std::string detail;
      switch (node.role) {
        case ActivityRole::decision:
        case ActivityRole::inclusive:
          detail = empty.empty() || node.role == ActivityRole::decision ? "no outgoing flow can be taken"
                                                                        : "waits for " + ids(empty);
          break;
        case ActivityRole::initial: detail = "an initial node takes no tokens"; break;
        default: detail = "waits for a token on " + ids(empty); break;
      }
      TraceEvent e = nodeEvent(EventKind::stall, n, in, {});
      e.detail = std::move(detail);
      record(std::move(e));
    }
  }

  void finish(RunStatus status) {
    status_ = status;
    TraceEvent e;
    e.kind = EventKind::end;
    e.step = step_;
    e.status = status;
    if (status != RunStatus::completed)
      for (std::uint32_t f = 0; f < flows_.size(); ++f)
        if (tokens_[f] > 0) e.waiting.push_back(flows_[f].id);
    if (status == RunStatus::limit) e.detail = limitDetail_;
    record(std::move(e));
  }

  // ---- Events

  std::string ids(const std::vector<std::uint32_t>& flows) const {
    std::string out;
    for (const std::uint32_t f : flows) out += (out.empty() ? "" : ", ") + flows_[f].id;
    return out;
  }

  static void appendDetail(std::string& detail, const std::string& more) {
    if (!detail.empty()) detail += "; ";
    detail += more;
  }

  TraceEvent nodeEvent(EventKind kind, std::uint32_t n, const std::vector<std::uint32_t>& in,
                       const std::vector<std::uint32_t>& out) const {
    TraceEvent e;
    e.step = step_;
    e.kind = kind;
    e.node = nodes_[n].id;
    e.in.reserve(in.size());
    for (const std::uint32_t f : in) e.in.push_back(flows_[f].id);
    e.out.reserve(out.size());
    for (const std::uint32_t f : out) e.out.push_back(flows_[f].id);
    return e;
  }

  void emitNode(EventKind kind, std::uint32_t n, const std::vector<std::uint32_t>& in,
                const std::vector<std::uint32_t>& out, std::string detail) {
    TraceEvent e = nodeEvent(kind, n, in, out);
    e.detail = std::move(detail);
    record(std::move(e));
  }

  std::vector<FlowNode> nodes_;
  std::vector<Flow> flows_;
  std::unordered_map<std::string_view, std::uint32_t> nodeIndex_;  // lookups only

  std::vector<std::uint32_t> tokens_;   // per flow
  std::uint64_t live_ = 0;              // tokens on all flows
  std::vector<char> queued_;            // per node: in candidates_
  std::vector<std::uint32_t> candidates_;
  std::vector<std::uint32_t> waitingJoins_;
  std::vector<char> blocked_;           // per node: found no flow to take
  std::vector<Planned> plan_;           // the next round, z order
  std::vector<std::uint32_t> snapshot_; // tokens per-token nodes take in the next round
  std::vector<std::uint32_t> fired_;    // nodes fired in the last step
  std::vector<std::uint32_t> visits_;   // per node: user choices used
  std::vector<std::uint32_t> pendingChoice_;  // per node: flow chosen for the next visit
  std::vector<std::uint32_t> reachStamp_;
  std::uint32_t stamp_ = 0;
  std::string limitDetail_;
  std::uint64_t step_ = 0;
  bool started_ = false;
  RunStatus status_ = RunStatus::running;
};

}  // namespace

std::unique_ptr<Simulation> makeActivitySimulation(std::span<const Node> nodes, std::span<const Edge> edges,
                                                   SimulationOptions options) {
  return std::make_unique<ActivitySimulation>(nodes, edges, std::move(options));
}

}  // namespace modelyne::core::sim
