#pragma once
/// The cloud AI's usage ledger, a small file in the application-data
/// folder: how many requests went out on the current calendar day (local
/// time) and until when the server asked us to wait (Retry-After,
/// RateLimit). A missing or unreadable ledger counts as a fresh day.

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <string>

namespace modelyne::cloud {

using SystemTime = std::chrono::system_clock::time_point;

/// The local calendar day of `t` as "YYYY-MM-DD".
std::string CalendarDay(SystemTime t);

class UsageLedger {
 public:
  explicit UsageLedger(std::filesystem::path file) : file_(std::move(file)) {}

  /// Requests counted for the calendar day of `now`.
  int usedOn(SystemTime now) const;
  /// Whole seconds the server asked us to wait from `now`; 0 when none.
  std::int64_t waitSeconds(SystemTime now) const;

  /// Counts one request on the day of `now`. Returns false when the ledger
  /// could not be written (the request is then not made).
  bool record(SystemTime now) const;
  /// Remembers that no request may go out before `until` (a later wait
  /// already recorded stays).
  bool deferUntil(SystemTime until) const;

  const std::filesystem::path& file() const noexcept { return file_; }

 private:
  struct State {
    std::string day;
    int count = 0;
    std::int64_t notBefore = 0;  ///< seconds since the epoch
  };
  State read() const;
  bool write(const State& s) const;

  std::filesystem::path file_;
};

}  // namespace modelyne::cloud
