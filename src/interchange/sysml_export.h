#pragma once
/// Diagrams to SysML v2 text: a deterministic pretty-printer. Elements are
/// nested by their qualified names (an element drawn in several diagrams is
/// written once); each model without them becomes a package of its own.
/// Node types give the keywords, properties the typing, multiplicity,
/// values and compartment lines, edges the relationships (`connect a to b;`,
/// `bind x = y;`, `flow of T from a to b;`, `first a then b;`,
/// `transition first s then t;`, `satisfy R by x;`, ...). Names that are not
/// plain identifiers are quoted. What text cannot hold (positions, colours,
/// edges with no textual form) is listed in the report.
///
///   SysmlExport out = exportSysml(project, "model.sysml");
///   write(out.text);  for (auto& l : out.report.losses) ...;
///
/// The same project always gives the same bytes, and the text read back
/// gives the same nodes and edges.

#include <string>
#include <string_view>
#include <vector>

#include "core/project.h"
#include "interchange/report.h"
#include "interchange/sysml_import.h"

namespace modelyne::interchange {

struct SysmlExport {
  std::string text;
  InterchangeReport report;  ///< losses only; file is the target's name
};

/// Writes the models (as read by readSysml, or built by hand).
SysmlExport exportSysml(const std::vector<ImportedModel>& models, std::string_view fileName);

/// Writes every model of a project. A model whose diagram text cannot be
/// read is listed as a loss and left out.
SysmlExport exportSysml(const core::Project& project, std::string_view fileName);

}  // namespace modelyne::interchange
