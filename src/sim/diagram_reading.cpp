// Turns the nodes and edges of a parametric diagram into values and
// equations: names, given values, parameter ownership, binding connectors
// and the scope rules for names in equations.

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <limits>
#include <string_view>
#include <unordered_map>

#include "sim/detail/diagram_model.h"
#include "sim/detail/parser.h"

namespace modelyne::core::sim::parametric::detail {

namespace {

// ---- Roles of node types

enum class Role { none, value, constraint, definition, parameter };

struct RoleEntry {
  ShapeType type;
  Role role;
};

constexpr RoleEntry kRoles[] = {
    {ShapeType::sysmlValueProperty, Role::value},
    {ShapeType::sysmlConstraintProperty, Role::constraint},
    {ShapeType::sysmlConstraintUsage, Role::constraint},
    {ShapeType::sysmlConstraintBlock, Role::definition},
    {ShapeType::sysmlConstraintDef, Role::definition},
    {ShapeType::sysmlConstraintParameter, Role::parameter},
};

// Properties read, in the order they are tried.
constexpr const char* kEquationKeys[] = {"equation", "bindings"};
constexpr const char* kTypeKeys[] = {"type", "definition"};
struct ValueKey {
  const char* key;
  ValueSource source;
};
constexpr ValueKey kValueKeys[] = {{"value", kFromValue}, {"default", kFromDefault}};

Role roleOf(ShapeType type) noexcept {
  for (const auto& e : kRoles)
    if (e.type == type) return e.role;
  return Role::none;
}

// ---- Text helpers

std::string_view trim(std::string_view s) noexcept {
  while (!s.empty() && isBlank(s.front())) s.remove_prefix(1);
  while (!s.empty() && isBlank(s.back())) s.remove_suffix(1);
  return s;
}

// The text before the first of `stops`, trimmed.
std::string_view before(std::string_view s, std::string_view stops) noexcept {
  return trim(s.substr(0, s.find_first_of(stops)));
}

bool isName(std::string_view s) noexcept {
  if (s.empty() || !isNameStart(s.front())) return false;
  return std::all_of(s.begin(), s.end(), isNameChar);
}

std::string_view propertyOf(const Node& node, const char* key) noexcept {
  const auto it = node.properties.find(key);
  return it == node.properties.end() ? std::string_view{} : trim(it->second);
}

std::string quoted(std::string_view s) { return "'" + std::string(s) + "'"; }

// A value text: a decimal number, optionally followed by blanks and a unit.
bool parseValueText(std::string_view text, double& out) noexcept {
  text = trim(text);
  if (text.size() > 1 && text.front() == '+' && text[1] != '-') text.remove_prefix(1);
  const char* end = text.data() + text.size();
  const auto [p, ec] = std::from_chars(text.data(), end, out);
  if (ec != std::errc{} || !std::isfinite(out)) return false;
  return p == end || isBlank(*p);
}

// Splits a property's text into lines without their line ends.
template <class F>
void forEachLine(std::string_view text, F&& f) {
  while (!text.empty()) {
    const auto nl = text.find('\n');
    f(text.substr(0, nl));
    if (nl == std::string_view::npos) break;
    text.remove_prefix(nl + 1);
  }
}

// ---- Parameters on a constraint's border

struct Box {
  double x0, y0, x1, y1;
  bool ok;
};

Box boxOf(const Node& n) noexcept {
  const double x = n.geom.x, y = n.geom.y, w = n.geom.w, h = n.geom.h;
  Box b{std::min(x, x + w), std::min(y, y + h), std::max(x, x + w), std::max(y, y + h), true};
  constexpr double kFar = 1e9;  // keeps grid cell numbers well inside their integer type
  b.ok = std::isfinite(b.x0) && std::isfinite(b.y0) && std::isfinite(b.x1) && std::isfinite(b.y1) &&
         std::abs(b.x0) < kFar && std::abs(b.y0) < kFar && std::abs(b.x1) < kFar && std::abs(b.y1) < kFar;
  return b;
}

bool touches(const Box& a, const Box& b) noexcept {
  return a.x0 <= b.x1 && b.x0 <= a.x1 && a.y0 <= b.y1 && b.y0 <= a.y1;
}

// A uniform grid over the constraints' boxes, so each parameter is tested
// against the few constraints near it rather than all of them.
class ConstraintGrid {
 public:
  static constexpr double kCell = 128.0;
  static constexpr std::int64_t kMaxCells = 256;  // a larger box goes on the list tested always

