#pragma once
/// Applying a plan to a document: each plan kind becomes the shape and edge
/// type that suits the open diagram's kind (so generated content never
/// breaks the element-type rule of that kind), and the whole plan goes in
/// as one undo step. Also the reverse: the current document as a plan, for
/// the refine prompt.

#include <optional>
#include <string>
#include <vector>

#include "ai/plan.h"
#include "bridge/bridge.h"
#include "core/catalogue.h"
#include "core/diagram_kind.h"
#include "core/document.h"

namespace modelyne::ai {

/// How one plan edge kind is drawn on one diagram kind. `exact` is false
/// where the edge type only approximates the plan kind; such edges without
/// a label are labelled with the plan word in guillemets ("«satisfy»").
struct EdgeMapping {
  core::EdgeType type;
  bool exact;
};

/// The shape type of a plan node kind on a diagram kind.
core::ShapeType ShapeForPlanKind(core::DiagramKind diagram, PlanNodeKind kind) noexcept;
/// The edge type of a plan edge kind on a diagram kind.
EdgeMapping EdgeForPlanKind(core::DiagramKind diagram, PlanEdgeKind kind) noexcept;

/// The document nodes and edges a plan turns into (not yet inserted).
/// Requirement shapes carry "reqId" (fresh "REQ-nnn") and "requirementText";
/// on a mind map without a central topic the first node becomes central;
/// edges touching a note are plain lines.
struct PlanElements {
  std::vector<core::Node> nodes;
  std::vector<core::Edge> edges;
};

/// Builds the document elements for `plan` on `diagram`. Node ids: the plan
/// id when the document has no such node, else a fresh "n<k>". Edge ends
/// name a plan node by its plan id or, failing that, an existing document
/// node; edges whose ends name neither are left out.
PlanElements BuildPlanElements(const core::Document& doc, core::DiagramKind diagram,
                               const DiagramPlan& plan);

/// Inserts the plan into the document in plan order as one undo step,
/// with `layout` laid out first among themselves below the existing content.
/// Returns the ids the nodes and edges received. Throws BridgeError as the
/// bridge does (a null handle).
bridge::InsertResult ApplyPlan(bridge::DocumentHandle doc, core::DiagramKind diagram,
                               const DiagramPlan& plan, std::optional<bridge::LayoutAlgorithm> layout = {});

/// The current document as a plan for the refine prompt: nodes get ids "n1",
/// "n2", ... in document order, their text as label (the id when empty) and
/// the plan kind their shape stands for; edges between known nodes keep
/// their text. `documentIds[i]` is the document id of plan node i.
struct DocumentPlan {
  DiagramPlan plan;
  std::vector<std::string> documentIds;
};
DocumentPlan PlanFromDocument(const core::Document& doc);

/// The plan kind that a shape or edge type stands for (Generic or
/// Connection where none fits).
PlanNodeKind PlanKindOfShape(core::ShapeType type) noexcept;
PlanEdgeKind PlanKindOfEdge(core::EdgeType type) noexcept;

}  // namespace modelyne::ai
