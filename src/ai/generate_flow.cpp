#include "ai/generate_flow.h"

#include <algorithm>
#include <array>
#include <unordered_map>
#include <unordered_set>

#include "ai/activity.h"
#include "ai/interpreter.h"
#include "ai/plan_apply.h"
#include "ai/text_util.h"
#include "bridge/bridge.h"

namespace modelyne::ai {

namespace {

// ---- fixed texts ----

constexpr std::string_view kNoDocument = "AI Generate: no active document. Open or create a project first.";
constexpr std::string_view kStartPage = "AI Generate: dismiss the Start page first.";
constexpr std::string_view kEmptyPrompt = "AI Generate: prompt is empty.";
constexpr std::string_view kNoEntities =
    "AI Generate: no named entities found. Name components such as System, Subsystem, Component, Interface, "
    "Actor.";
constexpr std::string_view kCloudNotConfigured = "Cloud AI is not configured; using deterministic fallback.";
constexpr std::string_view kCloudFailed = "Cloud AI request failed; using deterministic fallback.";
constexpr std::string_view kRefineReplacement =
    "AI Refine: Cloud AI returned a replacement diagram; using local parser to preserve the current model.";
constexpr std::string_view kRefineNotCarried =
    "AI Refine: continuation prompt did not carry the prior model; adding anchored local detail.";
constexpr std::string_view kRefineNothingNew =
    "AI Refine: continuation prompt added no new elements; adding anchored local detail.";
constexpr std::string_view kRefineNoElements = "AI Refine: no new elements were added. Try a more specific request.";
constexpr std::string_view kRefineSeparate =
    "AI Refine: model output looked like a separate diagram; ignored it to preserve the current model.";

struct KeyText {
  std::string_view key;
  std::string_view text;
};
constexpr KeyText kKeyTexts[] = {
    {kKeyQuotaReached, "Daily cloud AI limit reached; using the offline interpreter."},
    {kKeyRunning, "AI Generate: running with the %s backend..."},
    {kKeyQuotaRemaining, "Cloud AI requests remaining today: %s"},
    {kKeyOfflineHint,
     "Offline interpreter: name parts such as System, Subsystem, Component, Interface or Actor, and relate "
     "them with verbs such as contains, sends ... to, uses or satisfies."},
};

constexpr std::string_view kContinuationPhrases[] = {
    "more detail", "more details", "in more detail", "in greater detail", "expand", "elaborate", "refine",
    "add detail", "add more", "include", "also include", "go deeper", "drill down", "break down", "decompose",
    "further", "extend", "continue", "update", "improve", "enhance", "as continuation", "continuation",
    "add subcomponents", "add sub-components", "subdivide"};

constexpr std::string_view kRefinedRequirement = "Refined requirement for ";
constexpr std::string_view kOperationalConstraint = "Operational constraint for ";
constexpr std::string_view kIntegrationDetail = "Integration detail for ";
// At most this many anchored detail nodes per continuation request.
constexpr std::size_t kMaxDetails = 3;
// Gap between existing content and added nodes.
constexpr float kBelowGap = 70.0f;

// ---- log ----

void logText(GenerateResult& r, std::string_view text) { r.log.push_back({{}, std::string(text), {}}); }

void logKey(GenerateResult& r, std::string_view key, std::string_view arg = {}) {
  std::string text(EnglishText(key));
  if (const std::size_t at = text.find("%s"); at != std::string::npos) text.replace(at, 2, arg);
  r.log.push_back({std::string(key), std::move(text), std::string(arg)});
}

void logLines(GenerateResult& r, std::string_view lines) {
  std::size_t start = 0;
  while (start < lines.size()) {
    std::size_t eol = lines.find('\n', start);
    if (eol == std::string_view::npos) eol = lines.size();
    if (eol > start) logText(r, lines.substr(start, eol - start));
    start = eol + 1;
  }
}

std::string plural(std::size_t n, std::string_view one, std::string_view many) {
  return std::to_string(n) + " " + std::string(n == 1 ? one : many);
}

std::string labelKey(std::string_view label) { return text::lower(text::trim(label)); }

// ---- refinement: merging a produced plan into the current model ----

// The current model: its plan form plus lookups by plan id and by label.
struct Current {
  DocumentPlan doc;
  std::unordered_map<std::string, std::size_t> byId;     // plan id -> index
  std::unordered_map<std::string, std::size_t> byLabel;  // label key -> index (first)
  std::unordered_set<std::string> edgeKeys;              // source and target doc ids of every edge
};

// Two nodes already joined in one direction need no second edge: the kind
// an edge was drawn with may not read back as the plan kind it came from.
std::string edgeKey(std::string_view source, std::string_view target) {
  std::string k(source);
  k += '\n';
  k += target;
  return k;
}

Current readCurrent(const core::Document& doc) {
  Current c;
  c.doc = PlanFromDocument(doc);
  for (std::size_t i = 0; i < c.doc.plan.nodes.size(); ++i) {
    c.byId.emplace(c.doc.plan.nodes[i].id, i);
    c.byLabel.emplace(labelKey(c.doc.plan.nodes[i].label), i);
  }
  for (const core::Edge& e : doc.edges()) c.edgeKeys.insert(edgeKey(e.source, e.target));
  return c;
}

bool labelsCompatible(std::string_view a, std::string_view b) {
  const std::string x = labelKey(a);
  const std::string y = labelKey(b);
  if (x.empty() || y.empty()) return x == y;
  return x == y || x.find(y) != std::string::npos || y.find(x) != std::string::npos;
}

// The part of `produced` that is new to the current model: new nodes (with
// ids free in the document) and edges whose ends name new nodes or document
// nodes. `matchById` maps nodes that reuse a current id with a compatible
// label onto that node (a cloud reply that repeated the model).
DiagramPlan newPart(const core::Document& doc, const Current& cur, const DiagramPlan& produced, bool matchById) {
  DiagramPlan delta;
  std::unordered_map<std::string, std::string> endOf;  // produced id -> doc id or delta id
  std::unordered_map<std::string, std::string> newByLabel;
  std::unordered_set<std::string> taken;
  std::size_t next = 1;
  const auto freshId = [&] {
    for (;;) {
      std::string id = "n" + std::to_string(next++);
      if (!doc.findNode(id) && taken.insert(id).second) return id;
    }
  };
  for (const PlanNode& n : produced.nodes) {
    if (matchById) {
      if (const auto it = cur.byId.find(n.id);
          it != cur.byId.end() && labelsCompatible(n.label, cur.doc.plan.nodes[it->second].label)) {
        endOf.emplace(n.id, cur.doc.documentIds[it->second]);
        continue;
      }
    }
    const std::string key = labelKey(n.label);
    if (const auto it = cur.byLabel.find(key); it != cur.byLabel.end()) {
      endOf.emplace(n.id, cur.doc.documentIds[it->second]);
      continue;
    }
    if (const auto it = newByLabel.find(key); it != newByLabel.end()) {
      endOf.emplace(n.id, it->second);
      continue;
    }
    PlanNode added = n;
    added.id = freshId();
    newByLabel.emplace(key, added.id);
    endOf.emplace(n.id, added.id);
    delta.nodes.push_back(std::move(added));
  }
  std::unordered_set<std::string> seen;
  for (const PlanEdge& e : produced.edges) {
    const auto s = endOf.find(e.source);
    const auto t = endOf.find(e.target);
    if (s == endOf.end() || t == endOf.end() || s->second == t->second) continue;
    const std::string key = edgeKey(s->second, t->second);
    if (cur.edgeKeys.count(key) || !seen.insert(key).second) continue;
    delta.edges.push_back(PlanEdge{s->second, t->second, e.kind, e.label});
  }
  return delta;
}

// How a cloud reply to the refine prompt relates to the current model.
enum class ReplyFit { Preserved, Replacement, Separate };

ReplyFit judgeReply(const Current& cur, const DiagramPlan& reply) {
  std::size_t idsReused = 0;
  std::size_t matched = 0;
  for (const PlanNode& n : reply.nodes) {
    const auto it = cur.byId.find(n.id);
    if (it != cur.byId.end()) ++idsReused;
    if ((it != cur.byId.end() && labelsCompatible(n.label, cur.doc.plan.nodes[it->second].label)) ||
        cur.byLabel.count(labelKey(n.label)))
      ++matched;
  }
  if (idsReused > 0 && matched * 2 < idsReused) return ReplyFit::Replacement;
  if (matched == 0) return ReplyFit::Separate;
  return ReplyFit::Preserved;
}

// Detail nodes tied to existing nodes, for a continuation request: the most
// connected nodes first, one new detail per node, at most kMaxDetails.
DiagramPlan anchoredDetail(const core::Document& doc, const Current& cur) {
  struct Detail {
    std::string_view prefix;
    PlanNodeKind kind;
    PlanEdgeKind edge;
    std::string_view word;
  };
  static constexpr Detail kRequirement{kRefinedRequirement, PlanNodeKind::Requirement, PlanEdgeKind::Dependency,
                                       "refines"};
  static constexpr Detail kConstraint{kOperationalConstraint, PlanNodeKind::Constraint, PlanEdgeKind::Dependency,
                                      "constrains"};
  static constexpr Detail kIntegration{kIntegrationDetail, PlanNodeKind::Interface, PlanEdgeKind::Connection,
                                       "interfaces"};
  const auto preferences = [](PlanNodeKind k) -> std::array<const Detail*, 2> {
    switch (k) {
      case PlanNodeKind::Requirement:
      case PlanNodeKind::Constraint: return {&kRequirement, nullptr};
      case PlanNodeKind::Actor:
      case PlanNodeKind::Interface: return {&kIntegration, nullptr};
      case PlanNodeKind::Action:
      case PlanNodeKind::State:
      case PlanNodeKind::UseCase: return {&kConstraint, &kRequirement};
      default: return {&kConstraint, &kIntegration};
    }
  };

  std::unordered_map<std::string_view, std::size_t> degree;
  for (const core::Edge& e : doc.edges()) {
    ++degree[e.source];
    ++degree[e.target];
  }
  std::vector<std::size_t> anchors;
  const auto& nodes = cur.doc.plan.nodes;
  for (std::size_t i = 0; i < nodes.size(); ++i) {
    const core::Node* n = doc.findNode(cur.doc.documentIds[i]);
    if (!n || n->type == core::ShapeType::umlNote || n->type == core::ShapeType::text) continue;
    const std::string_view label = nodes[i].label;
    if (label.starts_with(kRefinedRequirement) || label.starts_with(kOperationalConstraint) ||
        label.starts_with(kIntegrationDetail))
      continue;
    anchors.push_back(i);
  }
  std::stable_sort(anchors.begin(), anchors.end(), [&](std::size_t a, std::size_t b) {
    const auto da = degree.find(cur.doc.documentIds[a]);
    const auto db = degree.find(cur.doc.documentIds[b]);
    return (da == degree.end() ? 0 : da->second) > (db == degree.end() ? 0 : db->second);
  });

  DiagramPlan delta;
  std::unordered_set<std::string> labels;
  for (const auto& [key, index] : cur.byLabel) labels.insert(key);
  std::unordered_set<std::string_view> used;  // anchors given a detail in this request
  std::unordered_set<std::string> taken;
  std::size_t next = 1;
  for (std::size_t round = 0; round < 2 && delta.nodes.size() < kMaxDetails; ++round) {
    for (std::size_t i : anchors) {
      if (delta.nodes.size() >= kMaxDetails) break;
      const std::string& docId = cur.doc.documentIds[i];
      if (used.count(docId)) continue;
      const Detail* d = preferences(nodes[i].kind)[round];
      if (!d) continue;
      std::string label = std::string(d->prefix) + nodes[i].label;
      if (!labels.insert(labelKey(label)).second) continue;
      std::string id;
      do id = "n" + std::to_string(next++);
      while (doc.findNode(id) || !taken.insert(id).second);
      delta.edges.push_back(PlanEdge{id, docId, d->edge, std::string(d->word)});
      delta.nodes.push_back(PlanNode{id, std::move(label), d->kind});
      used.insert(docId);
    }
  }
  return delta;
}

// Places added nodes on the three-column grid below the existing content.
void placeBelow(const core::Document& doc, DiagramPlan& delta) {
  float left = 80.0f;
  float bottom = 0.0f;
  bool first = true;
  for (const core::Node& n : doc.nodes()) {
    left = first ? n.geom.x : std::min(left, n.geom.x);
    bottom = first ? n.geom.y + n.geom.h : std::max(bottom, n.geom.y + n.geom.h);
    first = false;
  }
  PlaceOnGrid(delta.nodes);
  for (PlanNode& n : delta.nodes) {
    n.x += left - 80.0f;
    n.y += bottom + kBelowGap - 80.0f;
  }
}

bool hasNewElements(const DiagramPlan& p) { return !p.nodes.empty() || !p.edges.empty(); }

void run(const GenerateRequest& req, GenerateResult& res) {
  // Steps 1 to 3: something to work on.
  if (!req.document) return logText(res, kNoDocument);
  if (req.startPageShown) return logText(res, kStartPage);
  if (text::trim(req.prompt).empty()) return logText(res, kEmptyPrompt);
  core::Document& doc = *req.document;
  const std::string_view prompt = req.prompt;

  // Step 4: the backend.
  bool cloud = text::iequals(req.backend, "cloud");
  if (cloud && req.quota.limited && req.quota.remaining <= 0) {
    logKey(res, kKeyQuotaReached);
    cloud = false;
  }
  logKey(res, kKeyRunning, cloud ? "cloud" : "offline");
  if (cloud && req.quota.limited) logKey(res, kKeyQuotaRemaining, std::to_string(req.quota.remaining));
  if (cloud && !req.cloud) {
    logText(res, kCloudNotConfigured);
    cloud = false;
  }
  if (!cloud) logKey(res, kKeyOfflineHint);

  // Step 5: the plan.
  const core::DiagramKind kind = req.kind.value_or(doc.frame().kind);
  const bool refine = !doc.nodes().empty();
  const bool continuation = refine && IsContinuationRequest(prompt);
  Current cur;
  if (refine) cur = readCurrent(doc);

  DiagramPlan plan;
  bool fromCloud = false;
  if (cloud) {
    std::string cloudLog;
    fromCloud = GeneratePlanWithCloud(prompt, refine ? &cur.doc.plan : nullptr, plan, cloudLog, req.cloud);
    if (cloudLog.empty() && !fromCloud) logText(res, kCloudFailed);
    logLines(res, cloudLog);
  }
  const auto interpret = [&] {
    DiagramPlan p = InterpretText(prompt);
    NormalizeActivityPlan(prompt, p);
    return p;
  };
  if (fromCloud) NormalizeActivityPlan(prompt, plan);
  else plan = interpret();
  if (!plan.notes.empty()) logText(res, plan.notes);

  // Step 6: nothing named.
  if (!fromCloud && plan.nodes.empty() && !continuation) return logText(res, kNoEntities);

  // Step 7: refining the current model.
  if (refine) {
    DiagramPlan delta;
    bool detail = false;
    if (fromCloud) {
      switch (judgeReply(cur, plan)) {
        case ReplyFit::Preserved:
          delta = newPart(doc, cur, plan, true);
          break;
        case ReplyFit::Replacement:
          logText(res, kRefineReplacement);
          plan = interpret();
          if (!plan.notes.empty()) logText(res, plan.notes);
          delta = newPart(doc, cur, plan, false);
          break;
        case ReplyFit::Separate:
          if (continuation) {
            logText(res, kRefineNotCarried);
            detail = true;
          } else {
            logText(res, kRefineSeparate);
            plan = interpret();
            if (!plan.notes.empty()) logText(res, plan.notes);
            if (plan.nodes.empty()) return logText(res, kNoEntities);
            delta = newPart(doc, cur, plan, false);
          }
          break;
      }
    } else {
      delta = newPart(doc, cur, plan, false);
    }
    if (!detail && !hasNewElements(delta)) {
      if (!continuation) return logText(res, kRefineNoElements);
      logText(res, kRefineNothingNew);
      detail = true;
    }
    if (detail) {
      delta = anchoredDetail(doc, cur);
      if (delta.nodes.empty()) return logText(res, kRefineNoElements);
      logText(res, "Continuation request expanded locally with " +
                       plural(delta.nodes.size(), "anchored detail node", "anchored detail nodes") + ".");
    }
    placeBelow(doc, delta);
    plan = std::move(delta);
  }

  // Step 8: apply as one undo step and fit the view.
  const bridge::InsertResult inserted = ApplyPlan(&doc, kind, plan, req.layout);
  if (inserted.nodeIds.empty() && inserted.edgeIds.empty()) return logText(res, kRefineNoElements);
  res.applied = true;
  res.nodeIds = inserted.nodeIds;
  res.edgeIds = inserted.edgeIds;
  ViewFit fit;
  bool first = true;
  for (const PlanNode& n : plan.nodes) {
    const float w = n.width > 0.0f ? n.width : kPlanNodeWidth;
    const float h = n.height > 0.0f ? n.height : kPlanNodeHeight;
    fit.minX = first ? n.x : std::min(fit.minX, n.x);
    fit.minY = first ? n.y : std::min(fit.minY, n.y);
    fit.maxX = first ? n.x + w : std::max(fit.maxX, n.x + w);
    fit.maxY = first ? n.y + h : std::max(fit.maxY, n.y + h);
    first = false;
  }
  if (req.layout) {
    // The layout moved the new nodes: fit to where they are now.
    first = true;
    for (const std::string& id : inserted.nodeIds) {
      const core::Node* n = doc.findNode(id);
      if (!n) continue;
      fit.minX = first ? n->geom.x : std::min(fit.minX, n->geom.x);
      fit.minY = first ? n->geom.y : std::min(fit.minY, n->geom.y);
      fit.maxX = first ? n->geom.x + n->geom.w : std::max(fit.maxX, n->geom.x + n->geom.w);
      fit.maxY = first ? n->geom.y + n->geom.h : std::max(fit.maxY, n->geom.y + n->geom.h);
      first = false;
    }
  }
  if (!first) {
    fit.centerX = (fit.minX + fit.maxX) * 0.5f;
    fit.centerY = (fit.minY + fit.maxY) * 0.5f;
    fit.zoom = req.zoom > 0.0f ? req.zoom : 1.0f;
    res.view = fit;
  }
  logText(res, "AI Generate: added " + plural(inserted.nodeIds.size(), "node", "nodes") + " and " +
                   plural(inserted.edgeIds.size(), "edge", "edges") + ".");
}

}  // namespace

std::string_view EnglishText(std::string_view key) noexcept {
  for (const KeyText& k : kKeyTexts)
    if (k.key == key) return k.text;
  return {};
}

bool IsContinuationRequest(std::string_view prompt) noexcept {
  try {
    const std::string lowered = text::lower(prompt);
    for (std::string_view phrase : kContinuationPhrases)
      if (text::containsWholeWord(lowered, phrase)) return true;
    return false;
  } catch (...) {
    return false;
  }
}

GenerateResult RunAiGenerate(const GenerateRequest& request) {
  GenerateResult result;
  try {
    run(request, result);
  } catch (const std::exception& e) {
    // The document is unchanged: the bridge checks before it changes.
    result.applied = false;
    result.view.reset();
    logText(result, std::string("AI Generate: ") + e.what());
  }
  return result;
}

}  // namespace modelyne::ai
