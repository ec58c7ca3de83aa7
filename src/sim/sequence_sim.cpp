// Sequence message simulation. Messages are sent in the order of the height
// where they leave their source; combined fragments decide which of their
// operands run. The walk is a small machine over a stack of frames, so one
// step sends one message and long loops need no memory per iteration.
#include "sim/sequence_sim.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <string_view>
#include <unordered_map>

#include "sim/behaviour_roles.h"

namespace modelyne::core::sim {

namespace {

// Height of a fragment's operator tab; operands split the body below it.
constexpr float kTabHeight = 20.0f;
constexpr int kMaxOperands = 8;
constexpr std::string_view kGuardKeys[] = {"guard", "guard2", "guard3"};

float sortable(float v) { return std::isnan(v) ? std::numeric_limits<float>::infinity() : v; }

// The y where an edge end meets its node: the anchor offset when set, else
// the height of the port.
float endY(const Node& n, Anchor port, float offset) {
  if (!std::isnan(offset)) return sortable(n.geom.y + offset);
  switch (normalizeAnchor(port)) {
    case Anchor::top:
    case Anchor::topLeft:
    case Anchor::topRight: return sortable(n.geom.y);
    case Anchor::bottom:
    case Anchor::bottomLeft:
    case Anchor::bottomRight: return sortable(n.geom.y + n.geom.h);
    default: return sortable(n.geom.y + n.geom.h * 0.5f);
  }
}

std::string_view property(const Node& n, std::string_view key) {
  const auto it = n.properties.find(std::string(key));
  return it == n.properties.end() ? std::string_view{} : std::string_view(it->second);
}

struct Message {
  std::string id, from, to, label;
  float y = 0;
  float fromX = 0, toX = 0;
};

struct Item {
  float y;
  bool message;
  std::uint32_t index;  ///< into messages_ or fragments_
  std::uint32_t order;  ///< document order, for equal heights
};

bool itemBefore(const Item& a, const Item& b) {
  if (a.y != b.y) return a.y < b.y;
  if (a.message != b.message) return !a.message;  // a fragment opens before a message at its top
  return a.order < b.order;
}

struct Fragment {
  std::string id;
  std::string op;
  float left = 0, top = 0, right = 0, bottom = 0;
  std::vector<float> boundaries;  ///< absolute heights between operands
  std::vector<std::string> guards;
  int parent = -1;
  std::vector<std::vector<Item>> operands;
  std::vector<Item> merged;  ///< par: every operand's items by height
  std::vector<std::uint32_t> choices;  ///< operand numbers from the options
};

enum class FrameKind : unsigned char { sequence, loop };

struct Frame {
  FrameKind kind = FrameKind::sequence;
  const std::vector<Item>* items = nullptr;
  std::size_t pos = 0;
  int fragment = -1;  ///< whose operand (or loop) this is; -1 the interaction
  std::string enterDetail;  ///< emitted when the frame begins
  bool entered = false;
  bool breakAfter = false;  ///< a taken break: leave the enclosing fragment when done
  std::vector<std::uint32_t> skipAfter;  ///< operands of `fragment` logged as skipped when done
  std::uint64_t iteration = 0, iterations = 0;  ///< loop frames
};

class SequenceSimulation final : public Simulation {
 public:
  SequenceSimulation(std::span<const Node> nodes, std::span<const Edge> edges, SimulationOptions options)
      : Simulation(std::move(options)) {
    build(nodes, edges);
    reset();
  }

  SimulationKind kind() const noexcept override { return SimulationKind::sequence; }
  RunStatus status() const noexcept override { return status_; }
  std::uint64_t steps() const noexcept override { return sent_; }

  void reset() override {
    clearTrace();
    stack_.clear();
    visits_.assign(fragments_.size(), 0);
    sent_ = 0;
    events_ = 0;
    current_ = -1;
    started_ = false;
    status_ = RunStatus::running;
  }

  void start() override {
    if (started_) return;
    started_ = true;
    Frame top;
    top.items = &topItems_;
    stack_.push_back(std::move(top));
  }

  bool step() override {
    if (!started_) start();
    if (status_ != RunStatus::running) return false;
    current_ = -1;
    advance();
    return status_ == RunStatus::running;
  }

