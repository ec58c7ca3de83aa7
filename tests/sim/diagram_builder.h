#pragma once
// Short-hand for building diagrams in tests, and the stopping-distance
// sample (samples/par-stopping-distance.xml) built in code.

#include <map>
#include <string>
#include <vector>

#include "core/model.h"

namespace modelyne::test {

struct Diagram {
  std::vector<core::Node> nodes;
  std::vector<core::Edge> edges;

  Diagram& node(std::string id, core::ShapeType type, float x, float y, float w, float h, std::string text,
                std::map<std::string, std::string> properties = {}) {
    core::Node n;
    n.id = std::move(id);
    n.type = type;
    n.geom = {x, y, w, h};
    n.text = std::move(text);
    n.properties = std::move(properties);
    nodes.push_back(std::move(n));
    return *this;
  }
  Diagram& value(std::string id, std::string text, std::map<std::string, std::string> properties = {}) {
    // Value properties stand apart, far from any constraint.
    const float y = 1000.0f + 60.0f * static_cast<float>(nodes.size());
    return node(std::move(id), core::ShapeType::sysmlValueProperty, -1000, y, 100, 40, std::move(text),
                std::move(properties));
  }
  Diagram& edge(std::string id, std::string source, std::string target, core::EdgeType type) {
    core::Edge e;
    e.id = std::move(id);
    e.source = std::move(source);
    e.target = std::move(target);
    e.type = type;
    edges.push_back(std::move(e));
    return *this;
  }
  Diagram& bind(std::string source, std::string target) {
    return edge("b" + std::to_string(edges.size() + 1), std::move(source), std::move(target),
                core::EdgeType::sysmlBindingConnector);
  }
};

/// The same nodes, geometry and edges as samples/par-stopping-distance.xml.
inline Diagram stoppingDistanceDiagram() {
  using core::ShapeType;
  const auto property = ShapeType::sysmlConstraintProperty;
  const auto parameter = ShapeType::sysmlConstraintParameter;
  const auto value = ShapeType::sysmlValueProperty;
  Diagram d;
  d.node("c_total", property, 1100, 120, 200, 80, "total : Sum", {{"equation", "s = d1 + d2"}})
      .node("c_total_d1", parameter, 1090, 130, 20, 20, "d1")
      .node("c_total_d2", parameter, 1090, 170, 20, 20, "d2")
      .node("c_total_s", parameter, 1290, 150, 20, 20, "s")
      .node("c_brake", property, 700, 200, 200, 80, "braking : BrakingDistance", {{"equation", "d = v^2 / (2 * a)"}})
      .node("c_brake_v", parameter, 690, 210, 20, 20, "v")
      .node("c_brake_a", parameter, 690, 250, 20, 20, "a")
      .node("c_brake_d", parameter, 890, 230, 20, 20, "d")
      .node("c_react", property, 700, 40, 200, 80, "reaction : ReactionDistance", {{"equation", "d = v * t"}})
      .node("c_react_v", parameter, 690, 60, 20, 20, "v")
      .node("c_react_t", parameter, 690, 100, 20, 20, "t")
      .node("c_react_d", parameter, 890, 70, 20, 20, "d")
      .node("c_decel", property, 300, 200, 200, 80, "deceleration : Deceleration", {{"equation", "a = mu * g"}})
      .node("c_decel_mu", parameter, 290, 210, 20, 20, "mu")
      .node("c_decel_g", parameter, 290, 250, 20, 20, "g")
      .node("c_decel_a", parameter, 490, 230, 20, 20, "a")
      .node("c_conv", property, 300, 40, 200, 80, "toMetresPerSecond : SpeedConversion", {{"equation", "v = kmh / 3.6"}})
      .node("c_conv_kmh", parameter, 290, 70, 20, 20, "kmh")
      .node("c_conv_v", parameter, 490, 70, 20, 20, "v")
      .node("vp_speed", value, 60, 60, 160, 40, "speed : km/h", {{"value", "100"}})
      .node("vp_friction", value, 60, 200, 160, 40, "friction : Real", {{"default", "0.7"}})
      .node("vp_gravity", value, 60, 260, 160, 40, "gravity : m/s\xC2\xB2 = 9.81")
      .node("vp_reactionTime", value, 530, 130, 140, 40, "reactionTime : s = 1.2")
      .node("vp_v", value, 530, 40, 140, 40, "v : m/s")
      .node("vp_decel", value, 530, 230, 140, 40, "decel : m/s\xC2\xB2")
      .node("vp_reactionDist", value, 930, 40, 140, 40, "reactionDistance : m")
      .node("vp_brakingDist", value, 930, 240, 140, 40, "brakingDistance : m")
      .node("vp_stoppingDist", value, 1340, 140, 160, 40, "stoppingDistance : m");
  const char* bindings[][2] = {
      {"c_conv_kmh", "vp_speed"},        {"c_conv_v", "vp_v"},           {"c_decel_mu", "vp_friction"},
      {"c_decel_g", "vp_gravity"},       {"c_decel_a", "vp_decel"},      {"c_react_v", "vp_v"},
      {"c_react_t", "vp_reactionTime"},  {"c_react_d", "vp_reactionDist"}, {"c_brake_v", "vp_v"},
      {"c_brake_a", "vp_decel"},         {"c_brake_d", "vp_brakingDist"}, {"c_total_d1", "vp_reactionDist"},
      {"c_total_d2", "vp_brakingDist"},  {"c_total_s", "vp_stoppingDist"}};
  for (const auto& b : bindings) d.bind(b[0], b[1]);
  return d;
}

}  // namespace modelyne::test
