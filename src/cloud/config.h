#pragma once
/// Where the cloud services are and how much they may be used. The file
/// "cloud.json" in the application-data folder holds the AI proxy's base
/// URL, the backend URL, the model name and the daily limit; the
/// environment overrides it (MODELYNE_PROXY_BASE_URL, MODELYNE_BACKEND_URL,
/// MODELYNE_AI_MODEL, MODELYNE_AI_API_KEY). Both URLs pass the URL policy;
/// a refused one is dropped with an error naming its rule.

#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace modelyne::cloud {

/// Looks up an environment variable; nothing when it is not set.
using Environment = std::function<std::optional<std::string>(std::string_view name)>;

/// The process environment.
Environment ProcessEnvironment();

inline constexpr std::string_view kEnvProxyBaseUrl = "MODELYNE_PROXY_BASE_URL";
inline constexpr std::string_view kEnvBackendUrl = "MODELYNE_BACKEND_URL";
inline constexpr std::string_view kEnvModel = "MODELYNE_AI_MODEL";
inline constexpr std::string_view kEnvApiKey = "MODELYNE_AI_API_KEY";
inline constexpr std::string_view kConfigFileName = "cloud.json";
inline constexpr std::string_view kDefaultModel = "default";

/// A setting and where it came from: an environment variable's name, the
/// configuration file's path, or empty for the built-in default.
struct Setting {
  std::string value;
  std::string from;
};

struct CloudConfig {
  std::filesystem::path dataDir;  ///< the application-data folder; empty when none is known
  Setting baseUrl;                ///< AI proxy, e.g. http://127.0.0.1:8080/v1; empty: no cloud AI
  Setting backendUrl;             ///< content reports go to {backend}/v1/ai/reports; empty: none
  Setting model{std::string(kDefaultModel), {}};
  Setting apiKey;                 ///< sent as a bearer token when set
  int dailyLimit = 0;             ///< requests per calendar day; 0: no limit
  std::string dailyLimitFrom;

  bool aiConfigured() const noexcept { return !baseUrl.value.empty(); }
  std::filesystem::path configFile() const { return dataDir / kConfigFileName; }
  std::filesystem::path usageFile() const { return dataDir / "cloud_usage.json"; }
};

/// A problem with one source of settings: `where` is the file path or the
/// variable's name, `what` one sentence.
struct ConfigError {
  std::string where;
  std::string what;
};

struct LoadedConfig {
  CloudConfig config;
  bool fileFound = false;
  std::vector<ConfigError> errors;
};

/// The application-data folder: $XDG_DATA_HOME/modelyne, else
/// $HOME/.local/share/modelyne; empty when neither variable is set.
std::filesystem::path AppDataDir(const Environment& env);

/// Reads the configuration file (a missing file is no error) and applies the
/// environment's overrides. Never throws.
LoadedConfig LoadConfig(const Environment& env);

}  // namespace modelyne::cloud
