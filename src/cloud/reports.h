#pragma once
/// AI content reports: the user flags a generated result (the prompt, the
/// reply and why) to {backend}/v1/ai/reports.

#include <string>

#include "cloud/config.h"
#include "cloud/http_client.h"

namespace modelyne::cloud {

struct ContentReport {
  std::string prompt;
  std::string reply;
  std::string reason;
};

/// Whether the report was accepted, and why not.
struct ReportOutcome {
  bool sent = false;
  std::string failure;  ///< one sentence when not sent
};

/// The JSON body of a report.
std::string ReportBody(const ContentReport& report, std::string_view model);

/// POSTs the report with the API key as bearer token when there is one.
ReportOutcome SendContentReport(const CloudConfig& config, const HttpOptions& http, const ContentReport& report);

}  // namespace modelyne::cloud
