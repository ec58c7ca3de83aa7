#include "shell/clipboard_codec.h"

#include <memory>
#include <unordered_set>

#include "bridge/bridge.h"

namespace modelyne::shell {
namespace {

struct ScratchDocument {
  bridge::DocumentHandle doc = bridge::createDocument();
  ~ScratchDocument() { bridge::destroyDocument(doc); }
};

}  // namespace

std::string encodeSelection(const core::Document& doc, const std::vector<std::string>& nodeIds) {
  std::unordered_set<std::string> chosen(nodeIds.begin(), nodeIds.end());
  std::vector<core::Node> nodes;
  for (const std::string& id : nodeIds)
    if (const core::Node* n = doc.findNode(id)) nodes.push_back(*n);
  std::vector<core::Edge> edges;
  for (const core::Edge& e : doc.edges())
    if (chosen.count(e.source) && chosen.count(e.target)) edges.push_back(e);
  ScratchDocument scratch;
  bridge::insertElements(scratch.doc, std::move(nodes), std::move(edges));
  return bridge::saveDiagramXml(scratch.doc);
}

std::pair<std::vector<core::Node>, std::vector<core::Edge>> decodeSelection(const std::string& xml, float dx,
                                                                          float dy) {
  ScratchDocument scratch;
  bridge::loadDiagramXml(scratch.doc, xml);
  std::vector<core::Node> nodes = scratch.doc->nodes();
  for (core::Node& n : nodes) {
    n.geom.x += dx;
    n.geom.y += dy;
  }
  return {std::move(nodes), scratch.doc->edges()};
}

}  // namespace modelyne::shell