  void add(std::size_t holder, const Box& b) {
    if (cellCount(b) > kMaxCells) {
      large_.push_back(holder);
      return;
    }
    forCells(b, [&](std::uint64_t cell) { cells_[cell].push_back(holder); });
  }

  template <class F>
  void candidates(const Box& b, F&& f) const {
    for (std::size_t h : large_) f(h);
    if (cellCount(b) > kMaxCells) {
      for (const auto& [cell, list] : cells_)
        for (std::size_t h : list) f(h);
      return;
    }
    forCells(b, [&](std::uint64_t cell) {
      const auto it = cells_.find(cell);
      if (it != cells_.end())
        for (std::size_t h : it->second) f(h);
    });
  }

 private:
  static std::int64_t cellOf(double v) noexcept { return static_cast<std::int64_t>(std::floor(v / kCell)); }
  static std::int64_t cellCount(const Box& b) noexcept {
    return (cellOf(b.x1) - cellOf(b.x0) + 1) * (cellOf(b.y1) - cellOf(b.y0) + 1);
  }
  template <class F>
  static void forCells(const Box& b, F&& f) {
    for (std::int64_t cx = cellOf(b.x0); cx <= cellOf(b.x1); ++cx)
      for (std::int64_t cy = cellOf(b.y0); cy <= cellOf(b.y1); ++cy)
        f((static_cast<std::uint64_t>(cx) << 32) ^ static_cast<std::uint64_t>(cy & 0xffffffff));
  }

  std::unordered_map<std::uint64_t, std::vector<std::size_t>> cells_;
  std::vector<std::size_t> large_;
};

// ---- Reading

struct Holder {
  std::size_t node = 0;
  std::string_view name;
  std::string_view typeName;
  bool definition = false;
  bool usedAsDefinition = false;
  int definitionHolder = -1;
  std::unordered_map<std::string_view, std::uint32_t> parameters;
};

class Reader {
 public:
  Reader(std::span<const Node> nodes, std::span<const Edge> edges) : nodes_(nodes), edges_(edges) {}

  DiagramModel run() {
    classify();
    linkDefinitions();
    attachParameters();
    bindValues();
    makeValues();
    makeEquations();
    return std::move(model_);
  }

 private:
  void error(std::size_t node, std::string message) {
    model_.errors.push_back({nodes_[node].id, std::move(message), {}, 0});
  }
  // Marks the error just reported as an expression that does not parse.
  void syntaxError(std::string_view message, std::size_t column) {
    model_.errors.back().syntaxError = std::string(message);
    model_.errors.back().column = column;
  }

  void classify() {
    roles_.resize(nodes_.size(), Role::none);
    holderOf_.assign(nodes_.size(), -1);
    if (!edges_.empty()) byId_.reserve(nodes_.size());
    for (std::size_t i = 0; i < nodes_.size(); ++i) {
      const Node& n = nodes_[i];
      const Role role = roleOf(n.type);
      roles_[i] = role;
      if (!edges_.empty()) byId_.emplace(n.id, i);  // only edges name nodes by id
      if (role == Role::constraint || role == Role::definition) {
        Holder h;
        h.node = i;
        h.name = before(n.text, ":{\n");
        h.definition = role == Role::definition;
        for (const char* key : kTypeKeys)
          if (h.typeName.empty()) h.typeName = propertyOf(n, key);
        if (h.typeName.empty()) {
          const auto colon = n.text.find(':');
          if (colon != std::string::npos) h.typeName = before(std::string_view(n.text).substr(colon + 1), "{\n");
        }
        holderOf_[i] = static_cast<int>(holders_.size());
        holders_.push_back(std::move(h));
      }
    }
  }

  void linkDefinitions() {
    std::unordered_map<std::string_view, std::size_t> definitions;
    for (std::size_t h = 0; h < holders_.size(); ++h)
      if (holders_[h].definition && !holders_[h].name.empty()) definitions.emplace(holders_[h].name, h);
    for (auto& h : holders_) {
      if (h.definition || h.typeName.empty()) continue;
      const auto it = definitions.find(h.typeName);
      if (it == definitions.end()) continue;
      h.definitionHolder = static_cast<int>(it->second);
      holders_[it->second].usedAsDefinition = true;
    }
  }

