#include "cloud/config.h"

#include <cstdlib>
#include <fstream>
#include <nlohmann/json.hpp>
#include <sstream>

#include "cloud/url_policy.h"

namespace modelyne::cloud {

namespace {

using nlohmann::json;

// ---- the file ----

// The file's keys; anything else is an error, so that a misspelt key is
// not silently ignored.
constexpr std::string_view kKeyBaseUrl = "baseUrl";
constexpr std::string_view kKeyBackendUrl = "backendUrl";
constexpr std::string_view kKeyModel = "model";
constexpr std::string_view kKeyDailyLimit = "dailyLimit";
constexpr std::string_view kFileKeys[] = {kKeyBaseUrl, kKeyBackendUrl, kKeyModel, kKeyDailyLimit};

void readFile(LoadedConfig& out) {
  CloudConfig& c = out.config;
  const std::string path = c.configFile().string();
  std::ifstream in(c.configFile(), std::ios::binary);
  if (!in) return;
  out.fileFound = true;
  std::ostringstream text;
  text << in.rdbuf();
  json doc;
  try {
    doc = json::parse(text.str());
  } catch (const json::parse_error& e) {
    out.errors.push_back({path, "not valid JSON at byte " + std::to_string(e.byte) + "."});
    return;
  } catch (const json::exception&) {
    // A number beyond double's range is valid JSON that the parser refuses.
    out.errors.push_back({path, "holds a number too large to read."});
    return;
  }
  if (!doc.is_object()) {
    out.errors.push_back({path, "the file must hold one JSON object."});
    return;
  }
  for (const auto& [key, value] : doc.items()) {
    bool known = false;
    for (std::string_view k : kFileKeys) known = known || key == k;
    if (!known) out.errors.push_back({path, "unknown key \"" + key + "\"."});
  }
  const auto readString = [&](std::string_view key, Setting& s) {
    const auto it = doc.find(key);
    if (it == doc.end()) return;
    if (!it->is_string()) {
      out.errors.push_back({path, "\"" + std::string(key) + "\" must be a string."});
      return;
    }
    s = {it->get<std::string>(), path};
  };
  readString(kKeyBaseUrl, c.baseUrl);
  readString(kKeyBackendUrl, c.backendUrl);
  readString(kKeyModel, c.model);
  if (const auto it = doc.find(kKeyDailyLimit); it != doc.end()) {
    if (!it->is_number_integer() || it->get<long long>() < 0 || it->get<long long>() > 1000000) {
      out.errors.push_back({path, "\"dailyLimit\" must be a whole number from 0 to 1000000 (0: no limit)."});
    } else {
      c.dailyLimit = static_cast<int>(it->get<long long>());
      c.dailyLimitFrom = path;
    }
  }
}

void applyEnv(const Environment& env, std::string_view name, Setting& s) {
  if (const std::optional<std::string> v = env(name); v && !v->empty()) s = {*v, std::string(name)};
}

// A URL that breaks the policy is dropped: better no cloud than the wrong one.
void police(Setting& url, std::vector<ConfigError>& errors) {
  if (url.value.empty()) return;
  const UrlVerdict v = CheckUrl(url.value);
  if (!v.allowed()) {
    errors.push_back({url.from, v.reason});
    url = {};
    return;
  }
  while (url.value.size() > 1 && url.value.back() == '/') url.value.pop_back();
}

}  // namespace

Environment ProcessEnvironment() {
  return [](std::string_view name) -> std::optional<std::string> {
    const char* v = std::getenv(std::string(name).c_str());
    if (!v) return std::nullopt;
    return std::string(v);
  };
}

std::filesystem::path AppDataDir(const Environment& env) {
  if (const auto xdg = env("XDG_DATA_HOME"); xdg && !xdg->empty() && std::filesystem::path(*xdg).is_absolute())
    return std::filesystem::path(*xdg) / "modelyne";
  if (const auto home = env("HOME"); home && !home->empty())
    return std::filesystem::path(*home) / ".local" / "share" / "modelyne";
  return {};
}

LoadedConfig LoadConfig(const Environment& env) {
  LoadedConfig out;
  try {
    out.config.dataDir = AppDataDir(env);
    if (!out.config.dataDir.empty()) readFile(out);
    applyEnv(env, kEnvProxyBaseUrl, out.config.baseUrl);
    applyEnv(env, kEnvBackendUrl, out.config.backendUrl);
    applyEnv(env, kEnvModel, out.config.model);
    applyEnv(env, kEnvApiKey, out.config.apiKey);
    police(out.config.baseUrl, out.errors);
    police(out.config.backendUrl, out.errors);
  } catch (const std::exception& e) {
    out.errors.push_back({out.config.configFile().string(), e.what()});
  }
  return out;
}

}  // namespace modelyne::cloud