  Marking marking() const override {
    Marking m;
    if (current_ < 0) return m;
    const Message& msg = messages_[static_cast<std::size_t>(current_)];
    m.activeEdges.push_back(msg.id);
    // Activations are active while the message's height lies within them.
    for (const Participant& p : participants_)
      if (p.id == msg.from || p.id == msg.to || (p.activation && msg.y >= p.top && msg.y <= p.bottom))
        m.activeNodes.push_back(p.id);
    return m;
  }

 private:
  struct Participant {
    std::string id;
    bool activation = false;
    float top = 0, bottom = 0;
  };

  // ---- Reading the interaction

  void build(std::span<const Node> nodes, std::span<const Edge> edges) {
    std::unordered_map<std::string_view, std::uint32_t> index;
    index.reserve(nodes.size());
    std::vector<std::uint32_t> fragmentNodes;
    for (std::uint32_t i = 0; i < nodes.size(); ++i) {
      const Node& n = nodes[i];
      index.emplace(n.id, i);
      const InteractionRole role = interactionRole(n.type);
      if (role == InteractionRole::lifeline || role == InteractionRole::activation || role == InteractionRole::gate)
        participants_.push_back({n.id, role == InteractionRole::activation, sortable(n.geom.y),
                                 sortable(n.geom.y + n.geom.h)});
      if (role == InteractionRole::fragment) fragmentNodes.push_back(i);
    }

    for (std::uint32_t e = 0; e < edges.size(); ++e) {
      const Edge& edge = edges[e];
      if (!isMessageEdge(edge.type)) continue;
      const auto s = index.find(edge.source), t = index.find(edge.target);
      if (s == index.end() || t == index.end()) {
        problem(edge.id, "message '" + edge.id + "' names a missing node '" +
                             (s == index.end() ? edge.source : edge.target) + "'; it is ignored");
        continue;
      }
      const Node& src = nodes[s->second];
      const Node& tgt = nodes[t->second];
      if (interactionRole(src.type) == InteractionRole::none || interactionRole(tgt.type) == InteractionRole::none ||
          interactionRole(src.type) == InteractionRole::fragment || interactionRole(tgt.type) == InteractionRole::fragment)
        continue;
      Message m;
      m.id = edge.id;
      m.from = src.id;
      m.to = tgt.id;
      m.label = edge.text;
      // Ordered by the source end's height; the target's when only it is set.
      m.y = std::isnan(edge.srcAnchorDY) && !std::isnan(edge.tgtAnchorDY)
                ? endY(tgt, edge.targetPort, edge.tgtAnchorDY)
                : endY(src, edge.sourcePort, edge.srcAnchorDY);
      m.fromX = src.geom.x + src.geom.w * 0.5f;
      m.toX = tgt.geom.x + tgt.geom.w * 0.5f;
      messageOrder_.push_back(e);
      messages_.push_back(std::move(m));
    }

    for (const std::uint32_t i : fragmentNodes) fragments_.push_back(readFragment(nodes[i]));
    fragmentOrder_ = fragmentNodes;
    GuardValues values;
    bool anyGuard = false;
    for (const Fragment& f : fragments_) anyGuard = anyGuard || !f.guards.empty();
    if (anyGuard) values = guardValues(nodes, edges, options_);
    for (Fragment& f : fragments_)
      for (const std::string& g : f.guards) guardResults_.push_back(evaluateGuard(g, values));
    std::uint32_t at = 0;
    for (Fragment& f : fragments_) {
      guardBase_.push_back(at);
      at += static_cast<std::uint32_t>(f.guards.size());
    }

    placeFragments();
    placeMessages();
    for (Fragment& f : fragments_) {
      for (auto& operand : f.operands) std::stable_sort(operand.begin(), operand.end(), itemBefore);
      for (const auto& operand : f.operands) f.merged.insert(f.merged.end(), operand.begin(), operand.end());
      std::stable_sort(f.merged.begin(), f.merged.end(), itemBefore);
    }
    std::stable_sort(topItems_.begin(), topItems_.end(), itemBefore);
    readChoices();
  }

