#pragma once
// Small builders for the explainer tests: nodes and edges with only the fields
// that matter to an explanation.
#include <string>
#include <vector>

#include "core/model.h"
#include "explain/explain.h"

namespace modelyne::explain::testing {

struct Diagram {
  std::vector<core::Node> nodes;
  std::vector<core::Edge> edges;

  core::Node& node(std::string id, core::ShapeType type, std::string text = {}, float x = 0,
                   float y = 0, float w = 100, float h = 40) {
    core::Node n;
    n.id = std::move(id);
    n.type = type;
    n.text = std::move(text);
    n.geom = {x, y, w, h};
    nodes.push_back(std::move(n));
    return nodes.back();
  }

  core::Edge& edge(std::string source, std::string target, core::EdgeType type,
                   std::string text = {}) {
    core::Edge e;
    e.id = "e" + std::to_string(edges.size() + 1);
    e.source = std::move(source);
    e.target = std::move(target);
    e.type = type;
    e.text = std::move(text);
    edges.push_back(std::move(e));
    return edges.back();
  }

  Explanation explain() const { return explainDiagram(nodes, edges); }

  // The body of the section with this heading, or "<missing>".
  std::string section(const std::string& heading) const {
    for (const auto& s : explain().sections)
      if (s.heading == heading) return s.body;
    return "<missing>";
  }
};

}  // namespace modelyne::explain::testing
