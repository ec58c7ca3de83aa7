#include "cloud/usage.h"

#include <ctime>
#include <fstream>
#include <nlohmann/json.hpp>
#include <sstream>
#include <system_error>

namespace modelyne::cloud {

namespace {

using nlohmann::json;

std::int64_t epochSeconds(SystemTime t) {
  return std::chrono::duration_cast<std::chrono::seconds>(t.time_since_epoch()).count();
}

}  // namespace

std::string CalendarDay(SystemTime t) {
  const std::time_t tt = std::chrono::system_clock::to_time_t(t);
  std::tm local{};
  localtime_r(&tt, &local);
  char buf[16];
  std::strftime(buf, sizeof buf, "%Y-%m-%d", &local);
  return buf;
}

UsageLedger::State UsageLedger::read() const {
  State s;
  std::ifstream in(file_, std::ios::binary);
  if (!in) return s;
  std::ostringstream text;
  text << in.rdbuf();
  const json doc = json::parse(text.str(), nullptr, false);
  if (!doc.is_object()) return s;
  if (const auto it = doc.find("day"); it != doc.end() && it->is_string()) s.day = it->get<std::string>();
  if (const auto it = doc.find("requests"); it != doc.end() && it->is_number_integer())
    s.count = static_cast<int>(std::max<long long>(0, std::min<long long>(it->get<long long>(), 1 << 30)));
  if (const auto it = doc.find("notBefore"); it != doc.end() && it->is_number_integer())
    s.notBefore = it->get<std::int64_t>();
  return s;
}

bool UsageLedger::write(const State& s) const {
  std::error_code ec;
  std::filesystem::create_directories(file_.parent_path(), ec);
  // Written beside the ledger and renamed over it, so a crash never leaves
  // half a file.
  const std::filesystem::path tmp = file_.string() + ".tmp";
  {
    std::ofstream out(tmp, std::ios::binary | std::ios::trunc);
    if (!out) return false;
    out << json{{"day", s.day}, {"requests", s.count}, {"notBefore", s.notBefore}}.dump() << '\n';
    if (!out.flush()) return false;
  }
  std::filesystem::rename(tmp, file_, ec);
  return !ec;
}

int UsageLedger::usedOn(SystemTime now) const {
  const State s = read();
  return s.day == CalendarDay(now) ? s.count : 0;
}

std::int64_t UsageLedger::waitSeconds(SystemTime now) const {
  const std::int64_t left = read().notBefore - epochSeconds(now);
  return left > 0 ? left : 0;
}

bool UsageLedger::record(SystemTime now) const {
  State s = read();
  const std::string today = CalendarDay(now);
  if (s.day != today) {
    s.day = today;
    s.count = 0;
  }
  ++s.count;
  return write(s);
}

bool UsageLedger::deferUntil(SystemTime until) const {
  State s = read();
  s.notBefore = std::max(s.notBefore, epochSeconds(until));
  return write(s);
}

}  // namespace modelyne::cloud
