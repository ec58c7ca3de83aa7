#pragma once
/// SysML v2 text to diagrams. One file becomes several models, one per
/// owner and diagram kind: a package's definitions and usages a "bdd" (its
/// requirements a "req", its use cases a "uc"), an element whose body holds
/// connections, successions, transitions or messages a diagram of its own
/// ("ibd", "act", "stm", "par", "sd"), and the packages with their nesting
/// and imports a "pkg". Every statement is accounted for in the report as a
/// node, an edge, a property (a compartment line, the documentation, an
/// expression kept as text) or a loss with its reason.
///
///   SysmlImport im = importSysml(text, "vehicle.sysml");
///   if (im.status == ImportStatus::unreadable) ...;      // nothing read
///   save(im.project);                                     // positions placed
///   std::cerr << summaryLine(im.report) << lossLines(im.report);
///
/// Deterministic: the same text gives the same models, ids and positions.

#include <string>
#include <string_view>
#include <vector>

#include "core/diagram_kind.h"
#include "core/model.h"
#include "core/project.h"
#include "interchange/report.h"

namespace modelyne::interchange {

/// One model as read, before it is written as diagram XML.
struct ImportedModel {
  std::string id;
  std::string name;
  core::DiagramFrame frame;  ///< kind; elementName is the owner's qualified name
  std::vector<core::Node> nodes;
  std::vector<core::Edge> edges;
};

enum class ImportStatus {
  ok,          ///< read without syntax errors
  partial,     ///< some statements were skipped for syntax errors
  unreadable,  ///< nothing could be read
};

struct SysmlContent {
  std::vector<ImportedModel> models;  ///< geometry not yet placed
  InterchangeReport report;
  ImportStatus status = ImportStatus::ok;
};

/// Reads the text into models and the report (no positions yet).
SysmlContent readSysml(std::string text, std::string_view fileName);

struct SysmlImport {
  core::Project project;  ///< at least one model unless unreadable
  InterchangeReport report;
  ImportStatus status = ImportStatus::ok;
};

/// readSysml, then positions, then every model written as diagram XML.
SysmlImport importSysml(std::string text, std::string_view fileName);

/// Places the nodes of models read without positions.
void placeImportedModel(ImportedModel& model);

/// The project of the given models (diagram XML with frame line each).
core::Project projectOf(const std::vector<ImportedModel>& models, std::string_view name);

}  // namespace modelyne::interchange
