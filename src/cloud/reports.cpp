#include "cloud/reports.h"

#include <nlohmann/json.hpp>

namespace modelyne::cloud {

std::string ReportBody(const ContentReport& report, std::string_view model) {
  const nlohmann::json body = {
      {"prompt", report.prompt},
      {"reply", report.reply},
      {"reason", report.reason},
      {"model", std::string(model)},
  };
  return body.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
}

ReportOutcome SendContentReport(const CloudConfig& config, const HttpOptions& http, const ContentReport& report) {
  if (config.backendUrl.value.empty()) return {false, "No backend is configured; set MODELYNE_BACKEND_URL."};
  HttpRequest req;
  req.method = "POST";
  req.url = config.backendUrl.value + "/v1/ai/reports";
  req.headers.emplace_back("Content-Type", "application/json");
  if (!config.apiKey.value.empty()) req.headers.emplace_back("Authorization", "Bearer " + config.apiKey.value);
  req.body = ReportBody(report, config.model.value);
  const HttpResponse r = Send(req, http);
  if (!r.ok()) return {false, r.error};
  if (r.status < 200 || r.status >= 300)
    return {false, "The backend did not accept the report (HTTP " + std::to_string(r.status) + ")."};
  return {true, {}};
}

}  // namespace modelyne::cloud
