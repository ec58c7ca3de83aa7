#include "sim/propagation.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <iterator>
#include <set>

#include "sim/detail/diagram_model.h"
#include "sim/expression.h"

namespace modelyne::core::sim::parametric {

namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

// ---- Order of evaluation

// Groups of equations in the order they are evaluated: every group comes
// after the groups it reads from; a group of more than one equation, or of
// one that reads its own target, is a cycle. Tarjan's algorithm, iterative
// so that a long chain does not exhaust the stack.
struct Group {
  std::vector<std::uint32_t> equations;  // ascending
  bool cycle = false;
};

std::vector<Group> orderEquations(const detail::DiagramModel& model) {
  const std::size_t n = model.equations.size();
  std::vector<std::int64_t> producer(model.values.size(), -1);
  for (std::size_t i = 0; i < n; ++i)
    if (model.equations[i].info.valid) producer[model.equations[i].target] = static_cast<std::int64_t>(i);

  // Dependencies of each equation: the equations producing what it reads.
  std::vector<std::vector<std::uint32_t>> deps(n);
  std::vector<bool> selfLoop(n, false);
  for (std::size_t i = 0; i < n; ++i) {
    const auto& eq = model.equations[i];
    if (!eq.info.valid) continue;
    for (std::uint32_t v : eq.reads) {
      if (producer[v] < 0) continue;
      const auto d = static_cast<std::uint32_t>(producer[v]);
      if (d == i) selfLoop[i] = true;
      else deps[i].push_back(d);
    }
  }

  constexpr std::uint32_t kUnvisited = std::numeric_limits<std::uint32_t>::max();
  std::vector<std::uint32_t> index(n, kUnvisited), low(n, 0);
  std::vector<bool> onStack(n, false);
  std::vector<std::uint32_t> stack;
  std::vector<std::pair<std::uint32_t, std::size_t>> frames;  // equation, next dependency
  std::vector<Group> groups;
  std::uint32_t counter = 0;

  for (std::uint32_t start = 0; start < n; ++start) {
    if (!model.equations[start].info.valid || index[start] != kUnvisited) continue;
    frames.push_back({start, 0});
    index[start] = low[start] = counter++;
    stack.push_back(start);
    onStack[start] = true;
    while (!frames.empty()) {
      auto& [v, next] = frames.back();
      if (next < deps[v].size()) {
        const std::uint32_t w = deps[v][next++];
        if (index[w] == kUnvisited) {
          index[w] = low[w] = counter++;
          stack.push_back(w);
          onStack[w] = true;
          frames.push_back({w, 0});
        } else if (onStack[w]) {
          low[v] = std::min(low[v], index[w]);
        }
        continue;
      }
      const std::uint32_t done = v;
      frames.pop_back();
      if (!frames.empty()) low[frames.back().first] = std::min(low[frames.back().first], low[done]);
      if (low[done] != index[done]) continue;
      Group g;
      std::uint32_t w;
      do {
        w = stack.back();
        stack.pop_back();
        onStack[w] = false;
        g.equations.push_back(w);
      } while (w != done);
      std::sort(g.equations.begin(), g.equations.end());
      g.cycle = g.equations.size() > 1 || selfLoop[done];
      groups.push_back(std::move(g));
    }
  }
  return groups;
}

// ---- The pass

class Pass {
 public:
  explicit Pass(detail::DiagramModel& model) : model_(model) {}

  PropagationResult run() {
    table_.reserve(model_.values.size());
    for (const auto& v : model_.values)
      if (v.given) {
        table_[v.key] = v.value;
        event(TraceCode::valueRead, v.name, kNaN, v.value, v.source);
      }
    for (std::size_t i = 0; i < model_.equations.size(); ++i) {
      const auto& eq = model_.equations[i];
      if (!eq.info.valid)
        event(TraceCode::parseError, eq.info.target.empty() ? eq.info.text : eq.info.target, kNaN, kNaN,
              static_cast<std::uint32_t>(eq.errorOffset));
    }
    evaluated_.assign(model_.equations.size(), false);

    double lastChange = 0.0;
    for (const Group& g : orderEquations(model_)) {
      if (!g.cycle) {
        evaluate(g.equations.front());
        result_.sweeps = std::max<std::uint32_t>(result_.sweeps, 1);
        continue;
      }
      const double change = iterate(g);
      lastChange = std::max(lastChange, change);
    }
    event(TraceCode::converged, "", lastChange, kTolerance, result_.sweeps);
    return finish();
  }

 private:
  void event(TraceCode code, const std::string& name, double before, double after, std::uint32_t detail) {
    result_.trace.push_back({code, name, before, after, detail, result_.trace.size() + 1});
  }

