// Loads arbitrary bytes as diagram XML into a document that already holds
// content. A refused text must leave that content as it was; an accepted one
// must save to text that loads again and saves to the same bytes, and its
// frame and links must be those the substring-search block readers find.
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "bridge/bridge.h"
#include "io/data_integration.h"
#include "io/frame_block.h"

using namespace modelyne;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  core::Document* doc = bridge::createDocument();
  bridge::addNode(doc, core::ShapeType::umlClass, 1, 2, 3, 4, "before", "keep");
  const std::string before = bridge::saveDiagramXml(doc);
  try {
    bridge::loadDiagramXml(doc, text);
  } catch (const bridge::BridgeError& e) {
    if (e.code() != bridge::kParseFailure || bridge::saveDiagramXml(doc) != before || !bridge::canUndo(doc))
      __builtin_trap();
    bridge::destroyDocument(doc);
    return 0;
  }
  core::DiagramFrame frame;
  io::parseDiagramFrame(text, frame);
  if (!(doc->frame() == frame) || doc->links() != io::parseDataIntegration(text)) __builtin_trap();
  const std::string saved = bridge::saveDiagramXml(doc);
  core::Document* again = bridge::createDocument();
  bridge::loadDiagramXml(again, saved);  // throws (and the fuzzer reports it) if our own output is unreadable
  if (bridge::saveDiagramXml(again) != saved) __builtin_trap();
  bridge::destroyDocument(again);
  bridge::destroyDocument(doc);
  return 0;
}