  Fragment readFragment(const Node& n) {
    Fragment f;
    f.id = n.id;
    f.op = std::string(property(n, "operator"));
    f.left = n.geom.x;
    f.top = n.geom.y;
    f.right = n.geom.x + n.geom.w;
    f.bottom = n.geom.y + n.geom.h;
    // Operands as drawn: "numOperands" parts split at the "operandSplits"
    // fractions of the body below the tab, equal parts when they do not fit.
    int operands = 0;
    const std::string_view count = property(n, "numOperands");
    std::from_chars(count.data(), count.data() + count.size(), operands);
    std::vector<float> splits;
    std::string_view rest = property(n, "operandSplits");
    while (!rest.empty() && splits.size() < kMaxOperands - 1) {
      const std::size_t end = rest.find_first_of(", ;");
      const std::string_view item = rest.substr(0, end);
      float v = 0;
      const auto r = std::from_chars(item.data(), item.data() + item.size(), v);
      if (r.ec == std::errc{} && v > 0 && v < 1 && (splits.empty() || v > splits.back())) splits.push_back(v);
      if (end == std::string_view::npos) break;
      rest.remove_prefix(end + 1);
    }
    if (operands < 1 || operands > kMaxOperands) operands = static_cast<int>(splits.size()) + 1;
    if (static_cast<int>(splits.size()) > operands - 1) splits.resize(static_cast<std::size_t>(operands - 1));
    if (static_cast<int>(splits.size()) != operands - 1) {
      splits.clear();
      for (int i = 1; i < operands; ++i) splits.push_back(static_cast<float>(i) / static_cast<float>(operands));
    }
    const float tab = std::min(kTabHeight, n.geom.h);
    const float body = n.geom.h - tab;
    for (const float s : splits) f.boundaries.push_back(n.geom.y + tab + s * body);
    f.operands.resize(static_cast<std::size_t>(operands));
    for (int i = 0; i < operands && i < 3; ++i) f.guards.emplace_back(property(n, kGuardKeys[i]));
    return f;
  }

  std::uint32_t operandAt(const Fragment& f, float y) const {
    std::uint32_t k = 0;
    while (k < f.boundaries.size() && y >= f.boundaries[k]) ++k;
    return k;
  }

  static double area(const Fragment& f) {
    return static_cast<double>(f.right - f.left) * static_cast<double>(f.bottom - f.top);
  }

  // A fragment's parent is the smallest other fragment whose box holds its
  // box (equal boxes: the one drawn first holds the other, so no cycle).
  void placeFragments() {
    for (std::uint32_t i = 0; i < fragments_.size(); ++i) {
      const Fragment& f = fragments_[i];
      int best = -1;
      for (std::uint32_t j = 0; j < fragments_.size(); ++j) {
        if (j == i) continue;
        const Fragment& p = fragments_[j];
        if (!(p.left <= f.left && p.top <= f.top && p.right >= f.right && p.bottom >= f.bottom)) continue;
        const bool same = p.left == f.left && p.top == f.top && p.right == f.right && p.bottom == f.bottom;
        if (same && j > i) continue;
        if (best < 0 || area(p) < area(fragments_[static_cast<std::size_t>(best)])) best = static_cast<int>(j);
      }
      fragments_[i].parent = best;
      const Item item{sortable(f.top), false, i, fragmentOrder_[i]};
      if (best < 0)
        topItems_.push_back(item);
      else {
        Fragment& p = fragments_[static_cast<std::size_t>(best)];
        p.operands[operandAt(p, f.top)].push_back(item);
      }
    }
  }

  // A message belongs to the innermost fragment that spans its height and
  // one of its ends.
  void placeMessages() {
    for (std::uint32_t m = 0; m < messages_.size(); ++m) {
      const Message& msg = messages_[m];
      int best = -1;
      for (std::uint32_t j = 0; j < fragments_.size(); ++j) {
        const Fragment& f = fragments_[j];
        const bool spans = msg.y >= f.top && msg.y <= f.bottom &&
                           ((msg.fromX >= f.left && msg.fromX <= f.right) || (msg.toX >= f.left && msg.toX <= f.right));
        if (spans && (best < 0 || area(f) < area(fragments_[static_cast<std::size_t>(best)]))) best = static_cast<int>(j);
      }
      const Item item{msg.y, true, m, messageOrder_[m]};
      if (best < 0)
        topItems_.push_back(item);
      else {
        Fragment& f = fragments_[static_cast<std::size_t>(best)];
        f.operands[operandAt(f, msg.y)].push_back(item);
      }
    }
  }

