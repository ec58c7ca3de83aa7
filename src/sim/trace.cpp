#include "sim/trace.h"

#include <array>
#include <cstdio>

#include "core/json_string.h"

namespace modelyne::core::sim {

namespace {

// ---- Tables

struct KindInfo {
  EventKind kind;
  std::string_view key;
  bool tokens;  ///< writes "in" and "out" even when empty
};

constexpr std::array<KindInfo, 11> kKinds{{
    {EventKind::start, "start", true},
    {EventKind::fire, "fire", true},
    {EventKind::decide, "decide", true},
    {EventKind::final, "final", true},
    {EventKind::flowFinal, "flowFinal", true},
    {EventKind::message, "message", false},
    {EventKind::skip, "skip", false},
    {EventKind::enter, "enter", false},
    {EventKind::transition, "transition", false},
    {EventKind::stall, "stall", true},
    {EventKind::end, "end", false},
}};

constexpr std::array<std::string_view, 5> kReasons{"", "user", "guard", "else", "unknown-guard"};
constexpr std::array<std::string_view, 4> kStatuses{"running", "completed", "stalled", "limit"};

const KindInfo& info(EventKind kind) noexcept {
  const auto i = static_cast<std::size_t>(kind);
  return kKinds[i < kKinds.size() ? i : 1];
}

// ---- Text form

// A field never holds the separators of the line.
void appendField(std::string& out, std::string_view s) {
  if (s.empty()) {
    out += '-';
    return;
  }
  for (const char c : s) out += (c == '\t' || c == '\n' || c == '\r') ? ' ' : c;
}

std::string joined(const std::vector<std::string>& items) {
  std::string out;
  for (const std::string& s : items) {
    if (!out.empty()) out += ',';
    out += s;
  }
  return out;
}

// ---- JSON form

using core::appendJsonString;

void appendJsonArray(std::string& out, const std::vector<std::string>& items) {
  out += '[';
  for (std::size_t i = 0; i < items.size(); ++i) {
    if (i) out += ", ";
    appendJsonString(out, items[i]);
  }
  out += ']';
}

class JsonObject {
 public:
  explicit JsonObject(std::string& out) : out_(out) { out_ += '{'; }
  void key(std::string_view k) {
    if (!first_) out_ += ", ";
    first_ = false;
    appendJsonString(out_, k);
    out_ += ": ";
  }
  void string(std::string_view k, std::string_view v) {
    key(k);
    appendJsonString(out_, v);
  }
  void optionalString(std::string_view k, std::string_view v) {
    if (!v.empty()) string(k, v);
  }
  void array(std::string_view k, const std::vector<std::string>& v) {
    key(k);
    appendJsonArray(out_, v);
  }
  void number(std::string_view k, std::uint64_t v) {
    key(k);
    out_ += std::to_string(v);
  }
  void close() { out_ += "}\n"; }

 private:
  std::string& out_;
  bool first_ = true;
};

}  // namespace

std::string_view eventKindKey(EventKind kind) noexcept { return info(kind).key; }

std::string_view decideReasonKey(DecideReason reason) noexcept {
  const auto i = static_cast<std::size_t>(reason);
  return i < kReasons.size() ? kReasons[i] : std::string_view{};
}

std::string_view runStatusKey(RunStatus status) noexcept {
  const auto i = static_cast<std::size_t>(status);
  return i < kStatuses.size() ? kStatuses[i] : kStatuses[0];
}

std::string formatTextLine(const TraceEvent& e) {
  std::string out = std::to_string(e.step);
  out += '\t';
  out += eventKindKey(e.kind);
  out += '\t';
  if (e.kind == EventKind::end) {
    out += runStatusKey(e.status);
    out += '\t';
    appendField(out, joined(e.waiting));
    out += "\t-\t";
    appendField(out, e.detail);
    out += '\n';
    return out;
  }
  appendField(out, !e.node.empty() ? e.node : e.edge);
  out += '\t';
  const bool ends = !e.from.empty() || !e.to.empty();
  if (ends) {
    appendField(out, e.from);
    out += '\t';
    appendField(out, e.to);
  } else {
    appendField(out, joined(e.in));
    out += '\t';
    appendField(out, e.kind == EventKind::decide ? e.chosen : joined(e.out));
  }
  out += '\t';
  std::string detail;
  if (e.kind == EventKind::decide) detail = decideReasonKey(e.reason);
  if (e.kind == EventKind::final) detail = "destroyed " + (e.destroyed.empty() ? std::string("none") : joined(e.destroyed));
  if (!e.detail.empty()) detail += (detail.empty() ? "" : "; ") + e.detail;
  appendField(out, detail);
  out += '\n';
  return out;
}

std::string formatJsonLine(const TraceEvent& e) {
  std::string out;
  JsonObject o(out);
  if (e.kind == EventKind::end) {
    o.string("event", "end");
    o.string("status", runStatusKey(e.status));
    o.number("steps", e.step);
    o.array("waiting", e.waiting);
    o.optionalString("detail", e.detail);
    o.close();
    return out;
  }
  o.number("step", e.step);
  o.string("event", eventKindKey(e.kind));
  o.optionalString("node", e.node);
  if (info(e.kind).tokens) {
    o.array("in", e.in);
    o.array("out", e.out);
  }
  if (e.kind == EventKind::decide) {
    o.optionalString("chosen", e.chosen);
    o.optionalString("reason", decideReasonKey(e.reason));
  }
  if (e.kind == EventKind::final) o.array("destroyed", e.destroyed);
  o.optionalString("edge", e.edge);
  o.optionalString("from", e.from);
  o.optionalString("to", e.to);
  o.optionalString("detail", e.detail);
  o.close();
  return out;
}

}  // namespace modelyne::core::sim
