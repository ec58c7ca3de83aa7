#include "bridge/review.h"

#include <memory>

#include "core/batch_commands.h"
#include "core/commands.h"

namespace modelyne::bridge {
namespace {

constexpr std::string_view kAccept = "ACCEPT";
constexpr std::string_view kDiscard = "DISCARD";
constexpr std::string_view kModify = "MODIFY";

void check(DocumentHandle doc, const ReviewDecision& d) {
  if (d.decision != kAccept && d.decision != kDiscard && d.decision != kModify)
    throw BridgeError(kInvalidArgument, "Unknown review decision '" + d.decision + "'");
  if (d.edge ? doc->findEdge(d.elementId) == nullptr : doc->findNode(d.elementId) == nullptr)
    throw BridgeError(kNotFound, d.edge ? "Edge not found" : "Node not found");
}

}  // namespace

std::string reviewRecord(const core::Document& doc, const ReviewDecision& d) {
  std::string r = "Candidate ";
  if (d.edge) {
    const core::Edge* e = doc.findEdge(d.elementId);
    r += "edge '" + d.elementId + "'";
    if (e) {
      r += " (";
      r += core::edgeKey(e->type);
      r += ") from '" + e->source + "' to '" + e->target + "'";
      if (!e->text.empty()) r += ", label \"" + e->text + "\"";
    }
  } else {
    const core::Node* n = doc.findNode(d.elementId);
    r += "node '" + d.elementId + "'";
    if (n) {
      r += " (";
      r += core::shapeKey(n->type);
      r += ")";
      if (!n->text.empty()) r += ", text \"" + n->text + "\"";
    }
  }
  r += "\r\nRule: ";
  r += kCandidateRule;
  r += "\r\nDecision recorded: " + d.decision;
  if (d.decision == kAccept) r += "\r\n\r\nDecision: Accepted.";
  if (d.decision == kDiscard) r += "\r\n\r\nDecision: Discarded.";
  return r;
}

std::vector<std::string> recordReviewDecisions(DocumentHandle doc, std::span<const ReviewDecision> decisions) {
  if (!doc) throw BridgeError(kInvalidArgument, "Document handle is null");
  for (const ReviewDecision& d : decisions) check(doc, d);
  std::vector<std::string> records;
  auto step = std::make_unique<core::CompositeCommand>();
  std::vector<std::string> dropNodes;
  std::vector<std::string> dropEdges;
  for (const ReviewDecision& d : decisions) {
    records.push_back(reviewRecord(*doc, d));
    if (d.decision == kDiscard) {
      (d.edge ? dropEdges : dropNodes).push_back(d.elementId);
    } else if (!d.edge) {
      step->add(std::make_unique<core::SetNodePropertyCommand>(d.elementId, std::string(kReviewDecisionKey), d.decision));
      if (d.decision == kAccept)
        step->add(std::make_unique<core::SetNodePropertyCommand>(d.elementId, std::string(kReviewRecordKey), records.back()));
    }
  }
  // Removals last, so the records above are taken from the elements as they were.
  if (!dropNodes.empty() || !dropEdges.empty())
    step->add(std::make_unique<core::DeleteElementsCommand>(std::move(dropNodes), std::move(dropEdges)));
  if (!step->empty()) doc->history().pushAndExecute(std::move(step), *doc);
  return records;
}

}  // namespace modelyne::bridge
