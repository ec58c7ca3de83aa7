#include "core/diagram_kind.h"

#include <array>

namespace modelyne::core {

namespace {
constexpr std::array<std::string_view, kDiagramKindCount> kKeys = {
    "bdd", "ibd", "pkg", "par", "act", "sd", "stm", "uc", "req", "test", "mm"};
constexpr std::array<std::string_view, kDiagramKindCount> kNames = {
    "Block Definition Diagram", "Internal Block Diagram", "Package Diagram",
    "Parametric Diagram",       "Activity Diagram",       "Sequence Diagram",
    "State Machine Diagram",    "Use Case Diagram",       "Requirement Diagram",
    "Test Diagram",             "Mind Map Diagram"};
constexpr std::array<DiagramKind, kDiagramKindCount> kAll = {
    DiagramKind::bdd, DiagramKind::ibd, DiagramKind::pkg, DiagramKind::par,
    DiagramKind::act, DiagramKind::sd,  DiagramKind::stm, DiagramKind::uc,
    DiagramKind::req, DiagramKind::test, DiagramKind::mm};

int slot(DiagramKind k) noexcept {
  const auto v = static_cast<int>(k);
  return (v < 0 || v >= kDiagramKindCount) ? static_cast<int>(DiagramKind::pkg) : v;
}
}  // namespace

std::string_view diagramKindKey(DiagramKind k) noexcept { return kKeys[slot(k)]; }

std::optional<DiagramKind> diagramKindFromKey(std::string_view key) noexcept {
  for (int i = 0; i < kDiagramKindCount; ++i)
    if (kKeys[i] == key) return static_cast<DiagramKind>(i);
  return std::nullopt;
}

std::string_view diagramKindDisplayName(DiagramKind k) noexcept { return kNames[slot(k)]; }

std::string diagramKindMessageKey(DiagramKind k) {
  return "ui.diagkind." + std::string(diagramKindKey(k));
}

std::span<const DiagramKind> allDiagramKinds() noexcept { return kAll; }

}  // namespace modelyne::core
