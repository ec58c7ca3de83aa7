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
///   p->diagrams[i].text, p->diagrams[i].line   // model i's diagram and where it starts
///   io::isProjectWrapper(text)   // the text holds "<modelyneProject"
///
/// A project with one model is written as that model's bare diagram XML.

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/document.h"
#include "core/project.h"
#include "io/diagnostic.h"

namespace modelyne::io {

/// One model's diagram inside a model file.
struct DiagramSource {
  std::string_view text;  ///< the diagram XML, a view into the file's text; empty when the model has none
  std::size_t line = 1;   ///< line of the file on which `text` begins
  std::size_t tagLine = 1;  ///< line of the model's <modelyneModel> tag (of the text for a bare diagram)
};

/// A model file split into its models, without copying their diagrams.
struct LoadedProject {
  core::Project project;                ///< models with id, name and frame; their diagramXml stays empty
  std::vector<DiagramSource> diagrams;  ///< one per model, in order
  bool wrapped = false;                 ///< the text is a project wrapper
  std::vector<Diagnostic> warnings;     ///< repeated model ids, an active index out of range
};

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

/// Reads a model file's text in one pass: a project wrapper, or any other
/// text as a bare diagram (a project of one model "model1", named after its
/// frame's name or "Model"). A wrapper fails when "active" is not a number
/// ("invalid stoi argument") or out of range ("stoi argument out of range"),
/// or when it is cut short; a model block without a <diagram>...</diagram>
/// pair gets an empty text. The active index is kept as written; when it
/// names no model, a warning says so. Each model's frame is read from its
/// diagram text over the defaults unless `readFrames` is false (for callers
/// that read the diagrams anyway). Diagnostics name `fileName`.
std::optional<LoadedProject> loadProject(std::string_view text, ReadError* error = nullptr,
                                         std::string_view fileName = {}, bool readFrames = true);

/// The index of the active model, clamped to the models.
std::size_t activeIndex(const core::Project& project);

/// The one model of a bare diagram: id "model1", named after the frame's
/// name or "Model", with that frame.
core::Model modelOfBareDiagram(const core::DiagramFrame& frame);

}  // namespace modelyne::io
