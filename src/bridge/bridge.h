#pragma once
/// modelyne::bridge: the one door through which the editor, the command-line
/// tool, generated plans and users' programs change a Document. Every
/// operation checks its arguments first and throws BridgeError before
/// touching anything; undoable changes become one command on the document's
/// history; the four edge edits (anchor offsets, reconnect, text, type) are
/// applied directly and cannot be undone, and each has an undoable twin
/// (`...Undoable`) for editors.

#include <cstdint>
#include <exception>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "core/anchor.h"
#include "core/catalogue.h"
#include "core/document.h"
#include "core/model.h"

namespace modelyne::bridge {

using DocumentHandle = core::Document*;  ///< pointer-sized; null is an error for every call

/// Error codes of BridgeError.
enum BridgeErrorCode : std::uint32_t {
  kInvalidArgument = 1,
  kParseFailure = 2,
  kNotFound = 4,
  kNothingToUndo = 8,
  kNothingToRedo = 9,
};

class BridgeError : public std::exception {
 public:
  BridgeError(std::uint32_t code, std::string message) : code_(code), message_(std::move(message)) {}
  std::uint32_t code() const noexcept { return code_; }
  const char* what() const noexcept override { return message_.c_str(); }

 private:
  std::uint32_t code_;
  std::string message_;
};

// ---- documents and files ----
DocumentHandle createDocument();
void destroyDocument(DocumentHandle);
/// Parses diagram XML (with its frame and data-integration blocks) into the
/// document and clears the history. All or nothing: on failure the document
/// keeps its content and history; BridgeError code 2 whose message starts
/// with "Failed to parse XML" and goes on with what and where.
void loadDiagramXml(DocumentHandle, std::string_view xml);
/// The document as diagram XML with its data-integration block and frame line.
std::string saveDiagramXml(DocumentHandle);

// ---- nodes ----
std::string addNode(DocumentHandle, core::ShapeType, float x, float y, float w, float h,
                    std::optional<std::string> text = {}, std::optional<std::string> id = {});
void deleteNode(DocumentHandle, std::string_view nodeId);
void moveNode(DocumentHandle, std::string_view nodeId, float dx, float dy);
void resizeNode(DocumentHandle, std::string_view nodeId, float x, float y, float w, float h);
void setNodeText(DocumentHandle, std::string_view nodeId, std::string_view text);
void setNodeColor(DocumentHandle, std::string_view nodeId, std::string_view color);
void setNodeDataIntegration(DocumentHandle, std::string_view nodeId, bool flag);
/// Checked against the node type's property schema.
void setNodeProperty(DocumentHandle, std::string_view nodeId, std::string_view key,
                     std::string_view value);
void bringToFront(DocumentHandle, std::string_view nodeId);
void sendToBack(DocumentHandle, std::string_view nodeId);
void bringForward(DocumentHandle, std::string_view nodeId);
void sendBackward(DocumentHandle, std::string_view nodeId);

// ---- edges ----
std::string addEdge(DocumentHandle, std::string_view source, core::Anchor sourcePort,
                    std::string_view target, core::Anchor targetPort, std::string_view requestedId = {});
void deleteEdge(DocumentHandle, std::string_view edgeId);
void setEdgeAnchorOffsets(DocumentHandle, std::string_view edgeId, float srcAnchorDY, float tgtAnchorDY);
/// `sourceEnd` true reconnects the source end, false the target end.
void reconnectEdge(DocumentHandle, std::string_view edgeId, bool sourceEnd, std::string_view nodeId,
                   core::Anchor port);
void setEdgeText(DocumentHandle, std::string_view edgeId, std::string_view text);
void setEdgeType(DocumentHandle, std::string_view edgeId, core::EdgeType type);

// ---- the same edge edits as undoable commands ----
// Same checks and errors as the direct edits above; one undo step each.
// They return whether anything changed: an edit that changes nothing
// pushes nothing.
bool setEdgeTextUndoable(DocumentHandle, std::string_view edgeId, std::string_view text);
bool setEdgeTypeUndoable(DocumentHandle, std::string_view edgeId, core::EdgeType type);
bool setEdgeAnchorOffsetsUndoable(DocumentHandle, std::string_view edgeId, float srcAnchorDY, float tgtAnchorDY);
bool reconnectEdgeUndoable(DocumentHandle, std::string_view edgeId, bool sourceEnd, std::string_view nodeId,
                           core::Anchor port);

// ---- selections (ids that name no node are skipped) ----
/// Axis 0 left, 1 horizontal centre, 2 right, 3 top, 4 vertical middle, 5 bottom.
int alignNodes(DocumentHandle, std::span<const std::string> nodeIds, int axis);
/// Axis 0 horizontal, 1 vertical.
int distributeNodes(DocumentHandle, std::span<const std::string> nodeIds, int axis);
/// Axis 0 horizontal, 1 vertical.
int flipNodes(DocumentHandle, std::span<const std::string> nodeIds, int axis);
/// Returns the group id, or empty text when fewer than two nodes resolve.
std::string groupNodes(DocumentHandle, std::span<const std::string> nodeIds);
int ungroupNodes(DocumentHandle, std::span<const std::string> nodeIds);

// ---- batch operations: one undo step each ----
/// Deletes the nodes (with their edges) and the edges; unknown ids are
/// skipped. Returns the number of nodes and edges removed.
std::size_t deleteElements(DocumentHandle, std::span<const std::string> nodeIds,
                           std::span<const std::string> edgeIds);
/// Stacking changes of a selection.
enum class ZOrder { toFront, toBack, forward, backward };
/// Restacks every named node as one undo step, keeping the selection's own
/// stacking (to the front bottom-most first, to the back top-most first, one
/// step up top-most first, one step down bottom-most first). Returns how
/// many nodes were restacked.
std::size_t reorderNodes(DocumentHandle, std::span<const std::string> nodeIds, ZOrder order);
/// Moves every named node by (dx, dy); returns how many moved.
std::size_t moveNodes(DocumentHandle, std::span<const std::string> nodeIds, float dx, float dy);

/// The two whole-document automatic layouts (layered: hierarchies and flows;
/// organic: networks and mind maps).
enum class LayoutAlgorithm { layered, organic };

/// Result of inserting a set of elements: the ids they received, in order.
struct InsertResult {
  std::vector<std::string> nodeIds;
  std::vector<std::string> edgeIds;
};
/// Inserts nodes and edges (paste, generated content). A requested id that
/// is empty or taken gets a fresh one (base + "_" + n); edges that name an
/// inserted node by its requested id follow it to its new id. Edge ends must
/// name an inserted or existing node, else code 4 "Endpoint node not found".
/// With `layoutAdded`, the inserted nodes are first laid out among themselves
/// and placed below the existing content, which does not move; still one
/// undo step.
InsertResult insertElements(DocumentHandle, std::vector<core::Node> nodes, std::vector<core::Edge> edges,
                            std::optional<LayoutAlgorithm> layoutAdded = {});

/// One property change of a batch.
struct PropertyChange {
  std::string nodeId;
  std::string key;
  std::string value;
};
/// Sets several properties as one undo step; every change is checked (node
/// exists, key in the schema, value valid) before anything changes.
/// Returns how many were applied.
std::size_t setNodeProperties(DocumentHandle, std::span<const PropertyChange> changes);

// ---- automatic layout: one undo step each ----
/// What a whole-document layout did.
struct LayoutOutcome {
  bool laidOut = false;    ///< false: the document was left untouched, `reason` says why
  std::string reason;
  std::size_t changed = 0; ///< nodes whose rectangle changed; 0 pushes nothing
};
/// Computes new rectangles for every node and applies the changed ones as
/// one CompositeCommand of ResizeNodeCommands (nothing is pushed when no
/// rectangle changes); edges keep their anchors.
LayoutOutcome layoutLayered(DocumentHandle);
LayoutOutcome layoutOrganic(DocumentHandle);
LayoutOutcome layoutDocument(DocumentHandle, LayoutAlgorithm algorithm);

// ---- history ----
void undo(DocumentHandle);
void redo(DocumentHandle);
bool canUndo(DocumentHandle);
bool canRedo(DocumentHandle);

// ---- queries ----
std::optional<core::Node> nodeAt(DocumentHandle, int index);
std::optional<core::Node> findNode(DocumentHandle, std::string_view nodeId);
std::optional<core::Edge> findEdge(DocumentHandle, std::string_view edgeId);

}  // namespace modelyne::bridge
