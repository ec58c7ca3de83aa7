#pragma once
/// The diagram frame line inside a diagram XML text:
///   <DiagramFrame kind="bdd" elementType="block" elementName="Car" name="" show="true"/>
///
///   core::DiagramFrame f;                 // defaults: pkg, "package", "Model", "", shown
///   io::parseDiagramFrame(xml, f);        // reads the first <DiagramFrame> tag, if any
///   io::insertDiagramFrame(xml, f);       // replaces the line before "</diagram>"

#include <string>
#include <string_view>

#include "core/diagram_kind.h"

namespace modelyne::io {

/// The frame line with two leading spaces and a closing line feed.
std::string diagramFrameLine(const core::DiagramFrame& frame);

/// Reads the first "<DiagramFrame" tag of `xml` into `frame`: a non-empty
/// known "kind" replaces the kind; non-empty "elementType" and "elementName"
/// replace theirs; "name" always replaces (absent: ""); "show" present:
/// "false" or "0" hides, anything else non-empty shows. Returns whether a tag
/// was found.
bool parseDiagramFrame(std::string_view xml, core::DiagramFrame& frame);

/// Removes an existing "<DiagramFrame" line, then inserts the frame line
/// before the last "</diagram>"; a text without "</diagram>" gets nothing.
void insertDiagramFrame(std::string& xml, const core::DiagramFrame& frame);

}  // namespace modelyne::io
