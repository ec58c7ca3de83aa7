#include "ai/plan.h"

#include <array>
#include <unordered_set>
#include <utility>

#include "ai/text_util.h"

namespace modelyne::ai {

namespace {

// ---- kind words ----

constexpr std::array<std::string_view, kPlanNodeKindCount> kNodeWords = {
    "Block", "Actor", "State", "Action", "UseCase", "Requirement", "Constraint", "Interface", "Generic"};
constexpr std::array<std::string_view, kPlanEdgeKindCount> kEdgeWords = {
    "Connection", "Containment", "Flow", "Generalization", "Dependency", "Satisfy", "Allocate"};

template <class Kind>
struct KeywordEntry {
  std::string_view word;  // lower case
  Kind kind;
};

// Node keyword map; first match wins, anything else is Block.
constexpr KeywordEntry<PlanNodeKind> kNodeKeywords[] = {
    {"actor", PlanNodeKind::Actor},
    {"state", PlanNodeKind::State},
    {"action", PlanNodeKind::Action},
    {"action usage", PlanNodeKind::Action},
    {"actionusage", PlanNodeKind::Action},
    {"activity", PlanNodeKind::Action},
    {"activity node", PlanNodeKind::Action},
    {"step", PlanNodeKind::Action},
    {"task", PlanNodeKind::Action},
    {"operation", PlanNodeKind::Action},
    {"process", PlanNodeKind::Action},
    {"usecase", PlanNodeKind::UseCase},
    {"use case", PlanNodeKind::UseCase},
    {"requirement", PlanNodeKind::Requirement},
    {"constraint", PlanNodeKind::Constraint},
    {"interface", PlanNodeKind::Interface},
    {"generic", PlanNodeKind::Generic},
};

// Edge keyword map; first match wins, anything else is Connection.
constexpr KeywordEntry<PlanEdgeKind> kEdgeKeywords[] = {
    {"containment", PlanEdgeKind::Containment},
    {"contains", PlanEdgeKind::Containment},
    {"flow", PlanEdgeKind::Flow},
    {"control flow", PlanEdgeKind::Flow},
    {"object flow", PlanEdgeKind::Flow},
    {"item flow", PlanEdgeKind::Flow},
    {"workflow", PlanEdgeKind::Flow},
    {"sequence", PlanEdgeKind::Flow},
    {"next", PlanEdgeKind::Flow},
    {"then", PlanEdgeKind::Flow},
    {"generalization", PlanEdgeKind::Generalization},
    {"extends", PlanEdgeKind::Generalization},
    {"dependency", PlanEdgeKind::Dependency},
    {"depends", PlanEdgeKind::Dependency},
    {"satisfy", PlanEdgeKind::Satisfy},
    {"satisfies", PlanEdgeKind::Satisfy},
    {"allocate", PlanEdgeKind::Allocate},
    {"allocation", PlanEdgeKind::Allocate},
};

template <class Kind, std::size_t N>
Kind lookupKeyword(const KeywordEntry<Kind> (&table)[N], std::string_view word, Kind fallback) noexcept {
  for (const auto& entry : table)
    if (text::iequals(entry.word, word)) return entry.kind;
  return fallback;
}

// ---- plan text lines ----

// Splits a trimmed line at every '|', keeping empty fields.
void splitFields(std::string_view line, std::vector<std::string_view>& fields) {
  fields.clear();
  std::size_t start = 0;
  for (;;) {
    const std::size_t bar = line.find('|', start);
    if (bar == std::string_view::npos) {
      fields.push_back(line.substr(start));
      return;
    }
    fields.push_back(line.substr(start, bar - start));
    start = bar + 1;
  }
}

struct TransparentHash {
  using is_transparent = void;
  std::size_t operator()(std::string_view s) const noexcept { return std::hash<std::string_view>{}(s); }
};

bool parseInto(std::string_view text, DiagramPlan& out) {
  if (const std::size_t at = text.find("TITLE|"); at != std::string_view::npos) text.remove_prefix(at);

  std::unordered_set<std::string, TransparentHash, std::equal_to<>> seen;
  std::vector<std::string_view> fields;
  std::size_t pos = 0;
  while (pos <= text.size()) {
    std::size_t eol = text.find('\n', pos);
    if (eol == std::string_view::npos) eol = text.size();
    const std::string_view line = text::trim(text.substr(pos, eol - pos));
    pos = eol + 1;
    if (line.empty() || line.find('|') == std::string_view::npos) continue;
    splitFields(line, fields);
    const std::string_view record = fields[0];

    if (text::iequals(record, "title")) {
      if (text::iequals(fields[1], "short title")) continue;
      out.title = std::string(fields[1]);
    } else if (text::iequals(record, "node")) {
      if (fields.size() < 4) continue;
      if (text::iequals(fields[1], "id") && text::iequals(fields[2], "kind") && text::iequals(fields[3], "label"))
        continue;
      PlanNode node;
      node.id = fields[1].empty() ? "n" + std::to_string(out.nodes.size() + 1) : std::string(fields[1]);
      if (seen.find(std::string_view(node.id)) != seen.end()) continue;
      node.kind = PlanNodeKindFromWord(fields[2]);
      node.label = fields[3].empty() ? node.id : std::string(fields[3]);
      seen.insert(node.id);
      out.nodes.push_back(std::move(node));
    } else if (text::iequals(record, "edge")) {
      if (fields.size() < 4) continue;
      if (text::iequals(fields[1], "sourceid") && text::iequals(fields[2], "targetid") &&
          text::iequals(fields[3], "kind"))
        continue;
      PlanEdge edge;
      edge.source = std::string(fields[1]);
      edge.target = std::string(fields[2]);
      edge.kind = PlanEdgeKindFromWord(fields[3]);
      if (fields.size() >= 5) edge.label = std::string(fields[4]);
      out.edges.push_back(std::move(edge));
    }
  }
  if (out.nodes.empty()) return false;

  std::erase_if(out.edges, [&](const PlanEdge& e) {
    return seen.find(std::string_view(e.source)) == seen.end() ||
           seen.find(std::string_view(e.target)) == seen.end();
  });
  PlaceOnGrid(out.nodes);
  out.notes = "Parsed " + std::to_string(out.nodes.size()) + " nodes and " + std::to_string(out.edges.size()) +
              " edges.";
  return true;
}

}  // namespace

void AppendNote(DiagramPlan& plan, std::string_view note) {
  if (!plan.notes.empty()) plan.notes += ' ';
  plan.notes += note;
}

std::string_view PlanWord(PlanNodeKind kind) noexcept {
  const auto v = static_cast<std::int32_t>(kind);
  return v >= 0 && v < kPlanNodeKindCount ? kNodeWords[static_cast<std::size_t>(v)] : kNodeWords[0];
}

std::string_view PlanWord(PlanEdgeKind kind) noexcept {
  const auto v = static_cast<std::int32_t>(kind);
  return v >= 0 && v < kPlanEdgeKindCount ? kEdgeWords[static_cast<std::size_t>(v)] : kEdgeWords[0];
}

PlanNodeKind PlanNodeKindFromWord(std::string_view word) noexcept {
  return lookupKeyword(kNodeKeywords, word, PlanNodeKind::Block);
}

PlanEdgeKind PlanEdgeKindFromWord(std::string_view word) noexcept {
  return lookupKeyword(kEdgeKeywords, word, PlanEdgeKind::Connection);
}

void PlaceOnGrid(std::vector<PlanNode>& nodes) noexcept {
  for (std::size_t i = 0; i < nodes.size(); ++i) {
    nodes[i].x = static_cast<float>(i % 3) * 220.0f + 80.0f;
    nodes[i].y = static_cast<float>(i / 3) * 150.0f + 80.0f;
    nodes[i].width = kPlanNodeWidth;
    nodes[i].height = kPlanNodeHeight;
  }
}

bool ParsePlan(std::string_view text, DiagramPlan& plan) noexcept {
  try {
    DiagramPlan parsed;
    if (!parseInto(text, parsed)) return false;
    plan = std::move(parsed);
    return true;
  } catch (...) {
    // Only allocation can fail here; a plan that cannot be held is no plan.
    return false;
  }
}

std::string WritePlan(const DiagramPlan& plan) {
  std::string out;
  if (!plan.title.empty()) {
    out += "TITLE|";
    out += plan.title;
    out += '\n';
  }
  for (const PlanNode& n : plan.nodes) {
    out += "NODE|";
    out += n.id;
    out += '|';
    out += PlanWord(n.kind);
    out += '|';
    out += n.label;
    out += '\n';
  }
  for (const PlanEdge& e : plan.edges) {
    out += "EDGE|";
    out += e.source;
    out += '|';
    out += e.target;
    out += '|';
    out += PlanWord(e.kind);
    if (!e.label.empty()) {
      out += '|';
      out += e.label;
    }
    out += '\n';
  }
  return out;
}

}  // namespace modelyne::ai
