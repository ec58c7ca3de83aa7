#pragma once
// Helpers of the interchange tests: statements counted on the syntax tree
// (independently of the mapper's own accounting) and a project's nodes and
// edges as sorted text lines, to compare two imports.

#include <algorithm>
#include <string>
#include <vector>

#include "interchange/sysml_import.h"
#include "interchange/sysml_syntax.h"

namespace modelyne::interchange::support {

inline std::size_t countStatements(const std::vector<Statement>& body) {
  std::size_t n = 0;
  for (const Statement& s : body) n += 1 + countStatements(s.body);
  return n;
}

inline std::string nodeLine(const core::Node& n) {
  std::string s = std::string(core::shapeKey(n.type)) + " '" + n.text + "'";
  for (const auto& [k, v] : n.properties) s += " " + k + "=" + v;
  return s;
}

/// One line per node and edge, with the model's kind and owner, sorted.
inline std::vector<std::string> signature(const std::vector<ImportedModel>& models) {
  std::vector<std::string> out;
  for (const ImportedModel& m : models) {
    const std::string where = std::string(core::diagramKindKey(m.frame.kind)) + " [" + m.frame.elementName + "] ";
    for (const core::Node& n : m.nodes) out.push_back(where + "node " + nodeLine(n));
    for (const core::Edge& e : m.edges) {
      const core::Node* a = nullptr;
      const core::Node* b = nullptr;
      for (const core::Node& n : m.nodes) {
        if (n.id == e.source) a = &n;
        if (n.id == e.target) b = &n;
      }
      out.push_back(where + "edge " + std::string(core::edgeKey(e.type)) + " '" + e.text + "' " +
                    (a ? nodeLine(*a) : "?") + " -> " + (b ? nodeLine(*b) : "?"));
    }
  }
  std::sort(out.begin(), out.end());
  return out;
}

}  // namespace modelyne::interchange::support
