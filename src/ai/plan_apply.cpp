#include "ai/plan_apply.h"

#include <array>
#include <unordered_map>
#include <unordered_set>

#include "core/text_chars.h"

namespace modelyne::ai {

namespace {

using core::DiagramKind;
using core::EdgeType;
using core::ShapeType;
using S = ShapeType;
using E = EdgeType;

constexpr std::size_t kKinds = core::kDiagramKindCount;

// ---- the mapping tables ----

// Shape per diagram kind (rows, in DiagramKind order) and plan node kind
// (columns: Block, Actor, State, Action, UseCase, Requirement, Constraint,
// Interface, Generic). Every entry is allowed on its diagram kind; a kind
// with no counterpart on a diagram becomes a note carrying its label.
constexpr std::array<std::array<ShapeType, kPlanNodeKindCount>, kKinds> kShapes = {{
    /* bdd  */ {S::sysmlBlock, S::sysmlActor, S::umlNote, S::umlNote, S::umlNote, S::umlNote,
                S::sysmlConstraintBlock, S::sysmlInterfaceDef, S::umlClass},
    /* ibd  */ {S::sysmlPartUsage, S::sysmlReferenceProperty, S::umlNote, S::umlNote, S::umlNote, S::umlNote,
                S::umlNote, S::sysmlInterfaceUsage, S::umlObject},
    /* pkg  */ {S::umlPackage, S::umlClass, S::umlNote, S::umlNote, S::umlNote, S::sysmlRequirementUsage,
                S::umlNote, S::sysmlInterfaceDef, S::umlPackage},
    /* par  */ {S::sysmlBlock, S::umlNote, S::umlNote, S::umlNote, S::umlNote, S::umlNote,
                S::sysmlConstraintBlock, S::umlNote, S::umlObject},
    /* act  */ {S::umlAction, S::sysmlActor, S::umlNote, S::umlAction, S::umlAction, S::umlNote, S::umlNote,
                S::umlNote, S::umlAction},
    /* sd   */ {S::umlLifeline, S::umlActor, S::umlNote, S::umlNote, S::umlNote, S::umlNote, S::umlNote,
                S::umlLifeline, S::umlLifeline},
    /* stm  */ {S::umlNote, S::umlNote, S::umlState, S::umlState, S::umlNote, S::umlNote, S::umlNote,
                S::umlNote, S::umlState},
    /* uc   */ {S::sysmlSystemBoundary, S::umlActor, S::umlNote, S::umlUseCase, S::umlUseCase, S::umlNote,
                S::umlNote, S::umlNote, S::umlUseCase},
    /* req  */ {S::sysmlBlock, S::umlNote, S::umlNote, S::umlNote, S::umlNote, S::sysmlRequirementUsage,
                S::sysmlConstraintUsage, S::umlClass, S::umlClass},
    /* test */ {S::sysmlBlock, S::sysmlActor, S::umlNote, S::sysmlTestCase, S::umlUseCase,
                S::sysmlRequirementUsage, S::sysmlConstraintUsage, S::umlClass, S::umlClass},
    /* mm   */ {S::mindmapMainTopic, S::mindmapMainTopic, S::mindmapMainTopic, S::mindmapMainTopic,
                S::mindmapMainTopic, S::mindmapMainTopic, S::mindmapMainTopic, S::mindmapMainTopic,
                S::mindmapMainTopic},
}};

// Edge per diagram kind and plan edge kind (columns: Connection,
// Containment, Flow, Generalization, Dependency, Satisfy, Allocate).
// Inexact entries are the nearest allowed type; the plan word travels in
// the label. Item flows and bindings are avoided because they need ports.
constexpr std::array<std::array<EdgeMapping, kPlanEdgeKindCount>, kKinds> kEdges = {{
    /* bdd  */ {{{E::association, true}, {E::sysmlContainment, true}, {E::straightArrow, false},
                 {E::generalization, true}, {E::dependency, true}, {E::dependency, false}, {E::sysmlAllocate, true}}},
    /* ibd  */ {{{E::association, true}, {E::association, false}, {E::straightArrow, false},
                 {E::straightArrow, false}, {E::straightArrow, false}, {E::straightArrow, false},
                 {E::sysmlAllocate, true}}},
    /* pkg  */ {{{E::dependency, false}, {E::sysmlContainment, true}, {E::dependency, false},
                 {E::dependency, false}, {E::dependency, true}, {E::sysmlTrace, false}, {E::sysmlAllocate, true}}},
    /* par  */ {{{E::association, true}, {E::association, false}, {E::dependency, false},
                 {E::dependency, false}, {E::dependency, true}, {E::dependency, false}, {E::dependency, false}}},
    /* act  */ {{{E::straight, true}, {E::dependency, false}, {E::sysmlControlFlow, true},
                 {E::dependency, false}, {E::dependency, true}, {E::dependency, false}, {E::sysmlAllocate, true}}},
    /* sd   */ {{{E::sysmlSyncMessage, true}, {E::dependency, false}, {E::sysmlAsyncMessage, true},
                 {E::dependency, false}, {E::dependency, true}, {E::dependency, false}, {E::dependency, false}}},
    /* stm  */ {{{E::sysmlTransition, true}, {E::dependency, false}, {E::sysmlTransition, true},
                 {E::dependency, false}, {E::dependency, true}, {E::dependency, false}, {E::dependency, false}}},
    /* uc   */ {{{E::association, true}, {E::dependency, false}, {E::dependency, false},
                 {E::generalization, true}, {E::dependency, true}, {E::dependency, false}, {E::dependency, false}}},
    /* req  */ {{{E::dependency, false}, {E::sysmlContainment, true}, {E::dependency, false},
                 {E::dependency, false}, {E::dependency, true}, {E::sysmlSatisfy, true}, {E::dependency, false}}},
    /* test */ {{{E::association, true}, {E::sysmlContainment, true}, {E::dependency, false},
                 {E::generalization, true}, {E::dependency, true}, {E::sysmlSatisfy, true}, {E::dependency, false}}},
    /* mm   */ {{{E::mindmapBranch, true}, {E::mindmapBranch, true}, {E::mindmapBranch, true},
                 {E::mindmapBranch, true}, {E::mindmapBranch, true}, {E::mindmapBranch, true},
                 {E::mindmapBranch, true}}},
}};

// The stereotype-style word shown on an inexact edge without a label.
constexpr std::array<std::string_view, kPlanEdgeKindCount> kInexactLabels = {
    "\u00abconnect\u00bb", "\u00abcontain\u00bb", "\u00abflow\u00bb", "\u00abspecialize\u00bb",
    "\u00abuse\u00bb",     "\u00absatisfy\u00bb", "\u00aballocate\u00bb"};

// What a shape stands for when the document is read back as a plan.
struct ShapeKind {
  ShapeType type;
  PlanNodeKind kind;
};
constexpr ShapeKind kShapeKinds[] = {
    {S::umlClass, PlanNodeKind::Block},           {S::umlComponent, PlanNodeKind::Block},
    {S::umlPackage, PlanNodeKind::Block},         {S::umlNodeDevice, PlanNodeKind::Block},
    {S::umlArtifact, PlanNodeKind::Block},        {S::umlObject, PlanNodeKind::Block},
    {S::umlLifeline, PlanNodeKind::Block},        {S::umlBoundary, PlanNodeKind::Block},
    {S::sysmlPartDef, PlanNodeKind::Block},       {S::sysmlPartUsage, PlanNodeKind::Block},
    {S::sysmlBlock, PlanNodeKind::Block},         {S::sysmlReferenceProperty, PlanNodeKind::Block},
    {S::sysmlSystemBoundary, PlanNodeKind::Block}, {S::sysmlContextBoundary, PlanNodeKind::Block},
    {S::umlActor, PlanNodeKind::Actor},           {S::sysmlActor, PlanNodeKind::Actor},
    {S::umlState, PlanNodeKind::State},           {S::sysmlStateDef, PlanNodeKind::State},
    {S::sysmlStateUsage, PlanNodeKind::State},    {S::sysmlCompositeState, PlanNodeKind::State},
    {S::sysmlSubmachineState, PlanNodeKind::State}, {S::umlAction, PlanNodeKind::Action},
    {S::sysmlActionDef, PlanNodeKind::Action},    {S::sysmlActionUsage, PlanNodeKind::Action},
    {S::sysmlSendSignalAction, PlanNodeKind::Action}, {S::sysmlAcceptEventAction, PlanNodeKind::Action},
    {S::sysmlWaitTimeAction, PlanNodeKind::Action}, {S::bpmnTask, PlanNodeKind::Action},
    {S::bpmnUserTask, PlanNodeKind::Action},      {S::bpmnServiceTask, PlanNodeKind::Action},
    {S::bpmnScriptTask, PlanNodeKind::Action},    {S::bpmnSendTask, PlanNodeKind::Action},
    {S::bpmnReceiveTask, PlanNodeKind::Action},   {S::bpmnSubProcess, PlanNodeKind::Action},
    {S::bpmnCallActivity, PlanNodeKind::Action},  {S::sysmlTestCase, PlanNodeKind::Action},
    {S::umlUseCase, PlanNodeKind::UseCase},       {S::sysmlUseCaseDef, PlanNodeKind::UseCase},
    {S::sysmlUseCaseUsage, PlanNodeKind::UseCase}, {S::sysmlRequirementDef, PlanNodeKind::Requirement},
    {S::sysmlRequirementUsage, PlanNodeKind::Requirement}, {S::sysmlConstraintDef, PlanNodeKind::Constraint},
    {S::sysmlConstraintUsage, PlanNodeKind::Constraint}, {S::sysmlConstraintBlock, PlanNodeKind::Constraint},
    {S::sysmlConstraintProperty, PlanNodeKind::Constraint}, {S::umlInterface, PlanNodeKind::Interface},
    {S::sysmlInterfaceDef, PlanNodeKind::Interface}, {S::sysmlInterfaceUsage, PlanNodeKind::Interface},
    {S::sysmlPort, PlanNodeKind::Interface},      {S::sysmlFlowSpecification, PlanNodeKind::Interface},
};

struct EdgeKindOf {
  EdgeType type;
  PlanEdgeKind kind;
};
constexpr EdgeKindOf kEdgeKinds[] = {
    {E::aggregation, PlanEdgeKind::Containment},     {E::composition, PlanEdgeKind::Containment},
    {E::sysmlContainment, PlanEdgeKind::Containment}, {E::generalization, PlanEdgeKind::Generalization},
    {E::realization, PlanEdgeKind::Dependency},      {E::dependency, PlanEdgeKind::Dependency},
    {E::sysmlDeriveReqt, PlanEdgeKind::Dependency},  {E::sysmlRefine, PlanEdgeKind::Dependency},
    {E::sysmlVerify, PlanEdgeKind::Dependency},      {E::sysmlTrace, PlanEdgeKind::Dependency},
    {E::sysmlCopy, PlanEdgeKind::Dependency},        {E::sysmlInclude, PlanEdgeKind::Dependency},
    {E::sysmlExtend, PlanEdgeKind::Dependency},      {E::sysmlImport, PlanEdgeKind::Dependency},
    {E::sysmlAccess, PlanEdgeKind::Dependency},      {E::sysmlSatisfy, PlanEdgeKind::Satisfy},
    {E::sysmlAllocate, PlanEdgeKind::Allocate},      {E::sysmlItemFlow, PlanEdgeKind::Flow},
    {E::sysmlObjectFlow, PlanEdgeKind::Flow},        {E::sysmlControlFlow, PlanEdgeKind::Flow},
    {E::bpmnSequence, PlanEdgeKind::Flow},           {E::bpmnMessage, PlanEdgeKind::Flow},
    {E::sysmlTransition, PlanEdgeKind::Flow},        {E::sysmlSyncMessage, PlanEdgeKind::Flow},
    {E::sysmlAsyncMessage, PlanEdgeKind::Flow},      {E::sysmlReplyMessage, PlanEdgeKind::Flow},
    {E::sysmlCreateMessage, PlanEdgeKind::Flow},     {E::sysmlDeleteMessage, PlanEdgeKind::Flow},
    {E::sysmlFoundMessage, PlanEdgeKind::Flow},      {E::sysmlLostMessage, PlanEdgeKind::Flow},
};

std::size_t kindRow(DiagramKind k) noexcept {
  const auto v = static_cast<std::int32_t>(k);
  return v >= 0 && v < static_cast<std::int32_t>(kKinds) ? static_cast<std::size_t>(v)
                                                        : static_cast<std::size_t>(DiagramKind::pkg);
}

bool isRequirementShape(ShapeType t) noexcept {
  return t == S::sysmlRequirementUsage || t == S::sysmlRequirementDef;
}

// Hands out ids "n<k>" that no node of the document and no earlier pick uses.
class FreshIds {
 public:
  FreshIds(const core::Document& doc, std::unordered_set<std::string>& taken) : doc_(doc), taken_(taken) {}
  std::string take(const std::string& wanted) {
    if (!wanted.empty() && !doc_.findNode(wanted) && taken_.insert(wanted).second) return wanted;
    for (;;) {
      std::string id = "n" + std::to_string(next_++);
      if (!doc_.findNode(id) && taken_.insert(id).second) return id;
    }
  }

