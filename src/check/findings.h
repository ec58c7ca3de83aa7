#pragma once
/// Findings: appends finding sentences to the caller's list as they are
/// found (never buffered, so a rule that throws leaves the earlier findings
/// in place) and counts them.

#include <cstddef>
#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

namespace modelyne::check {

class Findings {
 public:
  explicit Findings(std::vector<std::string>& out) : out_(out), start_(out.size()) {}

  /// Appends one finding made of the pieces, concatenated.
  void add(std::initializer_list<std::string_view> pieces) {
    std::size_t size = 0;
    for (const std::string_view p : pieces) size += p.size();
    std::string text;
    text.reserve(size);
    for (const std::string_view p : pieces) text.append(p);
    out_.push_back(std::move(text));
  }

  /// How many findings this appender has added.
  unsigned count() const noexcept { return static_cast<unsigned>(out_.size() - start_); }

 private:
  std::vector<std::string>& out_;
  std::size_t start_;
};

}  // namespace modelyne::check