  int holderAt(const std::string& id) const {
    const auto it = byId_.find(id);
    return it == byId_.end() ? -1 : holderOf_[it->second];
  }
  int parameterAt(const std::string& id) const {
    const auto it = byId_.find(id);
    return it != byId_.end() && roles_[it->second] == Role::parameter ? static_cast<int>(it->second) : -1;
  }

  // An edge between a parameter and a constraint decides first; the
  // drawing decides for the rest.
  void attachParameters() {
    owner_.assign(nodes_.size(), -1);
    for (const Edge& e : edges_) {
      if (e.type == EdgeType::sysmlBindingConnector) continue;
      int p = parameterAt(e.source), h = holderAt(e.target);
      if (p < 0 || h < 0) p = parameterAt(e.target), h = holderAt(e.source);
      if (p >= 0 && h >= 0 && owner_[p] < 0) owner_[p] = h;
    }
    ConstraintGrid grid;
    std::vector<Box> holderBoxes(holders_.size());
    for (std::size_t h = 0; h < holders_.size(); ++h) {
      holderBoxes[h] = boxOf(nodes_[holders_[h].node]);
      if (holderBoxes[h].ok) grid.add(h, holderBoxes[h]);
    }
    for (std::size_t i = 0; i < nodes_.size(); ++i) {
      if (roles_[i] != Role::parameter || owner_[i] >= 0) continue;
      const Box p = boxOf(nodes_[i]);
      if (!p.ok) continue;
      const double cx = (p.x0 + p.x1) / 2, cy = (p.y0 + p.y1) / 2;
      int best = -1;
      bool bestHoldsCentre = false;
      double bestArea = 0.0;
      grid.candidates(p, [&](std::size_t h) {
        const Box& b = holderBoxes[h];
        if (!touches(p, b)) return;
        const bool holdsCentre = b.x0 <= cx && cx <= b.x1 && b.y0 <= cy && cy <= b.y1;
        const double area = (b.x1 - b.x0) * (b.y1 - b.y0);
        const auto hi = static_cast<int>(h);
        const bool better = best < 0 || (holdsCentre != bestHoldsCentre ? holdsCentre
                                         : area != bestArea           ? area < bestArea
                                                                      : hi < best);
        if (better) best = hi, bestHoldsCentre = holdsCentre, bestArea = area;
      });
      owner_[i] = best;
    }
  }

  std::size_t find(std::size_t i) {
    while (parent_[i] != i) i = parent_[i] = parent_[parent_[i]];
    return i;
  }

  // Binding connectors make one value of everything they join.
  void bindValues() {
    parent_.resize(nodes_.size());
    for (std::size_t i = 0; i < nodes_.size(); ++i) parent_[i] = i;
    for (const Edge& e : edges_) {
      if (e.type != EdgeType::sysmlBindingConnector) continue;
      const auto s = byId_.find(e.source), t = byId_.find(e.target);
      if (s == byId_.end() || t == byId_.end()) continue;
      const auto bindable = [&](std::size_t i) { return roles_[i] == Role::value || roles_[i] == Role::parameter; };
      if (!bindable(s->second) || !bindable(t->second)) {
        const std::size_t wrong = bindable(s->second) ? t->second : s->second;
        error(wrong, "Binding connector " + quoted(e.id) +
                         " must join value properties and constraint parameters; it is ignored.");
        continue;
      }
      std::size_t a = find(s->second), b = find(t->second);
      if (a != b) parent_[std::max(a, b)] = std::min(a, b);
    }
  }

  std::uint32_t newValue(std::string name, const std::string& nodeId) {
    const auto index = static_cast<std::uint32_t>(model_.values.size());
    ModelValue v;
    v.name = std::move(name);
    v.key = "_" + std::to_string(index);
    v.nodeId = nodeId;
    model_.values.push_back(std::move(v));
    return index;
  }

