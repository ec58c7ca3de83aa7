#pragma once
/// The tool's cloud AI: the configuration from the application-data folder
/// and the environment, its problems as warnings on standard error, and
/// the client the AI Generate command calls.

#include <memory>
#include <string>
#include <vector>

#include "ai/cloud_plan.h"
#include "ai/generate_flow.h"
#include "cloud/ai_client.h"
#include "cloud/config.h"

namespace modelyne::cli {

struct CloudSetup {
  cloud::LoadedConfig loaded;
  std::unique_ptr<cloud::AiClient> client;  ///< none when no AI proxy is configured
  ai::CloudCall call;                       ///< empty when none
  ai::QuotaState quota;
  /// Why calls failed ("Cloud AI: ..."), in order, for the caller to print
  /// beside the flow's fall-back message.
  std::shared_ptr<std::vector<std::string>> failures = std::make_shared<std::vector<std::string>>();
};

/// Reads the configuration and prints each problem as
/// "modelyne: warning: WHERE: WHAT".
CloudSetup openCloud();

/// The client's transfer settings: 10 s to connect, 120 s for a reply
/// (a model on a laptop may take that long for 1024 tokens), 4 MiB at most.
cloud::HttpOptions cloudHttpOptions();

}  // namespace modelyne::cli
