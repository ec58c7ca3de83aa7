// Classification, the sections every explanation has, and Markdown rendering.
#include "explain/explain.h"

#include <array>

#include "explain/explain_detail.h"

namespace modelyne::explain {

namespace {

using detail::DiagramView;

// One vote per node and per edge; ties go to the class scanned first.
ExplanationClass classify(const DiagramView& view) {
  std::array<std::size_t, 5> votes{};
  for (const auto& t : view.nodeTraits) ++votes[static_cast<std::size_t>(t.cls)];
  for (const auto* t : view.edgeTraits) ++votes[static_cast<std::size_t>(t->cls)];
  constexpr ExplanationClass kScanOrder[] = {
      ExplanationClass::behavioral, ExplanationClass::structural, ExplanationClass::interaction,
      ExplanationClass::requirements};
  ExplanationClass best = ExplanationClass::general;
  std::size_t bestCount = 0;
  for (const ExplanationClass c : kScanOrder) {
    if (votes[static_cast<std::size_t>(c)] > bestCount) {
      best = c;
      bestCount = votes[static_cast<std::size_t>(c)];
    }
  }
  return bestCount < 1 ? ExplanationClass::general : best;
}

std::string overviewBody(const DiagramView& view, ExplanationClass cls) {
  std::string out = "This is a ";
  out += classWord(cls);
  out += " diagram containing ";
  out += detail::countPhrase(view.nodes.size(), "node");
  out += " and ";
  out += detail::countPhrase(view.edges.size(), "edge");
  out += '.';
  return out;
}

std::string connectivityBody(const DiagramView& view) {
  constexpr std::size_t kKeyElements = 8;
  std::string out;
  std::size_t named = 0;
  for (const core::Node& n : view.nodes) {
    if (n.text.empty()) continue;
    out += named == 0 ? "Key elements: " : ", ";
    out += detail::oneLine(n.text);
    if (++named == kKeyElements) break;
  }
  if (named > 0) out += ".\n";

  std::size_t isolated = 0;
  std::size_t best = 0;
  std::size_t bestDegree = 0;
  for (std::size_t i = 0; i < view.nodes.size(); ++i) {
    if (view.degree[i] == 0) ++isolated;
    if (view.degree[i] > bestDegree) {
      best = i;
      bestDegree = view.degree[i];
    }
  }
  out += "Isolated nodes: ";
  out += std::to_string(isolated);
  out += '.';
  if (bestDegree > 0) {
    out += "\nMost connected element: ";
    out += view.name(best);
    out += " (";
    out += std::to_string(bestDegree);
    out += " incident edges).";
  }
  return out;
}

std::string classBody(const DiagramView& view, ExplanationClass cls) {
  switch (cls) {
    case ExplanationClass::structural: return detail::structuralBody(view);
    case ExplanationClass::behavioral: return detail::behavioralBody(view);
    case ExplanationClass::interaction: return detail::interactionBody(view);
    case ExplanationClass::requirements: return detail::requirementsBody(view);
    case ExplanationClass::general: break;
  }
  return {};
}

}  // namespace

std::string_view classWord(ExplanationClass cls) noexcept {
  return detail::classTexts(cls).word;
}

std::string_view classShortName(ExplanationClass cls) noexcept {
  return detail::classTexts(cls).shortName;
}

Explanation explainDiagram(std::span<const core::Node> nodes, std::span<const core::Edge> edges) {
  const DiagramView view(nodes, edges);
  Explanation out;
  out.cls = classify(view);
  const detail::ClassTexts& texts = detail::classTexts(out.cls);
  out.title = std::string(texts.title);
  out.sections.push_back({"Overview", overviewBody(view, out.cls)});
  if (out.cls != ExplanationClass::general)
    out.sections.push_back({std::string(texts.sectionHeading), classBody(view, out.cls)});
  out.sections.push_back({"Connectivity", connectivityBody(view)});
  out.sections.push_back({"Purpose & Intent", std::string(texts.purpose)});
  return out;
}

std::string renderMarkdown(const Explanation& explanation) {
  std::string out = "# ";
  out += explanation.title;
  out += '\n';
  for (const ExplanationSection& s : explanation.sections) {
    out += "\n## ";
    out += s.heading;
    out += "\n\n";
    out += s.body;
    out += '\n';
  }
  return out;
}

}  // namespace modelyne::explain