  void readChoices() {
    const auto find = [this](const std::string& id) {
      return std::find_if(fragments_.begin(), fragments_.end(), [&id](const Fragment& f) { return f.id == id; });
    };
    for (const auto& [id, chosen] : options_.choices) {
      const auto it = find(id);
      if (it == fragments_.end()) {
        problem(id, "--choose names '" + id + "', which is no combined fragment of the interaction", true);
        continue;
      }
      for (const std::string& c : chosen) {
        std::uint32_t k = 0;
        const auto r = std::from_chars(c.data(), c.data() + c.size(), k);
        if (r.ec != std::errc{} || r.ptr != c.data() + c.size() || k > it->operands.size())
          problem(id, "--choose " + id + "=" + c + ": expected an operand number from 0 to " +
                          std::to_string(it->operands.size()), true);
        else
          it->choices.push_back(k);
      }
    }
    for (const auto& entry : options_.loops) {
      const std::string& id = entry.first;
      const auto it = find(id);
      if (it == fragments_.end() || it->op != "loop")
        problem(id, "--loop names '" + id + "', which is no loop fragment of the interaction", true);
    }
  }

  // ---- The walk

  // Runs until one message is sent or the interaction ends.
  void advance() {
    while (!stack_.empty()) {
      if (++events_ > eventBudget()) {
        finish(RunStatus::limit, "event limit reached (fragments that send no message)");
        return;
      }
      Frame& top = stack_.back();
      if (!top.entered) {
        top.entered = true;
        if (!top.enterDetail.empty()) emitEnter(top.fragment, top.enterDetail);
      }
      if (top.kind == FrameKind::loop) {
        if (top.iteration == top.iterations) {
          stack_.pop_back();
          continue;
        }
        ++top.iteration;
        const Fragment& f = fragments_[static_cast<std::size_t>(top.fragment)];
        Frame body;
        body.items = &f.operands[0];
        body.fragment = top.fragment;
        body.enterDetail = "iteration " + std::to_string(top.iteration) + " of " + std::to_string(top.iterations);
        stack_.push_back(std::move(body));
        continue;
      }
      if (top.pos == top.items->size()) {
        finishFrame();
        if (status_ != RunStatus::running) return;
        continue;
      }
      const Item item = (*top.items)[top.pos];
      if (item.message) {
        if (sent_ >= options_.maxSteps) {
          finish(RunStatus::limit, "step limit " + std::to_string(options_.maxSteps) + " reached");
          return;
        }
        ++top.pos;
        send(item.index);
        return;
      }
      ++top.pos;
      enterFragment(item.index);
    }
    finish(RunStatus::completed, {});
  }

  std::uint64_t eventBudget() const { return 16 * options_.maxSteps + 1024; }

  void send(std::uint32_t m) {
    ++sent_;
    current_ = static_cast<int>(m);
    const Message& msg = messages_[m];
    TraceEvent e;
    e.step = sent_;
    e.kind = EventKind::message;
    e.edge = msg.id;
    e.from = msg.from;
    e.to = msg.to;
    e.detail = msg.label;
    record(std::move(e));
  }

  const GuardResult& guard(std::uint32_t f, std::size_t operand) const {
    static const GuardResult kAbsent;
    if (operand >= fragments_[f].guards.size()) return kAbsent;
    return guardResults_[guardBase_[f] + operand];
  }

  std::string operandName(std::uint32_t f, std::size_t k) const {
    std::string out = "operand " + std::to_string(k + 1);
    const GuardResult& g = guard(f, k);
    if (!g.text.empty()) out += " [" + g.text + "]";
    return out;
  }

