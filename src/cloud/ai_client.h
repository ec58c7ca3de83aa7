#pragma once
/// The AI proxy call: one OpenAI-style chat completion per request, POSTed
/// to {base}/chat/completions with the prompt as the single user message
/// and the token budget as max_tokens; the reply's first choice is the
/// plan text. Before a request the daily limit and any wait the server
/// asked for are checked, and no request goes out past them; every failure
/// comes back as one sentence.

#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "ai/cloud_plan.h"
#include "ai/generate_flow.h"
#include "cloud/config.h"
#include "cloud/http_client.h"
#include "cloud/usage.h"

namespace modelyne::cloud {

/// The reply text, or why there is none.
struct AiOutcome {
  std::optional<std::string> text;
  std::string failure;  ///< one sentence when `text` is empty
};

/// The request body for `model`, `prompt` and `tokenBudget`.
std::string ChatRequestBody(std::string_view model, std::string_view prompt, int tokenBudget);

/// Reads a chat-completion response: status, JSON and the first choice.
AiOutcome ReadChatReply(const HttpResponse& response);

class AiClient {
 public:
  using Now = std::function<SystemTime()>;

  /// `config` must have a base URL (aiConfigured()).
  AiClient(CloudConfig config, HttpOptions http, Now now = std::chrono::system_clock::now);

  /// The daily limit as the AI Generate command wants it.
  ai::QuotaState quota() const;

  /// Sends one request, unless the daily limit is reached or the server
  /// asked to wait.
  AiOutcome Complete(std::string_view prompt, int tokenBudget);

  const CloudConfig& config() const noexcept { return config_; }

 private:
  void honourRateHeaders(const HttpResponse& r);

  CloudConfig config_;
  HttpOptions http_;
  Now now_;
  UsageLedger ledger_;
};

/// A CloudCall for the AI Generate command over `client`; each failure's
/// sentence goes to `log` (prefixed "Cloud AI: ") before the call reports
/// failure. `client` must outlive the call.
ai::CloudCall MakeCloudCall(AiClient& client, std::function<void(const std::string&)> log);

}  // namespace modelyne::cloud
