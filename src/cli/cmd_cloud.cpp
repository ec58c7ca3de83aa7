// modelyne cloud test: what cloud AI configuration the tool finds, and
// whether the AI proxy answers.
#include <nlohmann/json.hpp>

#include "cli/cloud_setup.h"
#include "cli/commands.h"
#include "cli/output.h"
#include "cloud/http_client.h"
#include "cloud/usage.h"

namespace modelyne::cli {

namespace {

constexpr std::string_view kHelp =
    "usage: modelyne cloud test\n"
    "\n"
    "Prints the cloud AI configuration the tool finds: the configuration\n"
    "file (cloud.json in $XDG_DATA_HOME/modelyne or ~/.local/share/modelyne),\n"
    "the AI proxy's base URL, the model, whether an API key is set, the daily\n"
    "limit and today's use, the backend URL, each with where it came from.\n"
    "MODELYNE_PROXY_BASE_URL, MODELYNE_BACKEND_URL, MODELYNE_AI_MODEL and\n"
    "MODELYNE_AI_API_KEY override the file. Then asks the AI proxy for its\n"
    "models (GET {base}/models), which does not count towards the limit.\n"
    "\n"
    "exit status: 0 configured and answering; 1 not configured, a problem\n"
    "in the configuration, or no answer; 2 usage error.\n"
    "\n"
    "example:\n"
    "  MODELYNE_PROXY_BASE_URL=http://127.0.0.1:8080/v1 modelyne cloud test\n";

std::string from(const cloud::Setting& s) { return s.from.empty() ? " (default)" : " (from " + s.from + ")"; }

// Asks {base}/models; returns the line to print and whether it went well.
std::pair<std::string, bool> probe(const cloud::CloudConfig& c) {
  cloud::HttpRequest req;
  req.url = c.baseUrl.value + "/models";
  if (!c.apiKey.value.empty()) req.headers.emplace_back("Authorization", "Bearer " + c.apiKey.value);
  cloud::HttpOptions o = cloudHttpOptions();
  o.timeout = std::chrono::seconds(15);
  const cloud::HttpResponse r = cloud::Send(req, o);
  if (!r.ok()) return {"connection: failed: " + r.error, false};
  const std::string status = "HTTP " + std::to_string(r.status);
  if (r.status < 200 || r.status >= 300) return {"connection: failed: " + req.url + " answered " + status, false};
  std::string line = "connection: ok (" + status + " from " + req.url + ")";
  const nlohmann::json doc = nlohmann::json::parse(r.body, nullptr, false);
  if (doc.is_object() && doc.contains("data") && doc["data"].is_array()) {
    std::size_t n = 0;
    bool listed = false;
    for (const auto& m : doc["data"]) {
      ++n;
      if (m.is_object() && m.contains("id") && m["id"].is_string() && m["id"].get<std::string>() == c.model.value)
        listed = true;
    }
    line += "; " + std::to_string(n) + (n == 1 ? " model" : " models") + " served, '" + c.model.value + "' " +
            (listed ? "among them" : "not among them");
  }
  return {line, true};
}

int run(const Args& args) {
  expectPositionals(args, 1, 1, "cloud", "'test'");
  if (args.positionals[0] != "test")
    throw CliError("unknown cloud action '" + args.positionals[0] + "' (actions: test)");
  const CloudSetup setup = openCloud();
  const cloud::CloudConfig& c = setup.loaded.config;
  std::string out;
  if (c.dataDir.empty())
    out += "configuration file: none (neither XDG_DATA_HOME nor HOME is set)\n";
  else
    out += "configuration file: " + c.configFile().string() + (setup.loaded.fileFound ? "" : " (not found)") + "\n";
  out += "AI proxy: " + (c.aiConfigured() ? c.baseUrl.value + from(c.baseUrl) : std::string("not configured")) + "\n";
  out += "model: " + c.model.value + from(c.model) + "\n";
  out += "API key: " + (c.apiKey.value.empty() ? std::string("not set") : "set" + from(c.apiKey)) + "\n";
  if (c.dailyLimit > 0) {
    const int used = cloud::UsageLedger(c.usageFile()).usedOn(std::chrono::system_clock::now());
    out += "daily limit: " + std::to_string(c.dailyLimit) + " requests (from " + c.dailyLimitFrom + "), " +
           std::to_string(used) + " used today\n";
  } else {
    out += "daily limit: none\n";
  }
  out += "backend: " + (c.backendUrl.value.empty() ? std::string("not configured")
                                                    : c.backendUrl.value + from(c.backendUrl)) + "\n";
  bool good = setup.loaded.errors.empty() && c.aiConfigured();
  if (c.aiConfigured()) {
    const auto [line, ok] = probe(c);
    out += line + "\n";
    good = good && ok;
  }
  writeResult(std::nullopt, out);
  return good ? kExitOk : kExitNegative;
}

}  // namespace

const Command& cloudCommand() {
  static const Command command{"cloud", "show the cloud AI configuration and test the connection", kHelp, {}, false,
                               run};
  return command;
}

}  // namespace modelyne::cli