  // The user's operand for this visit: 1-based, 0 for none; -1 when not given.
  int userChoice(std::uint32_t f) {
    const Fragment& frag = fragments_[f];
    if (frag.choices.empty()) return -1;
    const std::uint32_t visit = visits_[f]++;
    return static_cast<int>(frag.choices[std::min<std::size_t>(visit, frag.choices.size() - 1)]);
  }

  void enterFragment(std::uint32_t f) {
    const Fragment& frag = fragments_[f];
    const std::string& op = frag.op;
    if (op == "loop") {
      // Runs its operand --loop ID=N times (default 1).
      const auto it = options_.loops.find(frag.id);
      const std::uint64_t n = it == options_.loops.end() ? 1 : it->second;
      if (n == 0) {
        skipOperands(f, {0}, "loop " + frag.id + " runs 0 times");
        return;
      }
      Frame loop;
      loop.kind = FrameKind::loop;
      loop.fragment = static_cast<int>(f);
      loop.iterations = n;
      stack_.push_back(std::move(loop));
      return;
    }
    if (op == "par") {
      // Operands interleave: their messages run in height order.
      for (std::size_t k = 0; k < frag.operands.size(); ++k) emitEnter(static_cast<int>(f), operandName(f, k));
      Frame body;
      body.items = &frag.merged;
      body.fragment = static_cast<int>(f);
      stack_.push_back(std::move(body));
      return;
    }
    if (op == "neg") {
      // Describes traces that must not happen: never runs.
      std::vector<std::uint32_t> all;
      for (std::uint32_t k = 0; k < frag.operands.size(); ++k) all.push_back(k);
      skipOperands(f, all, "neg " + frag.id + " never runs");
      return;
    }
    if (op == "alt" || op == "opt" || op == "break") {
      chooseOperand(f);
      return;
    }
    // Any other operator (seq, strict, critical, assert, ...) runs its
    // operands one after the other.
    for (std::size_t k = frag.operands.size(); k-- > 0;) {
      Frame body;
      body.items = &frag.operands[k];
      body.fragment = static_cast<int>(f);
      body.enterDetail = operandName(f, k);
      stack_.push_back(std::move(body));
    }
  }

  // alt enters the chosen operand or the first whose guard holds (no guard
  // holds too), else the "else" operand; opt and break run their one operand
  // when its guard holds. A guard that cannot be evaluated counts as false.
  void chooseOperand(std::uint32_t f) {
    const Fragment& frag = fragments_[f];
    const bool alt = frag.op == "alt";
    const std::size_t candidates = alt ? frag.operands.size() : 1;
    int taken = -1;
    std::string why;
    const int user = userChoice(f);
    if (user >= 0) {
      taken = user == 0 || static_cast<std::size_t>(user) > candidates ? -1 : user - 1;
      why = "chosen by the user";
    } else {
      int elseOperand = -1;
      for (std::size_t k = 0; k < candidates && taken < 0; ++k) {
        const GuardResult& g = guard(f, k);
        if (g.outcome == GuardOutcome::elseBranch) {
          if (elseOperand < 0) elseOperand = static_cast<int>(k);
          continue;
        }
        if (g.outcome == GuardOutcome::unknown) {
          if (!why.empty()) why += "; ";
          why += describeUnknown("operand " + std::to_string(k + 1), g);
        }
        if (guardHolds(g)) taken = static_cast<int>(k);
      }
      if (taken < 0) taken = elseOperand;
    }
    std::vector<std::uint32_t> before, after;
    for (std::uint32_t k = 0; k < frag.operands.size(); ++k)
      if (static_cast<int>(k) != taken) (static_cast<int>(k) < taken ? before : after).push_back(k);
    if (taken < 0) {
      if (!why.empty()) emitEnterless(f, why);
      skipOperands(f, after);
      return;
    }
    // The choice is logged when the fragment is reached, then the operands
    // above the taken one as skipped.
    emitEnter(static_cast<int>(f), operandName(f, static_cast<std::size_t>(taken)) + (why.empty() ? "" : "; " + why));
    skipOperands(f, before);
    Frame body;
    body.items = &frag.operands[static_cast<std::size_t>(taken)];
    body.fragment = static_cast<int>(f);
    body.skipAfter = std::move(after);
    body.breakAfter = frag.op == "break";
    stack_.push_back(std::move(body));
  }

