#include "check_diagrams.h"

#include <algorithm>
#include <random>
#include <string>

#include "check/allowed_types.h"

namespace modelyne::bench {

namespace {

using S = core::ShapeType;
using E = core::EdgeType;

void addProperties(core::Node& n, std::size_t i, std::size_t count) {
  auto& p = n.properties;
  p["documentation"] = "synthetic element";
  switch (n.type) {
    case S::sysmlRequirementDef:
    case S::sysmlRequirementUsage:
      p["reqId"] = "REQ-" + std::to_string(i % (count / 3 + 1));
      if (i % 7) p["requirementText"] = "The system shall do thing " + std::to_string(i) + ".";
      break;
    case S::umlCombinedFragment: {
      static const char* const kOps[] = {"loop", "alt", "par", "ref", "critical", "opt", "seq"};
      p["operator"] = kOps[i % 7];
      if (i % 3) p["guard"] = "x > " + std::to_string(i);
      p["numOperands"] = std::to_string(1 + i % 3);
      break;
    }
    case S::umlPackage:
      if (i % 4 == 0) p["stereotype"] = "view";
      if (i % 4 == 1) p["stereotype"] = "viewpoint";
      if (i % 8 == 1) p["concerns"] = "safety";
      break;
    case S::umlClass:
      p["stereotype"] = i % 5 == 0 ? "stereotype" : "block";
      break;
    case S::sysmlFlowSpecification:
      p["operations"] = "op()";
      break;
    case S::sysmlReferenceProperty:
      if (i % 2) p["parts"] = "w : Wheel";
      break;
    case S::sysmlConstraintProperty:
    case S::sysmlValueProperty:
      if (i % 2) p["type"] = "Real";
      break;
    case S::sysmlSubmachineState:
      if (i % 2) p["submachine"] = "Engine";
      break;
    case S::umlActivation:
      p["ownerLifeline"] = "n" + std::to_string(i > 0 ? i - 1 : 0);
      break;
    default:
      break;
  }
}

std::string transitionLabel(std::size_t j) {
  switch (j % 6) {
    case 0: return "evt [count > 0] / count--";
    case 1: return "[else]";
    case 2: return "tick";
    case 3: return "evt [x > 0";  // malformed
    case 4: return "";
    default: return "go / ";      // malformed
  }
}

}  // namespace

CheckDiagram checkDiagram(core::DiagramKind kind, std::size_t count) {
  CheckDiagram d;
  const auto shapes = check::allowedShapes(kind);
  const auto specific = check::allowedSpecificEdges(kind);
  std::mt19937_64 rng(7);

  d.nodes.reserve(count);
  for (std::size_t i = 0; i < count; ++i) {
    core::Node n;
    n.id = "n" + std::to_string(i);
    n.type = shapes[i % shapes.size()];
    n.text = "Element " + std::to_string(i % (count / 2 + 1));  // every name twice
    n.geom = {static_cast<float>(i % 100) * 120.0f, static_cast<float>(i / 100) * 80.0f, 100.0f, 60.0f};
    addProperties(n, i, count);
    d.nodes.push_back(std::move(n));
  }

  const std::size_t edgeCount = count + count / 2;
  const std::size_t chain = count / 20;
  d.edges.reserve(edgeCount + chain + 1);
  for (std::size_t j = 0; j < edgeCount; ++j) {
    const std::size_t s = rng() % count;
    const std::size_t t = (s + 1 + rng() % 10) % count;
    core::Edge e;
    e.id = "e" + std::to_string(j);
    e.source = "n" + std::to_string(s);
    e.target = j % 97 == 0 ? "missing" + std::to_string(j) : "n" + std::to_string(t);
    // Three of four edges take one of the kind's own types, the rest a generic line.
    e.type = j % 4 != 3 ? specific[j % specific.size()] : static_cast<E>(j % 9);
    if (e.type == E::sysmlTransition) e.text = transitionLabel(j);
    d.edges.push_back(std::move(e));
  }

  // A long allocation chain over every twentieth node, its first 1000 links
  // closed into a cycle.
  for (std::size_t k = 0; k + 1 < chain; ++k) {
    core::Edge e;
    e.id = "alloc" + std::to_string(k);
    e.source = "n" + std::to_string(k * 20);
    e.target = "n" + std::to_string((k + 1) * 20);
    e.type = E::sysmlAllocate;
    d.edges.push_back(std::move(e));
  }
  if (chain > 2) {
    core::Edge back;
    back.id = "allocBack";
    back.source = "n" + std::to_string(std::min<std::size_t>(chain - 1, 1000) * 20);
    back.target = "n0";
    back.type = E::sysmlAllocate;
    d.edges.push_back(std::move(back));
  }
  return d;
}

}  // namespace modelyne::bench
