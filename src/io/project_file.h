#pragma once
/// The project wrapper: a model file holding several models, each embedding
/// one diagram XML text verbatim.
///
///   <modelyneProject version="1" name="Drone" active="1">
///   <modelyneModel id="m1" name="Structure">
///   <?xml ...?><diagram ...>...</diagram>
///   </modelyneModel>
///   ...
///   </modelyneProject>
///
///   std::string text = io::serializeProject(project, doc);
///   io::ReadError err; auto p = io::loadProject(text, &err);
///   io::isProjectWrapper(text)   // the text holds "<modelyneProject"
///
/// A project with one model is written as that model's bare diagram XML.

#include <optional>
#include <string>
#include <string_view>

#include "core/document.h"
#include "core/project.h"
#include "io/read_error.h"

namespace modelyne::io {

/// Whether the text is a project wrapper (holds "<modelyneProject").
bool isProjectWrapper(std::string_view text);

/// What Save writes. With one model or none: that model's cached diagram XML
/// when non-empty, else serializeDocument(`open`). With two or more: the
/// wrapper around every model's cached text (an empty one as
/// "<diagram></diagram>"); a negative active index is written as 0.
std::string serializeProject(const core::Project& project, const core::Document& open);

/// The wrapper form for any number of models (what serializeProject writes
/// for two or more).
std::string serializeProjectWrapper(const core::Project& project);

/// Reads a project wrapper. Fails only when "active" is not a number
/// ("invalid stoi argument") or out of range ("stoi argument out of range").
/// Each model's frame is read from its diagram text over the defaults; a
/// model block without a <diagram>...</diagram> pair gets an empty text.
std::optional<core::Project> loadProject(std::string_view text, ReadError* error = nullptr);

/// A one-model project around a bare diagram text (model id "model1", name
/// from the frame's name or "Model").
core::Project projectFromDiagram(std::string_view diagramXml);

}  // namespace modelyne::io