  void finishFrame() {
    Frame done = std::move(stack_.back());
    stack_.pop_back();
    if (done.fragment >= 0 && !done.skipAfter.empty())
      skipOperands(static_cast<std::uint32_t>(done.fragment), done.skipAfter);
    if (!done.breakAfter) return;
    // break: leaves the enclosing fragment (or the interaction); what is left
    // of it is logged as skipped.
    const int enclosing = fragments_[static_cast<std::size_t>(done.fragment)].parent;
    const std::string detail = "left by break " + fragments_[static_cast<std::size_t>(done.fragment)].id;
    while (!stack_.empty() && (enclosing < 0 || stack_.back().fragment == enclosing)) {
      Frame& f = stack_.back();
      if (f.kind == FrameKind::sequence) {
        skipItems(*f.items, f.pos, detail);
        if (f.fragment >= 0 && !f.skipAfter.empty()) skipOperands(static_cast<std::uint32_t>(f.fragment), f.skipAfter, detail);
      }
      stack_.pop_back();
    }
  }

  void skipOperands(std::uint32_t f, const std::vector<std::uint32_t>& operands, const std::string& why = {}) {
    for (const std::uint32_t k : operands)
      if (k < fragments_[f].operands.size())
        skipItems(fragments_[f].operands[k], 0,
                  !why.empty() ? why : "operand " + std::to_string(k + 1) + " of " + fragments_[f].id + " not taken");
  }

  // Logs every message of the items from `pos` on, nested fragments
  // included, as skipped (iteratively: nesting can be deep).
  void skipItems(const std::vector<Item>& items, std::size_t pos, const std::string& detail) {
    std::vector<std::pair<const std::vector<Item>*, std::size_t>> work{{&items, pos}};
    while (!work.empty()) {
      auto& [list, at] = work.back();
      if (at == list->size()) {
        work.pop_back();
        continue;
      }
      const Item item = (*list)[at++];
      if (item.message) {
        const Message& msg = messages_[item.index];
        TraceEvent e;
        e.step = sent_;
        e.kind = EventKind::skip;
        e.edge = msg.id;
        e.from = msg.from;
        e.to = msg.to;
        e.detail = detail;
        record(std::move(e));
      } else {
        work.emplace_back(&fragments_[item.index].merged, 0);
      }
    }
  }

  void emitEnter(int f, const std::string& detail) {
    TraceEvent e;
    e.step = sent_;
    e.kind = EventKind::enter;
    e.node = fragments_[static_cast<std::size_t>(f)].id;
    e.detail = detail;
    record(std::move(e));
  }

  // A fragment none of whose operands runs, with unknown guards: says why.
  void emitEnterless(std::uint32_t f, const std::string& why) {
    TraceEvent e;
    e.step = sent_;
    e.kind = EventKind::skip;
    e.node = fragments_[f].id;
    e.detail = "no operand taken; " + why;
    record(std::move(e));
  }

  void finish(RunStatus status, std::string detail) {
    status_ = status;
    stack_.clear();
    TraceEvent e;
    e.kind = EventKind::end;
    e.step = sent_;
    e.status = status;
    e.detail = std::move(detail);
    record(std::move(e));
  }

  std::vector<Participant> participants_;
  std::vector<Message> messages_;
  std::vector<std::uint32_t> messageOrder_;   // edge index per message
  std::vector<Fragment> fragments_;
  std::vector<std::uint32_t> fragmentOrder_;  // node index per fragment
  std::vector<GuardResult> guardResults_;
  std::vector<std::uint32_t> guardBase_;
  std::vector<Item> topItems_;

  std::vector<Frame> stack_;
  std::vector<std::uint32_t> visits_;
  std::uint64_t sent_ = 0;
  std::uint64_t events_ = 0;
  int current_ = -1;
  bool started_ = false;
  RunStatus status_ = RunStatus::running;
};

}  // namespace

std::unique_ptr<Simulation> makeSequenceSimulation(std::span<const Node> nodes, std::span<const Edge> edges,
                                                   SimulationOptions options) {
  return std::make_unique<SequenceSimulation>(nodes, edges, std::move(options));
}

}  // namespace modelyne::core::sim
