#pragma once
// A small diagram a test draws node by node, edge by edge, with the
// document's primitives, and the findings the checker gives for it.

#include <map>
#include <string>
#include <vector>

#include "check/validate.h"
#include "core/document.h"

namespace modelyne::check::testing {

class Drawing {
 public:
  Drawing& node(std::string id, core::ShapeType type, std::string text = {},
                std::map<std::string, std::string> properties = {}) {
    core::Node n;
    n.id = std::move(id);
    n.type = type;
    n.text = std::move(text);
    n.properties = std::move(properties);
    doc_.addNode(std::move(n));
    return *this;
  }

  Drawing& edge(std::string id, std::string source, std::string target, core::EdgeType type,
                std::string text = {}) {
    core::Edge e;
    e.id = std::move(id);
    e.source = std::move(source);
    e.target = std::move(target);
    e.type = type;
    e.text = std::move(text);
    doc_.addEdge(std::move(e));
    return *this;
  }

  /// Every finding of the diagram as the given kind, in order.
  std::vector<std::string> check(core::DiagramKind kind) const {
    std::vector<std::string> findings;
    const unsigned count = validateDiagram(doc_, kind, findings);
    if (count != findings.size()) findings.push_back("<count mismatch>");
    return findings;
  }

  const core::Document& doc() const { return doc_; }

 private:
  core::Document doc_;
};

using Findings = std::vector<std::string>;

}  // namespace modelyne::check::testing
