#pragma once
/// Diagram kinds ("bdd" ... "mm") with their keys and display names, and the
/// per-diagram records that travel with a diagram: its frame and its
/// data-integration links.

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace modelyne::core {

enum class DiagramKind : std::int32_t { bdd = 0, ibd, pkg, par, act, sd, stm, uc, req, test, mm };
inline constexpr int kDiagramKindCount = 11;

/// Key of a kind ("bdd"); a value outside 0..10 yields "pkg".
std::string_view diagramKindKey(DiagramKind k) noexcept;
/// Exact key lookup; nothing for any other text.
std::optional<DiagramKind> diagramKindFromKey(std::string_view key) noexcept;
/// "Block Definition Diagram" ...; out of range: "Package Diagram".
std::string_view diagramKindDisplayName(DiagramKind k) noexcept;
/// Message key of the kind's localised name: "ui.diagkind.bdd" ...
std::string diagramKindMessageKey(DiagramKind k);
/// All kinds in enumeration order.
std::span<const DiagramKind> allDiagramKinds() noexcept;

/// The frame drawn around a diagram; one per diagram.
struct DiagramFrame {
  DiagramKind kind = DiagramKind::pkg;
  std::string elementType = "package";
  std::string elementName = "Model";
  std::string name;
  bool show = true;

  friend bool operator==(const DiagramFrame&, const DiagramFrame&) = default;
};

/// A link from a diagram to another model file or project folder.
struct DataIntegrationLink {
  std::string id;
  std::string type;
  std::string path;
  std::string label;

  friend bool operator==(const DataIntegrationLink&, const DataIntegrationLink&) = default;
};

}  // namespace modelyne::core
