#pragma once
/// Review of generated content: the decisions a user takes on candidate
/// nodes and edges (proposed under the rule identifier "__ml_candidate__")
/// are recorded through here, all decisions of one call as one undo step.
///
///   ACCEPT  keeps the element; a node gets its review record, ending
///           "\r\n\r\nDecision: Accepted.", in "__reviewRecord__"
///   MODIFY  keeps the element for editing; a node is marked "MODIFY" in
///           "__reviewDecision__" and stays a candidate
///   DISCARD removes the element (a node with its edges); the record, ending
///           "\r\n\r\nDecision: Discarded.", is returned to the caller
///
/// Unknown decision words throw BridgeError code 1; unknown ids code 4,
/// before anything changes.

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "bridge/bridge.h"

namespace modelyne::bridge {

/// Rule identifier that generated candidates carry until decided.
inline constexpr std::string_view kCandidateRule = "__ml_candidate__";
/// Node properties written by a decision.
inline constexpr std::string_view kReviewRecordKey = "__reviewRecord__";
inline constexpr std::string_view kReviewDecisionKey = "__reviewDecision__";

struct ReviewDecision {
  std::string elementId;
  bool edge = false;
  std::string decision;  ///< "ACCEPT", "DISCARD" or "MODIFY"
};

/// The record of one decision: what was proposed, by which rule, and the
/// final line for ACCEPT and DISCARD.
std::string reviewRecord(const core::Document& doc, const ReviewDecision& d);

/// Applies the decisions as one undo step (none when the list is empty) and
/// returns their records in the same order.
std::vector<std::string> recordReviewDecisions(DocumentHandle doc, std::span<const ReviewDecision> decisions);

}  // namespace modelyne::bridge
