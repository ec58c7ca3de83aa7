#pragma once
/// Project and Model: a project holds one or more models, each with one
/// diagram kept as its cached diagram XML text (the open one lives in a
/// Document while it is edited).

#include <cstdint>
#include <string>
#include <vector>

#include "core/diagram_kind.h"

namespace modelyne::core {

struct Model {
  std::string id;
  std::string name;
  std::string diagramXml;  ///< cached diagram XML text; may be empty
  DiagramFrame frame;      ///< read from the diagram text

  friend bool operator==(const Model&, const Model&) = default;
};

struct Project {
  std::string name;
  std::int32_t active = 0;   ///< index of the active model
  std::vector<Model> models;

  friend bool operator==(const Project&, const Project&) = default;
};

/// Message key of the refusal to delete a project's last model.
inline constexpr const char* kMsgDiagMinOne = "ui.msg.diag_min_one";

}  // namespace modelyne::core
