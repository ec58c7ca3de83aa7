#pragma once
/// Model assessment: sorts a diagram's nodes into the five methodology
/// pillars and measures traceability (requirements satisfied by design and
/// verified, behaviours allocated to structure), then renders the figures as
/// a plain-text report. A reader: it never changes the diagram.

#include <cstdint>
#include <span>
#include <string>

#include "core/model.h"

namespace modelyne::check {

/// The figures of one assessment, in report order.
struct AssessmentMetrics {
  std::int32_t nodeCount = 0;
  std::int32_t edgeCount = 0;
  std::int32_t structureCount = 0;
  std::int32_t behaviorCount = 0;
  std::int32_t requirementsPillarCount = 0;
  std::int32_t parametricsCount = 0;
  std::int32_t crossCuttingCount = 0;
  std::int32_t pillarsPresent = 0;         ///< pillar counts above 0, 0..5
  std::int32_t requirementCount = 0;       ///< requirement definitions and usages
  std::int32_t requirementsSatisfied = 0;  ///< distinct requirements at a «satisfy» end
  std::int32_t requirementsVerified = 0;   ///< distinct requirements at a «verify» end
  std::int32_t behaviourCount = 0;         ///< behaviours that can be allocated
  std::int32_t behavioursAllocated = 0;    ///< distinct behaviours «allocate»d to structure

  friend bool operator==(const AssessmentMetrics&, const AssessmentMetrics&) = default;
};

/// Counts pillars and traceability over the nodes and edges. Edges whose
/// ends name no node are skipped; an id used twice keeps its first type.
AssessmentMetrics computeAssessment(std::span<const core::Node> nodes,
                                    std::span<const core::Edge> edges);

/// The report text, twelve lines each ending in a line feed. Percentages are
/// rounded half up; a whole of 0 gives 0%.
std::string formatAssessment(const AssessmentMetrics& metrics);

}  // namespace modelyne::check
