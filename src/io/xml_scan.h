#pragma once
// Internal helpers shared by the substring-search block readers (frame line,
// data-integration block, project wrapper): attribute reading from one tag's
// text and whole-line removal. Not part of the public io API.

#include <cstddef>
#include <string>
#include <string_view>

namespace modelyne::io::detail {

/// The raw (undecoded) value of attribute `name` in a tag's text (from "<"
/// to ">"), or nothing. Values may use either quote; the last of two
/// same-named attributes wins, as in the diagram reader.
bool findAttribute(std::string_view tag, std::string_view name, std::string_view& value);

/// The decoded value of attribute `name`, or `fallback` when absent.
std::string attributeOr(std::string_view tag, std::string_view name, std::string_view fallback);

/// Extends [begin, end) to whole lines: back over spaces and tabs to the line
/// start, and forward over spaces, tabs and one line break, when only white
/// space lies between; returns the extended range.
void widenToLines(std::string_view text, std::size_t& begin, std::size_t& end);

/// Position of the first `needle` in `hay` at or after `from`, or npos.
/// Fast on long texts (skips ahead by the needle's length), for the block
/// searches that run over a whole diagram text.
std::size_t findText(std::string_view hay, std::string_view needle, std::size_t from = 0);

/// Number of line breaks before `offset`, plus one.
std::size_t lineAt(std::string_view text, std::size_t offset);

/// lineAt for offsets asked in ascending order: each byte is counted once.
class LineCounter {
 public:
  explicit LineCounter(std::string_view text) : text_(text) {}
  std::size_t lineAt(std::size_t offset);

 private:
  std::string_view text_;
  std::size_t pos_ = 0;
  std::size_t line_ = 1;
};

}  // namespace modelyne::io::detail