  // Evaluates one equation, writes its target and returns the change.
  double evaluate(std::uint32_t i) {
    const auto& eq = model_.equations[i];
    const auto& target = model_.values[eq.target];
    Evaluation e;
    try {
      e = EvaluateExpression(eq.expression, table_);
    } catch (const std::exception& ex) {  // checked when read; kept for safety
      model_.errors.push_back({eq.info.nodeId, "Equation \"" + eq.info.text + "\": " + ex.what(), ex.what(), 0});
      event(TraceCode::parseError, target.name, kNaN, kNaN, 0);
      return 0.0;
    }
    if (e.unresolved && !evaluated_[i]) {
      for (std::uint32_t v : eq.reads) {
        if (table_.count(model_.values[v].key)) continue;
        event(TraceCode::unresolvedName, model_.values[v].name, kNaN, 0.0, i);
        unresolved_.insert(model_.values[v].name);
      }
    }
    evaluated_[i] = true;
    auto [slot, fresh] = table_.try_emplace(target.key, e.value);
    const double before = fresh ? kNaN : slot->second;
    slot->second = e.value;
    event(TraceCode::equationEvaluated, target.name, before, e.value, i);
    double change;
    if (fresh) change = kInfinity;
    else if (std::isnan(before) && std::isnan(e.value)) change = 0.0;
    else if (std::isnan(before) || std::isnan(e.value)) change = kInfinity;
    else change = std::abs(e.value - before);
    if (change > kTolerance) event(TraceCode::valueChanged, target.name, before, e.value, i);
    return change;
  }

  // Sweeps a cycle until no change exceeds the tolerance or the limit is
  // reached; returns the largest change of the last sweep.
  double iterate(const Group& g) {
    for (std::uint32_t i : g.equations) {
      const auto& target = model_.values[model_.equations[i].target];
      if (table_.try_emplace(target.key, 0.0).second)
        event(TraceCode::valueRead, target.name, kNaN, 0.0, detail::kCycleStart);
    }
    double change = 0.0;
    std::uint32_t sweep = 0;
    do {
      ++sweep;
      change = 0.0;
      for (std::uint32_t i : g.equations) change = std::max(change, evaluate(i));
    } while (change > kTolerance && sweep < kIterationLimit);
    const std::string& name = model_.values[model_.equations[g.equations.front()].target].name;
    event(TraceCode::converged, name, change, kTolerance, sweep);
    result_.sweeps = std::max(result_.sweeps, sweep);
    if (change > kTolerance) {
      result_.converged = false;
      model_.errors.push_back({model_.equations[g.equations.front()].info.nodeId,
                               "The cycle through " + quotedTargets(g) + " did not settle within " +
                                   std::to_string(kIterationLimit) + " sweeps (last change " +
                                   std::to_string(change) + ").",
                               {},
                               0});
    }
    return change;
  }

  std::string quotedTargets(const Group& g) const {
    std::string s;
    for (std::uint32_t i : g.equations) {
      if (!s.empty()) s += ", ";
      s += "'" + model_.values[model_.equations[i].target].name + "'";
    }
    return s;
  }

  PropagationResult finish() {
    std::vector<std::int64_t> producer(model_.values.size(), -1);
    for (std::size_t i = 0; i < model_.equations.size(); ++i)
      if (model_.equations[i].info.valid) producer[model_.equations[i].target] = static_cast<std::int64_t>(i);
    result_.values.reserve(model_.values.size());
    for (std::size_t v = 0; v < model_.values.size(); ++v) {
      auto& mv = model_.values[v];
      ValueEntry e;
      e.name = std::move(mv.name);
      e.nodeId = std::move(mv.nodeId);
      e.valueNodeIds = std::move(mv.valueNodeIds);
      e.given = mv.given;
      const auto it = table_.find(mv.key);
      e.known = it != table_.end();
      e.value = e.known ? it->second : kNaN;
      e.equation = static_cast<int>(producer[v]);
      if (producer[v] >= 0) {
        const auto& info = model_.equations[static_cast<std::size_t>(producer[v])].info;
        e.equationText = info.constraint + ": " + info.text;
      }
      result_.values.push_back(std::move(e));
    }
    for (auto& eq : model_.equations) result_.equations.push_back(std::move(eq.info));
    result_.unresolved.assign(unresolved_.begin(), unresolved_.end());
    result_.errors = std::move(model_.errors);
    return std::move(result_);
  }

  detail::DiagramModel& model_;
  PropagationResult result_;
  VariableTable table_;
  std::vector<bool> evaluated_;
  std::set<std::string> unresolved_;
};

// The names of the trace event codes, indexed by code - 1.
constexpr std::string_view kTraceCodeNames[] = {"valueRead",  "equationEvaluated", "valueChanged",
                                                "converged",  "parseError",        "unresolvedName"};

}  // namespace

std::string_view traceCodeName(TraceCode code) noexcept {
  const auto index = static_cast<std::size_t>(code) - 1;
  return index < std::size(kTraceCodeNames) ? kTraceCodeNames[index] : "event";
}

const ValueEntry* PropagationResult::find(std::string_view name) const noexcept {
  for (const auto& v : values)
    if (v.name == name) return &v;
  return nullptr;
}

PropagationResult propagate(std::span<const Node> nodes, std::span<const Edge> edges) {
  detail::DiagramModel model = detail::readDiagram(nodes, edges);
  return Pass(model).run();
}

PropagationResult propagate(const Document& document) {
  return propagate(std::span<const Node>(document.nodes()), std::span<const Edge>(document.edges()));
}

}  // namespace modelyne::core::sim::parametric
