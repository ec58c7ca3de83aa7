#include "cli/cloud_setup.h"

#include "cli/output.h"

namespace modelyne::cli {

cloud::HttpOptions cloudHttpOptions() {
  cloud::HttpOptions o;
  o.connectTimeout = std::chrono::seconds(10);
  o.timeout = std::chrono::seconds(120);
  o.maxResponseBytes = 4u << 20;
  return o;
}

CloudSetup openCloud() {
  CloudSetup s;
  s.loaded = cloud::LoadConfig(cloud::ProcessEnvironment());
  for (const cloud::ConfigError& e : s.loaded.errors) diagnostic("modelyne: warning: " + located(e.where, 0, e.what));
  if (!s.loaded.config.aiConfigured()) return s;
  s.client = std::make_unique<cloud::AiClient>(s.loaded.config, cloudHttpOptions());
  s.call = cloud::MakeCloudCall(*s.client, [failures = s.failures](const std::string& line) {
    failures->push_back(line);
  });
  s.quota = s.client->quota();
  return s;
}

}  // namespace modelyne::cli
