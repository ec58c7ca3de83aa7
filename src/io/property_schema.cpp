#include "io/property_schema.h"

#include <charconv>
#include <system_error>

#include "io/schema_tables.h"

namespace modelyne::io {

// ---- Constructors, one per kind ----

PropertyDef PropertyDef::text(std::string key, std::string label, std::string source, std::string defaultValue,
                              std::string hint) {
  return {std::move(key), std::move(label), ValueKind::text, {}, std::move(defaultValue), std::move(hint), std::move(source)};
}

PropertyDef PropertyDef::multiLine(std::string key, std::string label, std::string source, std::string hint) {
  return {std::move(key), std::move(label), ValueKind::multiLineText, {}, {}, std::move(hint), std::move(source)};
}

PropertyDef PropertyDef::boolean(std::string key, std::string label, std::string source, bool defaultValue,
                                 std::string hint) {
  return {std::move(key), std::move(label), ValueKind::boolean, {}, defaultValue ? "true" : "false", std::move(hint),
          std::move(source)};
}

PropertyDef PropertyDef::choice(std::string key, std::string label, std::string source, std::vector<std::string> choices,
                                std::string defaultValue, std::string hint) {
  return {std::move(key), std::move(label), ValueKind::choice, std::move(choices), std::move(defaultValue),
          std::move(hint), std::move(source)};
}

PropertyDef PropertyDef::multiplicity(std::string key, std::string label, std::string source, std::string hint) {
  return {std::move(key), std::move(label), ValueKind::multiplicity, {}, {}, std::move(hint), std::move(source)};
}

PropertyDef PropertyDef::integer(std::string key, std::string label, std::string source, std::string defaultValue,
                                 std::string hint) {
  return {std::move(key), std::move(label), ValueKind::integer, {}, std::move(defaultValue), std::move(hint),
          std::move(source)};
}

PropertyDef PropertyDef::identifier(std::string key, std::string label, std::string source, std::string hint) {
  return {std::move(key), std::move(label), ValueKind::identifier, {}, {}, std::move(hint), std::move(source)};
}

PropertyDef PropertyDef::number(std::string key, std::string label, std::string source, std::string defaultValue,
                                std::string hint) {
  return {std::move(key), std::move(label), ValueKind::number, {}, std::move(defaultValue), std::move(hint),
          std::move(source)};
}

// ---- Validation ----

namespace {

bool isDigit(char c) noexcept { return c >= '0' && c <= '9'; }
bool isAsciiLetter(char c) noexcept { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }

bool allDigits(std::string_view s) noexcept {
  if (s.empty()) return false;
  for (char c : s)
    if (!isDigit(c)) return false;
  return true;
}

bool validMultiplicity(std::string_view v) noexcept {
  if (v.size() < 3 || v.front() != '[' || v.back() != ']') return false;
  const std::string_view inside = v.substr(1, v.size() - 2);
  const std::size_t dots = inside.find("..");
  if (dots == std::string_view::npos) return allDigits(inside);
  const std::string_view upper = inside.substr(dots + 2);
  return allDigits(inside.substr(0, dots)) && (upper == "*" || allDigits(upper));
}

bool validInteger(std::string_view v) noexcept {
  if (!v.empty() && (v.front() == '+' || v.front() == '-')) v.remove_prefix(1);
  return allDigits(v);
}

bool validIdentifier(std::string_view v) noexcept {
  for (char c : v)
    if (!(isAsciiLetter(c) || isDigit(c) || c == '_' || c == '-' || c == '.')) return false;
  return true;
}

bool isCSpace(char c) noexcept {
  return c == ' ' || c == '\t' || c == '\n' || c == '\v' || c == '\f' || c == '\r';
}

// As std::stod with its end index: leading white space is skipped, every
// other character must be taken and the value must be in range. Written
// with from_chars so that the user's locale cannot change the decimal point.
bool validNumber(std::string_view v) noexcept {
  const char* p = v.data();
  const char* end = p + v.size();
  while (p != end && isCSpace(*p)) ++p;
  if (p != end && (*p == '+' || *p == '-')) ++p;
  if (p == end || *p == '+' || *p == '-') return false;
  double value = 0.0;
  std::from_chars_result res{};
  if (end - p > 2 && p[0] == '0' && (p[1] == 'x' || p[1] == 'X'))
    res = std::from_chars(p + 2, end, value, std::chars_format::hex);
  else
    res = std::from_chars(p, end, value, std::chars_format::general);
  return res.ec == std::errc{} && res.ptr == end;
}

}  // namespace

bool validateValue(const PropertyDef& def, const std::string& value, std::string& message) {
  if (value.empty()) return true;
  bool ok = true;
  switch (def.kind) {
    case ValueKind::text:
    case ValueKind::multiLineText:
      return true;
    case ValueKind::boolean:
      ok = value == "true" || value == "false";
      if (!ok) message = "Expected true or false.";
      break;
    case ValueKind::choice:
      ok = false;
      for (const std::string& c : def.choices)
        if (c == value) ok = true;
      if (!ok) message = "Value is not one of the allowed choices.";
      break;
    case ValueKind::multiplicity:
      ok = validMultiplicity(value);
      if (!ok) message = "Expected [n], [n..m] or [n..*].";
      break;
    case ValueKind::integer:
      ok = validInteger(value);
      if (!ok) message = "Expected an integer.";
      break;
    case ValueKind::identifier:
      ok = validIdentifier(value);
      if (!ok) message = "Identifiers may only contain letters, digits, '_', '-' or '.'.";
      break;
    case ValueKind::number:
      ok = validNumber(value);
      if (!ok) message = "Expected a number.";
      break;
    default:
      return true;  // a kind outside the table accepts everything
  }
  return ok;
}

// ---- Lookups ----

const Schema& schemaFor(core::ShapeType type) { return detail::schemaRegistry().schemaOf(type); }

const PropertyDef* findProperty(core::ShapeType type, std::string_view key) {
  for (const PropertyDef& d : schemaFor(type))
    if (d.key == key) return &d;
  return nullptr;
}

std::map<std::string, std::string> defaultProperties(core::ShapeType type) {
  std::map<std::string, std::string> props;
  for (const PropertyDef& d : schemaFor(type))
    if (!d.defaultValue.empty()) props.emplace(d.key, d.defaultValue);
  return props;
}

std::string_view valueKindName(ValueKind kind) noexcept {
  switch (kind) {
    case ValueKind::text: return "Text";
    case ValueKind::multiLineText: return "Multi-line text";
    case ValueKind::boolean: return "Boolean";
    case ValueKind::choice: return "Choice";
    case ValueKind::multiplicity: return "Multiplicity";
    case ValueKind::integer: return "Integer";
    case ValueKind::identifier: return "Identifier";
    case ValueKind::number: return "Number";
  }
  return "Text";
}

}  // namespace modelyne::io