 private:
  const core::Document& doc_;
  std::unordered_set<std::string>& taken_;
  std::size_t next_ = 1;
};

}  // namespace

ShapeType ShapeForPlanKind(DiagramKind diagram, PlanNodeKind kind) noexcept {
  const auto col = static_cast<std::int32_t>(kind);
  const std::size_t c = col >= 0 && col < kPlanNodeKindCount ? static_cast<std::size_t>(col) : 0;
  return kShapes[kindRow(diagram)][c];
}

EdgeMapping EdgeForPlanKind(DiagramKind diagram, PlanEdgeKind kind) noexcept {
  const auto col = static_cast<std::int32_t>(kind);
  const std::size_t c = col >= 0 && col < kPlanEdgeKindCount ? static_cast<std::size_t>(col) : 0;
  return kEdges[kindRow(diagram)][c];
}

PlanNodeKind PlanKindOfShape(ShapeType type) noexcept {
  for (const auto& e : kShapeKinds)
    if (e.type == type) return e.kind;
  return PlanNodeKind::Generic;
}

PlanEdgeKind PlanKindOfEdge(EdgeType type) noexcept {
  for (const auto& e : kEdgeKinds)
    if (e.type == type) return e.kind;
  return PlanEdgeKind::Connection;
}

PlanElements BuildPlanElements(const core::Document& doc, DiagramKind diagram, const DiagramPlan& plan) {
  PlanElements out;
  out.nodes.reserve(plan.nodes.size());

  // Requirement ids already in use, so that generated ones stay unique.
  std::unordered_set<std::string> reqIds;
  bool hasCentral = false;
  for (const core::Node& n : doc.nodes()) {
    if (const auto it = n.properties.find("reqId"); it != n.properties.end()) reqIds.insert(it->second);
    hasCentral = hasCentral || n.type == S::mindmapCentral;
  }
  std::size_t nextReq = 1;
  const auto freshReqId = [&] {
    for (;;) {
      std::string digits = std::to_string(nextReq++);
      if (digits.size() < 3) digits.insert(0, 3 - digits.size(), '0');
      std::string id = "REQ-" + digits;
      if (reqIds.insert(id).second) return id;
    }
  };

  std::unordered_set<std::string> taken;
  FreshIds ids(doc, taken);
  std::unordered_map<std::string_view, std::size_t> byPlanId;  // plan id -> index in out.nodes
  for (const PlanNode& p : plan.nodes) {
    if (byPlanId.count(p.id)) continue;
    core::Node n;
    // Plan text comes from a person or a model: keep what XML cannot hold out of the document.
    n.id = ids.take(core::cleanText(p.id));
    n.type = ShapeForPlanKind(diagram, p.kind);
    if (diagram == DiagramKind::mm && !hasCentral) {
      n.type = S::mindmapCentral;  // a mind map radiates from one central idea
      hasCentral = true;
    }
    n.geom = {p.x, p.y, p.width > 0.0f ? p.width : kPlanNodeWidth, p.height > 0.0f ? p.height : kPlanNodeHeight};
    n.text = core::cleanText(p.label);
    if (isRequirementShape(n.type)) {
      n.properties["reqId"] = freshReqId();
      n.properties["requirementText"] = n.text;
    }
    byPlanId.emplace(p.id, out.nodes.size());
    out.nodes.push_back(std::move(n));
  }

  for (const PlanEdge& p : plan.edges) {
    const core::Node* ends[2] = {nullptr, nullptr};
    const std::string* names[2] = {&p.source, &p.target};
    for (int k = 0; k < 2; ++k) {
      if (const auto it = byPlanId.find(*names[k]); it != byPlanId.end()) ends[k] = &out.nodes[it->second];
      else ends[k] = doc.findNode(*names[k]);
    }
    if (!ends[0] || !ends[1]) continue;
    core::Edge e;
    e.source = ends[0]->id;
    e.target = ends[1]->id;
    EdgeMapping m = EdgeForPlanKind(diagram, p.kind);
    if (ends[0]->type == S::umlNote || ends[1]->type == S::umlNote) {
      // A note is attached by a plain line, whatever the relation.
      m = {E::straight, p.kind == PlanEdgeKind::Connection};
    }
    e.type = m.type;
    e.text = core::cleanText(p.label);
    if (e.text.empty() && !m.exact) {
      const auto col = static_cast<std::int32_t>(p.kind);
      e.text = kInexactLabels[col >= 0 && col < kPlanEdgeKindCount ? static_cast<std::size_t>(col) : 0];
    }
    out.edges.push_back(std::move(e));
  }
  return out;
}

bridge::InsertResult ApplyPlan(bridge::DocumentHandle doc, DiagramKind diagram, const DiagramPlan& plan,
                               std::optional<bridge::LayoutAlgorithm> layout) {
  if (!doc) throw bridge::BridgeError(bridge::kInvalidArgument, "Document handle is null");
  PlanElements elements = BuildPlanElements(*doc, diagram, plan);
  if (elements.nodes.empty() && elements.edges.empty()) return {};
  return bridge::insertElements(doc, std::move(elements.nodes), std::move(elements.edges), layout);
}

DocumentPlan PlanFromDocument(const core::Document& doc) {
  DocumentPlan out;
  out.plan.title = doc.frame().name;
  std::unordered_map<std::string_view, std::size_t> index;
  index.reserve(doc.nodes().size());
  for (const core::Node& n : doc.nodes()) {
    PlanNode p;
    p.id = "n" + std::to_string(out.plan.nodes.size() + 1);
    p.label = n.text.empty() ? n.id : n.text;
    // Plan text is one record per line and '|' separates fields.
    for (char& c : p.label)
      if (c == '\n' || c == '\r' || c == '|') c = ' ';
    p.kind = PlanKindOfShape(n.type);
    p.x = n.geom.x;
    p.y = n.geom.y;
    p.width = n.geom.w;
    p.height = n.geom.h;
    index.emplace(n.id, out.plan.nodes.size());
    out.documentIds.push_back(n.id);
    out.plan.nodes.push_back(std::move(p));
  }
  for (const core::Edge& e : doc.edges()) {
    const auto s = index.find(e.source);
    const auto t = index.find(e.target);
    if (s == index.end() || t == index.end()) continue;
    PlanEdge p;
    p.source = out.plan.nodes[s->second].id;
    p.target = out.plan.nodes[t->second].id;
    p.kind = PlanKindOfEdge(e.type);
    p.label = e.text;
    for (char& c : p.label)
      if (c == '\n' || c == '\r' || c == '|') c = ' ';
    out.plan.edges.push_back(std::move(p));
  }
  return out;
}

}  // namespace modelyne::ai
