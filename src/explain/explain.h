#pragma once
/// The diagram explainer: a deterministic plain-English explanation of one
/// diagram. `explainDiagram` classifies the diagram from the kinds of its nodes
/// and edges and writes a fixed set of sections; `renderMarkdown` turns the
/// result into Markdown and `markdownToCsv` turns that Markdown into a
/// two-column CSV ("Section,Detail"). Same input, same bytes; no randomness.

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "core/model.h"

namespace modelyne::explain {

/// What a diagram is mainly about, decided by a vote of its nodes and edges.
enum class ExplanationClass { general = 0, structural, behavioral, interaction, requirements };

/// One second-level section: a heading and its body (lines joined by '\n',
/// no trailing line feed).
struct ExplanationSection {
  std::string heading;
  std::string body;
};

/// The whole explanation: its class, title and sections in reading order.
struct Explanation {
  ExplanationClass cls = ExplanationClass::general;
  std::string title;
  std::vector<ExplanationSection> sections;
};

/// Explains the diagram made of `nodes` (in diagram order) and `edges`.
/// Edges whose ends name no node are counted but not followed. Linear in
/// nodes + edges.
Explanation explainDiagram(std::span<const core::Node> nodes, std::span<const core::Edge> edges);

/// "# " + title, then "## " + heading and body for each section.
std::string renderMarkdown(const Explanation& explanation);

/// Reads explanation Markdown back line by line and writes CSV: the header
/// "Section,Detail", then one record per line of content, rows ending in CRLF,
/// fields quoted when they hold a comma, a double quote, CR or LF.
/// Accepts any text; never throws for its content.
std::string markdownToCsv(std::string_view markdown);

/// The class's word in sentences ("behavioral") and its short name ("Behavioral").
std::string_view classWord(ExplanationClass cls) noexcept;
std::string_view classShortName(ExplanationClass cls) noexcept;

}  // namespace modelyne::explain
