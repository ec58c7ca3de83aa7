#pragma once
/// The rule groups of the checker, one per diagram kind, and the two steps
/// that run on every kind (allocations, stereotypes). Each appends its
/// findings in document order, nodes before edges. Edges with an end that
/// names no node were reported by the dangling-edge step: rules that judge
/// an edge by its ends pass over them, while a node's degree still counts
/// every edge that touches it.

#include "check/diagram_index.h"
#include "check/findings.h"

namespace modelyne::check {

using RuleGroup = void (*)(const DiagramIndex&, Findings&);

void checkBlockDefinition(const DiagramIndex& diagram, Findings& findings);
void checkInternalBlock(const DiagramIndex& diagram, Findings& findings);
void checkPackage(const DiagramIndex& diagram, Findings& findings);
void checkParametric(const DiagramIndex& diagram, Findings& findings);
void checkActivity(const DiagramIndex& diagram, Findings& findings);
/// May throw std::invalid_argument / std::out_of_range from "numOperands".
void checkSequence(const DiagramIndex& diagram, Findings& findings);
void checkStateMachine(const DiagramIndex& diagram, Findings& findings);
void checkUseCase(const DiagramIndex& diagram, Findings& findings);
void checkRequirement(const DiagramIndex& diagram, Findings& findings);
void checkMindMap(const DiagramIndex& diagram, Findings& findings);

void checkAllocations(const DiagramIndex& diagram, Findings& findings);
void checkStereotypes(const DiagramIndex& diagram, Findings& findings);

}  // namespace modelyne::check
