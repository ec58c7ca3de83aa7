#include "export/node_outlines.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <string>
#include <vector>

#include "export/palette.h"

namespace modelyne::exporter {

namespace {

using core::ShapeType;

// ---- Outline styles and the table that assigns them ----

enum class Outline : std::uint8_t {
  box,             // rectangle rx 4, centred label
  block,           // rectangle rx 4 with compartments
  textOnly,
  ellipse,
  rounded,         // rectangle rx 8
  triangle,
  package,
  dot,             // solid disc: initial node, junction
  finalNode,
  diamond,
  bar,             // fork / join
  circle,          // ellipse with a small label: events, history
  endEvent,
  actor,
  lifeline,
  activation,
  fragment,
  note,
  dashedGroup,
  container,       // pool, lane, partition: header band with the name
  subject,         // system boundary: name at the top, no band
  topic,           // mind-map topic: rectangle rx 8, default caption
  pin,             // small square, label under the box
  sendSignal,
  acceptEvent,
  flowFinal,
  terminate,
  hourglass,
  port,
  contextFrame,
};

struct ShapeStyle {
  ShapeType type;
  Outline outline;
  float labelSize;
  std::string_view defaultCaption;  // shown when the node's text is empty
};

constexpr float kLabel = 12.0f;
constexpr float kSmall = 9.0f;

constexpr ShapeStyle kShapeStyles[] = {
    {ShapeType::text, Outline::textOnly, kLabel, {}},
    {ShapeType::oval, Outline::ellipse, kLabel, {}},
    {ShapeType::umlUseCase, Outline::ellipse, kLabel, {}},
    {ShapeType::sysmlUseCaseDef, Outline::ellipse, kLabel, {}},
    {ShapeType::sysmlUseCaseUsage, Outline::ellipse, kLabel, {}},
    {ShapeType::rounded, Outline::rounded, kLabel, {}},
    {ShapeType::umlAction, Outline::rounded, kLabel, {}},
    {ShapeType::umlState, Outline::rounded, kLabel, {}},
    {ShapeType::bpmnTask, Outline::rounded, kLabel, {}},
    {ShapeType::bpmnUserTask, Outline::rounded, kLabel, {}},
    {ShapeType::bpmnServiceTask, Outline::rounded, kLabel, {}},
    {ShapeType::bpmnScriptTask, Outline::rounded, kLabel, {}},
    {ShapeType::bpmnSendTask, Outline::rounded, kLabel, {}},
    {ShapeType::bpmnReceiveTask, Outline::rounded, kLabel, {}},
    {ShapeType::bpmnSubProcess, Outline::rounded, kLabel, {}},
    {ShapeType::bpmnCallActivity, Outline::rounded, kLabel, {}},
    {ShapeType::sysmlActionDef, Outline::rounded, kLabel, {}},
    {ShapeType::sysmlActionUsage, Outline::rounded, kLabel, {}},
    {ShapeType::sysmlStateDef, Outline::rounded, kLabel, {}},
    {ShapeType::sysmlStateUsage, Outline::rounded, kLabel, {}},
    {ShapeType::sysmlCompositeState, Outline::rounded, kLabel, {}},
    {ShapeType::sysmlConstraintProperty, Outline::rounded, kLabel, {}},
    {ShapeType::sysmlSubmachineState, Outline::rounded, kLabel, {}},
    {ShapeType::triangle, Outline::triangle, kLabel, {}},
    {ShapeType::umlPackage, Outline::package, kLabel, {}},
    {ShapeType::umlInitialNode, Outline::dot, kLabel, {}},
    {ShapeType::sysmlJunctionPseudostate, Outline::dot, kLabel, {}},
    {ShapeType::umlFinalNode, Outline::finalNode, kLabel, {}},
    {ShapeType::umlDecision, Outline::diamond, kSmall, {}},
    {ShapeType::bpmnExclusiveGateway, Outline::diamond, kSmall, {}},
    {ShapeType::bpmnParallelGateway, Outline::diamond, kSmall, {}},
    {ShapeType::bpmnInclusiveGateway, Outline::diamond, kSmall, {}},
    {ShapeType::bpmnEventBasedGateway, Outline::diamond, kSmall, {}},
    {ShapeType::sysmlChoicePseudostate, Outline::diamond, kSmall, {}},
    {ShapeType::umlForkJoin, Outline::bar, kLabel, {}},
    {ShapeType::sysmlForkPseudostate, Outline::bar, kLabel, {}},
    {ShapeType::sysmlJoinPseudostate, Outline::bar, kLabel, {}},
    {ShapeType::sysmlShallowHistoryPseudostate, Outline::circle, kSmall, "H"},
    {ShapeType::sysmlDeepHistoryPseudostate, Outline::circle, kSmall, "H*"},
    {ShapeType::umlActor, Outline::actor, kLabel, {}},
    {ShapeType::sysmlActor, Outline::actor, kLabel, {}},
    {ShapeType::umlLifeline, Outline::lifeline, kLabel, {}},
    {ShapeType::umlActivation, Outline::activation, kLabel, {}},
    {ShapeType::umlCombinedFragment, Outline::fragment, kSmall, {}},
    {ShapeType::umlNote, Outline::note, kLabel, {}},
    {ShapeType::bpmnAnnotation, Outline::note, kLabel, {}},
    {ShapeType::umlBoundary, Outline::dashedGroup, kLabel, {}},
    {ShapeType::bpmnGroup, Outline::dashedGroup, kLabel, {}},
    {ShapeType::mindmapBoundary, Outline::dashedGroup, kLabel, {}},
    {ShapeType::sysmlOrthogonalRegion, Outline::dashedGroup, kLabel, {}},
    {ShapeType::bpmnStartEvent, Outline::circle, kSmall, {}},
    {ShapeType::bpmnIntermediateThrow, Outline::circle, kSmall, {}},
    {ShapeType::bpmnIntermediateCatch, Outline::circle, kSmall, {}},
    {ShapeType::bpmnTimerEvent, Outline::circle, kSmall, {}},
    {ShapeType::bpmnMessageEvent, Outline::circle, kSmall, {}},
    {ShapeType::bpmnErrorEvent, Outline::circle, kSmall, {}},
    {ShapeType::bpmnSignalEvent, Outline::circle, kSmall, {}},
    {ShapeType::bpmnEndEvent, Outline::endEvent, kSmall, {}},
    {ShapeType::bpmnPool, Outline::container, kLabel, {}},
    {ShapeType::bpmnLane, Outline::container, kLabel, {}},
    {ShapeType::sysmlActivityPartition, Outline::container, kLabel, {}},
    {ShapeType::sysmlSystemBoundary, Outline::subject, kLabel, {}},
    {ShapeType::mindmapCentral, Outline::topic, kSmall, "Central Idea"},
    {ShapeType::mindmapMainTopic, Outline::topic, kSmall, "Main Topic"},
    {ShapeType::mindmapSubTopic, Outline::topic, kSmall, "Sub Topic"},
    {ShapeType::mindmapFloatingTopic, Outline::topic, kSmall, "Floating"},
    {ShapeType::mindmapCallout, Outline::topic, kSmall, {}},
    {ShapeType::mindmapComment, Outline::topic, kSmall, {}},
    {ShapeType::sysmlFlowPort, Outline::pin, kSmall, {}},
    {ShapeType::sysmlProxyPort, Outline::pin, kSmall, {}},
    {ShapeType::sysmlFullPort, Outline::pin, kSmall, {}},
    {ShapeType::sysmlPin, Outline::pin, kSmall, {}},
    {ShapeType::sysmlStandardPort, Outline::pin, kSmall, {}},
    {ShapeType::sysmlConstraintParameter, Outline::pin, kSmall, {}},
    {ShapeType::sysmlSendSignalAction, Outline::sendSignal, kLabel, {}},
    {ShapeType::sysmlAcceptEventAction, Outline::acceptEvent, kLabel, {}},
    {ShapeType::sysmlFlowFinalNode, Outline::flowFinal, kLabel, {}},
    {ShapeType::sysmlExitPoint, Outline::flowFinal, kLabel, {}},
    {ShapeType::sysmlTerminatePseudostate, Outline::terminate, kLabel, {}},
    {ShapeType::sysmlWaitTimeAction, Outline::hourglass, kSmall, {}},
    {ShapeType::sysmlPort, Outline::port, kSmall, {}},
    {ShapeType::sysmlContextBoundary, Outline::contextFrame, kLabel, {}},
    {ShapeType::sysmlPartDef, Outline::block, kLabel, {}},
    {ShapeType::sysmlPartUsage, Outline::block, kLabel, {}},
    {ShapeType::sysmlBlock, Outline::block, kLabel, {}},
};

constexpr ShapeStyle kDefaultStyle{ShapeType::rect, Outline::box, kLabel, {}};

// Shape values run from 0 to 365; a flat array indexed by value gives O(1) lookup.
constexpr int kMaxShapeValue = 400;

struct StyleIndex {
  std::array<const ShapeStyle*, kMaxShapeValue> byValue{};
  StyleIndex() {
    for (const ShapeStyle& s : kShapeStyles) byValue[static_cast<std::size_t>(s.type)] = &s;
  }
};

const ShapeStyle& styleOf(ShapeType t) {
  static const StyleIndex index;
  const auto v = static_cast<std::int32_t>(t);
  if (v < 0 || v >= kMaxShapeValue || index.byValue[static_cast<std::size_t>(v)] == nullptr)
    return kDefaultStyle;
  return *index.byValue[static_cast<std::size_t>(v)];
}

// ---- Geometry constants ----

constexpr float kLinePitch = 14.0f;
// A label's first baseline sits size x 0.78 below its line top: the ascent
// of the sans-serif faces the drawing names.
constexpr float kAscent = 0.78f;
// Reach of descenders below the baseline, as a fraction of the size.
constexpr float kDescent = 0.3f;
// Average glyph advance of those faces as a fraction of the size; without a
// font every byte counts as one average glyph.
constexpr float kAverageAdvance = 0.62f;

// Labels under the box: their first baseline below its bottom edge, and the
// room the page keeps for them.
constexpr float kActorNameBaseline = 14.0f;  // clear of the feet at 0.95 of the height
constexpr float kActorNameRoom = 18.0f;      // the baseline and the descent of 12-unit type
constexpr float kPinLabelBaseline = 13.0f;
constexpr float kPinLabelRoom = kSmall + 6.0f;  // 9-unit type and a 6-unit gap
constexpr float kWaitLabelBaseline = 12.0f;

// A cross inscribed in a circle: its ends lie at cos 45 deg x half the box
// size from the centre along the diagonals.
constexpr float kCrossReach = 0.3536f;

// The stick figure, in fractions of the box: head radius (of the shorter
// side), arm height, hips, hands and feet.
constexpr float kActorHead = 0.18f;
constexpr float kActorArms = 0.38f;
constexpr float kActorHips = 0.62f;
constexpr float kActorHand = 0.1f;   // from either side
constexpr float kActorFoot = 0.2f;   // from either side
constexpr float kActorFeet = 0.95f;

// Package tab: 45 % of the width, at most 70 units, 14 high.
constexpr float kPackageTabShare = 0.45f;
constexpr float kPackageTabMax = 70.0f;
constexpr float kPackageTabHeight = 14.0f;
// Inner disc of a final node, as a fraction of the box.
constexpr float kFinalDisc = 0.3f;
// The operator tab of a combined fragment: 7 units a byte plus 12, as the
// picture has always drawn it.
constexpr float kOperatorTabPerByte = 7.0f;
constexpr float kOperatorTabPadding = 12.0f;
// Name tab of a frame: 11-unit type, 6 units in and 10 more past the text
// so the cut corner stays clear.
constexpr float kFrameLabelSize = 11.0f;
constexpr float kFrameTabPadding = 16.0f;
// A note's folded corner.
constexpr float kNoteFold = 10.0f;
// Point of a signal pentagon: half the height, at most a quarter of the width.
constexpr float kPentagonPointOfHeight = 0.5f;
constexpr float kPentagonPointOfWidth = 0.25f;
// Flow arrow across a port square: it reaches 0.3 of the square from the
// centre either way, its head 0.18 of the square long.
constexpr float kPortArrowReach = 0.3f;
constexpr float kPortArrowHead = 0.18f;
// Port labels: 11-unit type beside a square of 16 or more, else 9.
constexpr float kLargePortSquare = 16.0f;
constexpr float kLargePortLabel = 11.0f;

// ---- Geometry helpers ----

/// The node's box with a negative width or height turned the right way round.
core::NodeGeometry normalised(const core::NodeGeometry& g) {
  core::NodeGeometry b = g;
  if (b.w < 0) { b.x += b.w; b.w = -b.w; }
  if (b.h < 0) { b.y += b.h; b.h = -b.h; }
  return b;
}

std::string_view property(const core::Node& node, std::string_view key) {
  auto it = node.properties.find(std::string(key));
  return it == node.properties.end() ? std::string_view{} : std::string_view(it->second);
}

template <typename F>
void forEachLine(std::string_view text, F&& f) {
  std::size_t start = 0;
  for (;;) {
    const std::size_t nl = text.find('\n', start);
    f(text.substr(start, nl == std::string_view::npos ? std::string_view::npos : nl - start));
    if (nl == std::string_view::npos) return;
    start = nl + 1;
  }
}

std::size_t lineCount(std::string_view text) {
  return static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n')) + 1;
}

/// Centred multi-line label: a fixed 14-unit pitch whatever the size.
void centredLabel(DrawingBuilder& out, float x, float y, float w, float h, std::string_view label,
                  float size) {
  std::string capped;
  const std::string_view text = shownLabel(label, capped);
  if (text.empty()) return;
  const float n = static_cast<float>(lineCount(text));
  float baseline = y + h / 2 - n * kLinePitch * 0.5f + size * kAscent + 1;
  const float cx = x + w / 2;
  forEachLine(text, [&](std::string_view line) {
    if (!line.empty()) out.text(cx, baseline, size, TextAnchor::middle, line);
    baseline += kLinePitch;
  });
}

/// Lines from a first baseline downwards, one text element per non-empty line.
void linesFrom(DrawingBuilder& out, float x, float baseline, float size, TextAnchor anchor,
               std::string_view label) {
  std::string capped;
  const std::string_view text = shownLabel(label, capped);
  if (text.empty()) return;
  forEachLine(text, [&](std::string_view line) {
    if (!line.empty()) out.text(x, baseline, size, anchor, line);
    baseline += kLinePitch;
  });
}

std::string_view captionOf(const core::Node& node, const ShapeStyle& style) {
  return node.text.empty() ? style.defaultCaption : std::string_view(node.text);
}

// ---- Compartments of blocks and parts ----

struct Compartment {
  std::string_view key;
  std::string_view heading;
};

constexpr Compartment kCompartments[] = {
    {"parts", "parts"},
    {"references", "references"},
    {"values", "values"},
    {"constraints", "constraints"},
    {"operations", "operations"},
    {"receptions", "receptions"},
    {"flowProperties", "flow properties"},
    {"allocatedTo", "allocatedTo"},
    {"allocatedFrom", "allocatedFrom"},
};

constexpr float kHeaderBand = 24.0f;
constexpr float kMinCompartmentHeight = 44.0f;
constexpr float kHeadingSize = 9.0f;
constexpr float kEntrySize = 11.0f;

bool hasCompartments(const core::Node& node) {
  for (const Compartment& c : kCompartments)
    if (!property(node, c.key).empty()) return true;
  return false;
}

void drawCompartments(DrawingBuilder& out, const core::Node& node, const core::NodeGeometry& b) {
  centredLabel(out, b.x, b.y, b.w, kHeaderBand, node.text, kLabel);
  out.line(b.x, b.y + kHeaderBand, b.x + b.w, b.y + kHeaderBand);
  const float bottom = b.y + b.h;
  const float left = b.x + 6;
  float top = b.y + kHeaderBand;
  bool first = true;
  for (const Compartment& c : kCompartments) {
    const std::string_view value = property(node, c.key);
    if (value.empty()) continue;
    if (!first) {
      if (top + kLinePitch > bottom) return;
      out.line(b.x, top, b.x + b.w, top);
    }
    first = false;
    float baseline = top + 12;
    if (baseline > bottom - 2) return;
    out.text(left, baseline, kHeadingSize, TextAnchor::start, c.heading);
    bool full = false;
    forEachLine(value, [&](std::string_view line) {
      if (full || line.empty()) return;
      if (baseline + kLinePitch > bottom - 2) { full = true; return; }
      baseline += kLinePitch;
      out.text(left, baseline, kEntrySize, TextAnchor::start, line);
    });
    if (full) return;
    top = baseline + 6;
  }
}

// ---- Combined fragment ----

constexpr int kMaxOperands = 8;

/// Operand separators as fractions of the body below the tab: the stored
/// splits when they are usable, else equal parts.
std::vector<float> operandSplits(const core::Node& node) {
  int operands = 1;
  const std::string_view count = property(node, "numOperands");
  std::from_chars(count.data(), count.data() + count.size(), operands);
  operands = std::clamp(operands, 1, kMaxOperands);
  std::vector<float> splits;
  std::string_view rest = property(node, "operandSplits");
  while (!rest.empty() && static_cast<int>(splits.size()) < operands - 1) {
    const std::size_t end = rest.find_first_of(", ;");
    const std::string_view item = rest.substr(0, end);
    float f = 0;
    auto res = std::from_chars(item.data(), item.data() + item.size(), f);
    if (res.ec == std::errc{} && f > 0 && f < 1 && (splits.empty() || f > splits.back()))
      splits.push_back(f);
    if (end == std::string_view::npos) break;
    rest.remove_prefix(end + 1);
  }
  if (static_cast<int>(splits.size()) != operands - 1) {
    splits.clear();
    for (int i = 1; i < operands; ++i) splits.push_back(static_cast<float>(i) / static_cast<float>(operands));
  }
  return splits;
}

void drawFragment(DrawingBuilder& out, const core::Node& node, const core::NodeGeometry& b) {
  out.rect(b.x, b.y, b.w, b.h, 0, kNoPaint);
  const std::string_view op = property(node, "operator");
  const float tw = std::min(static_cast<float>(op.size()) * kOperatorTabPerByte + kOperatorTabPadding, b.w);
  const float th = std::min(kFrameTabHeight, b.h);
  const float cut = std::min(5.0f, std::min(tw, th));
  out.polygon({{b.x, b.y}, {b.x + tw, b.y}, {b.x + tw, b.y + th - cut}, {b.x + tw - cut, b.y + th},
               {b.x, b.y + th}},
              kNoPaint);
  if (!op.empty()) out.text(b.x + 5, b.y + 14, kSmall, TextAnchor::start, op);

  static constexpr std::string_view kGuardKeys[] = {"guard", "guard2", "guard3"};
  const std::vector<float> splits = operandSplits(node);
  const float body = b.h - th;
  for (std::size_t i = 0; i <= splits.size(); ++i) {
    const float top = i == 0 ? b.y + th : b.y + th + splits[i - 1] * body;
    if (i > 0) out.line(b.x, top, b.x + b.w, top, 1.5f, true);
    const std::string_view guard = i < 3 ? property(node, kGuardKeys[i]) : std::string_view{};
    if (guard.empty() || top + 12 > b.y + b.h) continue;
    std::string bracketed;
    bracketed.reserve(guard.size() + 2);
    bracketed += '[';
    bracketed += guard;
    bracketed += ']';
    out.text(b.x + 8, top + 12, kSmall, TextAnchor::start, bracketed);
  }
}

// ---- Ports ----

enum class Side { none, top, bottom, left, right };

Side sideOf(std::string_view key) {
  if (key == "top") return Side::top;
  if (key == "bottom") return Side::bottom;
  if (key == "left") return Side::left;
  if (key == "right") return Side::right;
  return Side::none;
}

float boundaryPosition(const core::Node& node) {
  const std::string_view text = property(node, "boundaryPos");
  float pos = 0.5f;
  auto res = std::from_chars(text.data(), text.data() + text.size(), pos);
  if (res.ec != std::errc{} || !(pos >= 0.0f && pos <= 1.0f)) pos = 0.5f;
  return pos;
}

/// Arrow across the port square showing the flow direction; "in" points into
/// the owner, which lies beyond the side opposite the port's boundary side.
void drawPortDirection(DrawingBuilder& out, const core::Node& node, const Square& sq, Colour ink) {
  const std::string_view dir = property(node, "direction");
  const bool in = dir == "in" || dir == "inout";
  const bool outward = dir == "out" || dir == "inout";
  if (!in && !outward) return;
  Point u{1, 0};  // inward, for a port on the left side
  switch (sideOf(property(node, "boundarySide"))) {
    case Side::right: u = {-1, 0}; break;
    case Side::top: u = {0, 1}; break;
    case Side::bottom: u = {0, -1}; break;
    case Side::left:
    case Side::none: break;
  }
  const Point c{sq.x + sq.size / 2, sq.y + sq.size / 2};
  const Point n{-u.y, u.x};
  const float half = sq.size * kPortArrowReach;
  const float head = sq.size * kPortArrowHead;
  const Point a{c.x - u.x * half, c.y - u.y * half};
  const Point b{c.x + u.x * half, c.y + u.y * half};
  out.line(a.x, a.y, b.x, b.y, 1.0f, false, ink);
  auto arrowHead = [&](Point tip, float sign) {
    const Point base{tip.x - sign * u.x * head, tip.y - sign * u.y * head};
    out.polyline({{base.x + n.x * head, base.y + n.y * head}, tip, {base.x - n.x * head, base.y - n.y * head}},
                 false, ink);
  };
  if (in) arrowHead(b, 1.0f);
  if (outward) arrowHead(a, -1.0f);
}

std::string portLabel(const core::Node& node) {
  std::string label = node.text;
  const std::string_view type = property(node, "type");
  if (!type.empty()) {
    label += label.empty() ? ": " : " : ";
    if (property(node, "isConjugated") == "true") label += '~';
    label += type;
  }
  const std::string_view mult = property(node, "multiplicity");
  if (!mult.empty()) {
    if (!label.empty()) label += ' ';
    label += mult;
  }
  return label;
}

/// Where a port's label goes: above a port on the top side; below it
/// otherwise, running inward from a left-side port so the name stays over
/// its owner.
struct PortLabel {
  std::string text;
  float x = 0.0f;
  float baseline = 0.0f;
  float size = 0.0f;
  TextAnchor anchor = TextAnchor::middle;
};

PortLabel portLabelPlacement(const core::Node& node, const Square& sq) {
  PortLabel label;
  label.text = portLabel(node);
  label.size = sq.size >= kLargePortSquare ? kLargePortLabel : kSmall;
  label.x = sq.x + sq.size / 2;
  label.baseline = sq.y + sq.size + label.size + 2;
  switch (sideOf(property(node, "boundarySide"))) {
    case Side::top: label.baseline = sq.y - 4; break;
    case Side::left:
      label.x = sq.x;
      label.anchor = TextAnchor::start;
      break;
    default: break;
  }
  return label;
}

void drawPort(DrawingBuilder& out, const core::Node& node) {
  const Square sq = portSquare(node);
  if (!(sq.size > 0)) return;
  // A conjugated port is drawn dark, so it reads as the mirror of its type.
  const bool dark = property(node, "isConjugated") == "true";
  out.rect(sq.x, sq.y, sq.size, sq.size, 0, dark ? kStrokeColour : kWhite);
  drawPortDirection(out, node, sq, dark ? kWhite : kStrokeColour);
  const PortLabel label = portLabelPlacement(node, sq);
  if (!label.text.empty()) out.text(label.x, label.baseline, label.size, label.anchor, label.text);
}

// ---- Context boundary ----

std::string contextHeader(const core::Node& node) {
  if (property(node, "showHeader") == "false") return {};
  std::string block(property(node, "contextBlock"));
  if (block.empty()) block = node.text;
  std::string header = "ibd";
  if (!block.empty()) header += " [block] " + block;
  const std::string_view view = property(node, "frameLabel");
  if (!view.empty()) header += " [" + std::string(view) + "]";
  return header;
}

// ---- Per-outline drawing ----

void drawOutline(DrawingBuilder& out, const core::Node& node, const ShapeStyle& style,
                 const core::NodeGeometry& b) {
  const Colour fill = nodeFill(node.fillColor);
  const float cx = b.x + b.w / 2;
  const float cy = b.y + b.h / 2;
  const std::string_view caption = captionOf(node, style);
  switch (style.outline) {
    case Outline::box:
      out.rect(b.x, b.y, b.w, b.h, 4, fill);
      centredLabel(out, b.x, b.y, b.w, b.h, caption, style.labelSize);
      return;
    case Outline::block:
      out.rect(b.x, b.y, b.w, b.h, 4, fill);
      if (b.h >= kMinCompartmentHeight && hasCompartments(node))
        drawCompartments(out, node, b);
      else
        centredLabel(out, b.x, b.y, b.w, b.h, caption, style.labelSize);
      return;
    case Outline::textOnly:
      centredLabel(out, b.x, b.y, b.w, b.h, caption, style.labelSize);
      return;
    case Outline::ellipse:
      out.ellipse(cx, cy, b.w / 2, b.h / 2, fill);
      centredLabel(out, b.x, b.y, b.w, b.h, caption, style.labelSize);
      return;
    case Outline::rounded:
    case Outline::topic:
      out.rect(b.x, b.y, b.w, b.h, 8, fill);
      centredLabel(out, b.x, b.y, b.w, b.h, caption, style.labelSize);
      return;
    case Outline::triangle:
      out.polygon({{cx, b.y}, {b.x + b.w, b.y + b.h}, {b.x, b.y + b.h}}, fill);
      centredLabel(out, b.x, b.y, b.w, b.h, caption, style.labelSize);
      return;
    case Outline::package: {
      const float tabH = std::min(kPackageTabHeight, b.h);
      out.rect(b.x, b.y + tabH, b.w, b.h - tabH, 0, fill);
      out.rect(b.x, b.y, std::min(b.w * kPackageTabShare, kPackageTabMax), tabH, 0, fill);
      centredLabel(out, b.x, b.y + tabH, b.w, b.h - tabH, caption, style.labelSize);
      return;
    }
    case Outline::dot:
      out.ellipse(cx, cy, b.w / 2, b.h / 2, kStrokeColour);
      return;
    case Outline::finalNode:
      out.ellipse(cx, cy, b.w / 2, b.h / 2, fill);
      out.ellipse(cx, cy, b.w * kFinalDisc, b.h * kFinalDisc, kStrokeColour);
      return;
    case Outline::diamond:
      out.polygon({{cx, b.y}, {b.x + b.w, cy}, {cx, b.y + b.h}, {b.x, cy}}, fill);
      centredLabel(out, b.x, b.y, b.w, b.h, caption, style.labelSize);
      return;
    case Outline::bar:
      out.rect(b.x, b.y, b.w, b.h, 0, kStrokeColour);
      return;
    case Outline::circle:
    case Outline::endEvent:
      out.ellipse(cx, cy, b.w / 2, b.h / 2, fill, style.outline == Outline::endEvent ? 3.0f : 1.5f);
      centredLabel(out, b.x, b.y, b.w, b.h, caption, style.labelSize);
      return;
    case Outline::actor: {
      const float r = std::min(b.w, b.h) * kActorHead;
      out.ellipse(cx, b.y + r, r, r, fill);
      const float hip = b.y + b.h * kActorHips;
      const float arms = b.y + b.h * kActorArms;
      const float feet = b.y + b.h * kActorFeet;
      out.line(cx, b.y + 2 * r, cx, hip);
      out.line(b.x + b.w * kActorHand, arms, b.x + b.w * (1 - kActorHand), arms);
      out.polyline({{b.x + b.w * kActorFoot, feet}, {cx, hip}, {b.x + b.w * (1 - kActorFoot), feet}});
      linesFrom(out, cx, b.y + b.h + kActorNameBaseline, kLabel, TextAnchor::middle, caption);
      return;
    }
    case Outline::lifeline: {
      const float head = std::min(b.h, 34.0f);
      out.rect(b.x, b.y, b.w, head, 0, fill);
      centredLabel(out, b.x, b.y, b.w, head, caption, style.labelSize);
      if (b.h > head) out.line(cx, b.y + head, cx, b.y + b.h, 1.5f, true);
      return;
    }
    case Outline::activation:
      out.rect(b.x, b.y, b.w, b.h, 0, fill);
      return;
    case Outline::fragment:
      drawFragment(out, node, b);
      return;
    case Outline::note: {
      const float fold = std::min({kNoteFold, b.w, b.h});
      out.polygon({{b.x, b.y}, {b.x + b.w - fold, b.y}, {b.x + b.w, b.y + fold}, {b.x + b.w, b.y + b.h},
                   {b.x, b.y + b.h}},
                  fill);
      out.polyline({{b.x + b.w - fold, b.y}, {b.x + b.w - fold, b.y + fold}, {b.x + b.w, b.y + fold}});
      centredLabel(out, b.x, b.y, b.w, b.h, caption, style.labelSize);
      return;
    }
    case Outline::dashedGroup:
      out.rect(b.x, b.y, b.w, b.h, 6, kNoPaint, true);
      linesFrom(out, b.x + 6, b.y + 16, style.labelSize, TextAnchor::start, caption);
      return;
    case Outline::container:
    case Outline::subject: {
      out.rect(b.x, b.y, b.w, b.h, 0, kNoPaint);
      const float band = std::min(kHeaderBand, b.h);
      if (style.outline == Outline::container) out.line(b.x, b.y + band, b.x + b.w, b.y + band);
      centredLabel(out, b.x, b.y, b.w, band, caption, style.labelSize);
      return;
    }
    case Outline::pin:
      out.rect(b.x, b.y, b.w, b.h, 0, fill);
      linesFrom(out, cx, b.y + b.h + kPinLabelBaseline, style.labelSize, TextAnchor::middle, caption);
      return;
    case Outline::sendSignal: {
      const float d = std::min(b.h * kPentagonPointOfHeight, b.w * kPentagonPointOfWidth);
      out.polygon({{b.x, b.y}, {b.x + b.w - d, b.y}, {b.x + b.w, cy}, {b.x + b.w - d, b.y + b.h},
                   {b.x, b.y + b.h}},
                  fill);
      centredLabel(out, b.x, b.y, b.w, b.h, caption, style.labelSize);
      return;
    }
    case Outline::acceptEvent: {
      const float d = std::min(b.h * kPentagonPointOfHeight, b.w * kPentagonPointOfWidth);
      out.polygon({{b.x, b.y}, {b.x + b.w, b.y}, {b.x + b.w, b.y + b.h}, {b.x, b.y + b.h}, {b.x + d, cy}},
                  fill);
      centredLabel(out, b.x, b.y, b.w, b.h, caption, style.labelSize);
      return;
    }
    case Outline::flowFinal:
    case Outline::terminate: {
      if (style.outline == Outline::flowFinal) out.ellipse(cx, cy, b.w / 2, b.h / 2, fill);
      const float dx = b.w * kCrossReach;
      const float dy = b.h * kCrossReach;
      out.line(cx - dx, cy - dy, cx + dx, cy + dy);
      out.line(cx - dx, cy + dy, cx + dx, cy - dy);
      return;
    }
    case Outline::hourglass:
      out.polygon({{b.x, b.y}, {b.x + b.w, b.y}, {b.x, b.y + b.h}, {b.x + b.w, b.y + b.h}}, fill);
      linesFrom(out, cx, b.y + b.h + kWaitLabelBaseline, style.labelSize, TextAnchor::middle, caption);
      return;
    case Outline::port:
      drawPort(out, node);
      return;
    case Outline::contextFrame:
      drawNamedFrame(out, b.x, b.y, b.w, b.h, contextHeader(node));
      return;
  }
}

}  // namespace

void Extent::takeX(float v) noexcept {
  if (!std::isfinite(v)) return;
  any = true;
  if (v < minX) minX = v;
  if (v > maxX) maxX = v;
}

void Extent::takeY(float v) noexcept {
  if (!std::isfinite(v)) return;
  any = true;
  if (v < minY) minY = v;
  if (v > maxY) maxY = v;
}

void Extent::take(const Extent& other) noexcept {
  // An axis that took no value still holds its start values (min above max).
  if (other.maxX >= other.minX) {
    takeX(other.minX);
    takeX(other.maxX);
  }
  if (other.maxY >= other.minY) {
    takeY(other.minY);
    takeY(other.maxY);
  }
}

Square portSquare(const core::Node& node) {
  const core::NodeGeometry b = normalised(node.geom);
  Square sq;
  sq.size = std::min(b.w, b.h);
  if (!(sq.size > 0)) return {b.x, b.y, 0.0f};
  const float pos = boundaryPosition(node);
  const float alongX = b.x + (b.w - sq.size) * pos;
  const float alongY = b.y + (b.h - sq.size) * pos;
  switch (sideOf(property(node, "boundarySide"))) {
    case Side::top: sq.x = alongX; sq.y = b.y; break;
    case Side::bottom: sq.x = alongX; sq.y = b.y + b.h - sq.size; break;
    case Side::left: sq.x = b.x; sq.y = alongY; break;
    case Side::right: sq.x = b.x + b.w - sq.size; sq.y = alongY; break;
    case Side::none:
      sq.x = b.x + (b.w - sq.size) / 2;
      sq.y = b.y + (b.h - sq.size) / 2;
      break;
  }
  return sq;
}

float estimatedTextWidth(std::string_view line, float size) {
  return static_cast<float>(line.size()) * size * kAverageAdvance;
}

NodeCover nodeCover(const core::Node& node) {
  NodeCover c;
  const core::NodeGeometry& g = node.geom;
  c.page.takeX(g.x);
  c.page.takeY(g.y);
  c.page.takeX(g.x + g.w);
  c.page.takeY(g.y + g.h);
  const ShapeStyle& style = styleOf(node.type);
  const core::NodeGeometry b = normalised(g);
  const float cx = b.x + b.w / 2;
  // A label drawn under the box as `drawOutline` places it: every line at
  // its estimated width, down to the last line's descenders.
  auto paintedBelow = [&](std::string_view label, float firstBaseline, float size) {
    std::string capped;
    const std::string_view shown = shownLabel(label, capped);
    if (shown.empty()) return;
    float widest = 0;
    float lines = 0;
    forEachLine(shown, [&](std::string_view line) {
      widest = std::max(widest, estimatedTextWidth(line, size));
      ++lines;
    });
    c.painted.takeX(cx - widest / 2);
    c.painted.takeX(cx + widest / 2);
    c.painted.takeY(b.y + b.h + firstBaseline + (lines - 1) * kLinePitch + size * kDescent);
  };
  switch (style.outline) {
    case Outline::actor:
      c.page.takeY(g.y + g.h + kActorNameRoom);
      paintedBelow(captionOf(node, style), kActorNameBaseline, kLabel);
      break;
    case Outline::pin:
      if (!node.text.empty()) {
        // The page's fixed rule: the whole text's bytes as one line.
        const float half = estimatedTextWidth(node.text, kSmall) / 2;
        c.page.takeY(g.y + g.h + kPinLabelRoom);
        c.page.takeX(g.x + g.w / 2 - half);
        c.page.takeX(g.x + g.w / 2 + half);
      }
      paintedBelow(captionOf(node, style), kPinLabelBaseline, style.labelSize);
      break;
    case Outline::hourglass:
      paintedBelow(captionOf(node, style), kWaitLabelBaseline, style.labelSize);
      break;
    case Outline::port: {
      const Square sq = portSquare(node);
      if (!(sq.size > 0)) break;
      c.page.takeX(sq.x);
      c.page.takeX(sq.x + sq.size);
      c.page.takeY(sq.y);
      c.page.takeY(sq.y + sq.size);
      const PortLabel label = portLabelPlacement(node, sq);
      std::string capped;
      const std::string_view shown = shownLabel(label.text, capped);
      if (shown.empty()) break;
      const float width = estimatedTextWidth(shown, label.size);
      const float left = label.anchor == TextAnchor::middle ? label.x - width / 2 : label.x;
      c.painted.takeX(left);
      c.painted.takeX(left + width);
      c.painted.takeY(label.baseline - label.size);
      c.painted.takeY(label.baseline + label.size * kDescent);
      break;
    }
    default:
      break;
  }
  // Whatever the page takes in is painted too.
  c.painted.take(c.page);
  return c;
}

void extendByNode(Extent& e, const core::Node& node) { e.take(nodeCover(node).page); }

void drawNode(DrawingBuilder& out, const core::Node& node) {
  drawOutline(out, node, styleOf(node.type), normalised(node.geom));
}

void drawNamedFrame(DrawingBuilder& out, float x, float y, float w, float h, std::string_view label) {
  out.rect(x, y, w, h, 0, kNoPaint);
  if (label.empty()) return;
  const float tw = std::min(estimatedTextWidth(label, kFrameLabelSize) + kFrameTabPadding, w);
  const float th = std::min(kFrameTabHeight, h);
  const float cut = std::min(6.0f, std::min(tw, th));
  out.polygon({{x, y}, {x + tw, y}, {x + tw, y + th - cut}, {x + tw - cut, y + th}, {x, y + th}}, kNoPaint);
  out.text(x + 6, y + 14, kFrameLabelSize, TextAnchor::start, label);
}

}  // namespace modelyne::exporter