  void makeValues() {
    std::vector<std::int64_t> valueOfRoot(nodes_.size(), -1);
    valuesByName_.reserve(nodes_.size());
    for (std::size_t i = 0; i < nodes_.size(); ++i) {
      if (roles_[i] != Role::value) continue;
      const Node& n = nodes_[i];
      const std::string_view name = before(n.text, ":=\n");
      const std::size_t root = find(i);
      if (valueOfRoot[root] < 0) valueOfRoot[root] = newValue(std::string(name.empty() ? n.id : name), n.id);
      const auto v = static_cast<std::uint32_t>(valueOfRoot[root]);
      if (!name.empty()) valuesByName_.emplace(name, v);
      model_.values[v].valueNodeIds.push_back(n.id);
      readGivenValue(i, name.empty() ? std::string_view(n.id) : name, model_.values[v]);
    }
    for (std::size_t i = 0; i < nodes_.size(); ++i) {
      if (roles_[i] != Role::parameter) continue;
      const Node& n = nodes_[i];
      const std::string_view name = before(n.text, ":=\n");
      if (owner_[i] < 0) {
        error(i, "Constraint parameter " + quoted(name.empty() ? n.id : name) +
                     " belongs to no constraint; draw it on a constraint's border or connect it to one.");
        continue;
      }
      Holder& h = holders_[owner_[i]];
      const std::size_t root = find(i);
      if (valueOfRoot[root] < 0)
        valueOfRoot[root] = newValue(std::string(h.name) + "." + std::string(name), n.id);
      if (name.empty()) continue;
      if (!h.parameters.emplace(name, static_cast<std::uint32_t>(valueOfRoot[root])).second)
        error(i, "Constraint " + quoted(h.name) + " has two parameters named " + quoted(name) +
                     "; the first is used.");
    }
  }

  void readGivenValue(std::size_t i, std::string_view name, ModelValue& v) {
    const Node& n = nodes_[i];
    std::string_view text;
    ValueSource source = kFromLabel;
    for (const auto& k : kValueKeys) {
      text = propertyOf(n, k.key);
      source = k.source;
      if (!text.empty()) break;
    }
    if (text.empty()) {
      const auto eq = n.text.find('=');
      if (eq == std::string::npos) return;
      text = before(std::string_view(n.text).substr(eq + 1), "\n");
      source = kFromLabel;
      if (text.empty()) return;
    }
    double value = 0.0;
    if (!parseValueText(text, value)) {
      error(i, "Value property " + quoted(name) + " has the value \"" + std::string(text) +
                   "\", which is not a number; it is ignored.");
      return;
    }
    if (!v.given) {
      v.given = true;
      v.value = value;
      v.source = source;
    } else if (value != v.value) {
      error(i, "Value property " + quoted(name) + " is bound to " + quoted(v.name) +
                   " but gives another value; the value of " + quoted(v.name) + " is used.");
    }
  }

  // Equations of a constraint: its own lines, else its definition's, else
  // the "{...}" part of its label.
  std::vector<std::string_view> equationLines(const Holder& h) const {
    std::vector<std::string_view> lines;
    const auto collect = [&](const Node& n) {
      for (const char* key : kEquationKeys) {
        const auto it = n.properties.find(key);
        if (it == n.properties.end()) continue;
        forEachLine(it->second, [&](std::string_view line) {
          line = trim(line);
          if (line.size() >= 2 && line.front() == '{' && line.back() == '}') line = trim(line.substr(1, line.size() - 2));
          if (!line.empty()) lines.push_back(line);
        });
      }
    };
    collect(nodes_[h.node]);
    if (lines.empty() && h.definitionHolder >= 0) collect(nodes_[holders_[h.definitionHolder].node]);
    if (lines.empty()) {
      const std::string& text = nodes_[h.node].text;
      const auto open = text.find('{');
      const auto close = text.find('}', open == std::string::npos ? 0 : open);
      if (open != std::string::npos && close != std::string::npos)
        forEachLine(std::string_view(text).substr(open + 1, close - open - 1), [&](std::string_view line) {
          line = trim(line);
          if (!line.empty()) lines.push_back(line);
        });
    }
    return lines;
  }

  // A name inside a constraint: its parameter, else the value property of
  // that name, else a value of the constraint's own.
  std::uint32_t resolve(std::size_t holder, std::string_view name) {
    const Holder& h = holders_[holder];
    if (const auto p = h.parameters.find(name); p != h.parameters.end()) return p->second;
    if (const auto v = valuesByName_.find(name); v != valuesByName_.end()) return v->second;
    std::string key = std::to_string(holder) + ":" + std::string(name);
    if (const auto l = locals_.find(key); l != locals_.end()) return l->second;
    const std::uint32_t v = newValue(std::string(h.name) + "." + std::string(name), nodes_[h.node].id);
    locals_.emplace(std::move(key), v);
    return v;
  }

