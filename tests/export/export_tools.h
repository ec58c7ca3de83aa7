#pragma once
// Helpers of the export tests: node and edge builders, a scratch folder, and
// the outside tools that check written files (xmllint, rsvg-convert, qpdf).

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

#include "core/model.h"

namespace modelyne::testing {

inline core::Node makeNode(std::string id, core::ShapeType type, float x, float y, float w, float h,
                           std::string text = {}) {
  core::Node n;
  n.id = std::move(id);
  n.type = type;
  n.geom = {x, y, w, h};
  n.text = std::move(text);
  return n;
}

inline core::Edge makeEdge(std::string id, std::string source, core::Anchor sp, std::string target,
                           core::Anchor tp, core::EdgeType type, std::string text = {}) {
  core::Edge e;
  e.id = std::move(id);
  e.source = std::move(source);
  e.sourcePort = sp;
  e.target = std::move(target);
  e.targetPort = tp;
  e.type = type;
  e.text = std::move(text);
  return e;
}

/// A fresh folder under the build tree for one test.
inline std::filesystem::path scratchDir(const std::string& name) {
  const auto dir = std::filesystem::path(MODELYNE_BINARY_DIR) / "test-output" / name;
  std::filesystem::remove_all(dir);
  std::filesystem::create_directories(dir);
  return dir;
}

/// Runs a shell command quietly; true when it exits with status 0.
inline bool runQuiet(const std::string& command) {
  return std::system((command + " >/dev/null 2>&1").c_str()) == 0;
}

inline bool xmllintAccepts(const std::filesystem::path& file) {
  return runQuiet("xmllint --noout '" + file.string() + "'");
}

inline bool rsvgRenders(const std::filesystem::path& svg) {
  return runQuiet("rsvg-convert -o '" + svg.string() + ".png' '" + svg.string() + "'");
}

inline std::string readAll(const std::filesystem::path& file) {
  std::ifstream in(file, std::ios::binary);
  std::ostringstream s;
  s << in.rdbuf();
  return s.str();
}

}  // namespace modelyne::testing