  struct NameUse {
    std::size_t offset;
    std::string_view name;
  };
  // Collects the names of an expression while checking its syntax.
  struct NameSink {
    using Value = int;
    std::vector<NameUse> uses;
    int number(double) const noexcept { return 0; }
    int name(std::string_view n, std::size_t offset) {
      uses.push_back({offset, n});
      return 0;
    }
    static int add(int, int) noexcept { return 0; }
    static int subtract(int, int) noexcept { return 0; }
    static int multiply(int, int) noexcept { return 0; }
    static int divide(int, int) noexcept { return 0; }
    static int power(int, int) noexcept { return 0; }
    static int negate(int) noexcept { return 0; }
  };

  void makeEquations() {
    std::vector<std::int64_t> producer;
    for (std::size_t hi = 0; hi < holders_.size(); ++hi) {
      const Holder& h = holders_[hi];
      if (h.usedAsDefinition) continue;
      const std::vector<std::string_view> lines = equationLines(h);
      if (lines.empty() && !h.definition)
        error(h.node, "Constraint " + quoted(h.name) + " holds no equation.");
      for (std::string_view line : lines) {
        ModelEquation eq;
        eq.info.nodeId = nodes_[h.node].id;
        eq.info.constraint = std::string(h.name);
        eq.info.text = std::string(line);
        const std::string where = "Constraint " + quoted(h.name) + ", equation \"" + eq.info.text + "\": ";
        const auto assign = line.find('=');
        if (assign == std::string_view::npos) {
          error(h.node, where + "expected target = expression.");
          syntaxError("expected target = expression", line.size() + 1);
          model_.equations.push_back(std::move(eq));
          continue;
        }
        const std::string_view target = trim(line.substr(0, assign));
        const std::string_view expression = line.substr(assign + 1);
        eq.info.target = std::string(target);
        if (!isName(target)) {
          error(h.node, where + "the target " + quoted(target) + " is not a name.");
          syntaxError("the target is not a name", 1);  // the line is trimmed: the target starts it
          model_.equations.push_back(std::move(eq));
          continue;
        }
        NameSink names;
        try {
          Parser<NameSink>(expression, names).parse();
        } catch (const ParseError& e) {
          eq.errorOffset = e.position();
          // The expression starts right after the "=" of the line.
          const std::size_t column = assign + 1 + e.column();
          error(h.node, where + e.what() + " at column " + std::to_string(column) + ".");
          syntaxError(e.what(), column);
          model_.equations.push_back(std::move(eq));
          continue;
        } catch (const std::out_of_range&) {
          error(h.node, where + "a number is out of range.");
          syntaxError("number out of range", 0);
          model_.equations.push_back(std::move(eq));
          continue;
        } catch (const std::invalid_argument&) {
          error(h.node, where + "a number has no digits.");
          syntaxError("invalid number", 0);
          model_.equations.push_back(std::move(eq));
          continue;
        }
        eq.target = resolve(hi, target);
        producer.resize(model_.values.size(), -1);
        if (producer[eq.target] >= 0) {
          const auto& first = model_.equations[static_cast<std::size_t>(producer[eq.target])].info;
          error(h.node, where + quoted(model_.values[eq.target].name) + " is already computed by \"" +
                            first.text + "\" of " + quoted(first.constraint) + "; this equation is ignored.");
          model_.equations.push_back(std::move(eq));
          continue;
        }
        producer[eq.target] = static_cast<std::int64_t>(model_.equations.size());
        std::size_t copied = 0;
        for (const NameUse& use : names.uses) {
          const std::uint32_t v = resolve(hi, use.name);
          if (std::find(eq.reads.begin(), eq.reads.end(), v) == eq.reads.end()) eq.reads.push_back(v);
          eq.expression.append(expression.substr(copied, use.offset - copied));
          eq.expression.append(model_.values[v].key);
          copied = use.offset + use.name.size();
        }
        eq.expression.append(expression.substr(copied));
        eq.info.valid = true;
        model_.equations.push_back(std::move(eq));
      }
    }
  }

  std::span<const Node> nodes_;
  std::span<const Edge> edges_;
  DiagramModel model_;
  std::vector<Role> roles_;
  std::vector<int> holderOf_;
  std::vector<Holder> holders_;
  std::vector<int> owner_;  // parameter node -> holder
  std::vector<std::size_t> parent_;
  std::unordered_map<std::string_view, std::size_t> byId_;
  std::unordered_map<std::string_view, std::uint32_t> valuesByName_;
  std::unordered_map<std::string, std::uint32_t> locals_;
};

}  // namespace

DiagramModel readDiagram(std::span<const Node> nodes, std::span<const Edge> edges) {
  return Reader(nodes, edges).run();
}

}  // namespace modelyne::core::sim::parametric::detail
