#include "cloud/ai_client.h"

#include <charconv>
#include <ctime>
#include <nlohmann/json.hpp>

namespace modelyne::cloud {

namespace {

using nlohmann::json;

// Longest server error message quoted in a failure sentence.
constexpr std::size_t kMaxQuotedError = 200;

// ---- headers ----

std::optional<std::int64_t> wholeNumber(std::string_view s) {
  while (!s.empty() && s.front() == ' ') s.remove_prefix(1);
  while (!s.empty() && s.back() == ' ') s.remove_suffix(1);
  std::int64_t v = 0;
  const auto [end, ec] = std::from_chars(s.data(), s.data() + s.size(), v);
  if (ec != std::errc() || end != s.data() + s.size() || v < 0) return std::nullopt;
  return v;
}

// Retry-After as seconds from `now`: delta-seconds or an HTTP date.
std::optional<std::int64_t> retryAfter(std::string_view value, SystemTime now) {
  if (value.empty()) return std::nullopt;
  if (const auto secs = wholeNumber(value)) return secs;
  std::tm tm{};
  const std::string text(value);
  const char* end = strptime(text.c_str(), "%a, %d %b %Y %H:%M:%S GMT", &tm);
  if (!end || *end) return std::nullopt;
  const std::int64_t at = timegm(&tm);
  const std::int64_t nowSecs = std::chrono::duration_cast<std::chrono::seconds>(now.time_since_epoch()).count();
  return at > nowSecs ? at - nowSecs : 0;
}

// One parameter of the structured "RateLimit: limit=10, remaining=0, reset=30".
std::optional<std::int64_t> rateLimitParam(std::string_view header, std::string_view name) {
  std::size_t pos = 0;
  while (pos < header.size()) {
    std::size_t end = header.find_first_of(",;", pos);
    if (end == std::string_view::npos) end = header.size();
    std::string_view item = header.substr(pos, end - pos);
    while (!item.empty() && item.front() == ' ') item.remove_prefix(1);
    if (item.starts_with(name) && item.size() > name.size() && item[name.size()] == '=')
      return wholeNumber(item.substr(name.size() + 1));
    pos = end + 1;
  }
  return std::nullopt;
}

std::string serverMessage(const std::string& body) {
  const json doc = json::parse(body, nullptr, false);
  if (!doc.is_object()) return {};
  const auto err = doc.find("error");
  if (err == doc.end()) return {};
  std::string msg;
  if (err->is_string()) msg = err->get<std::string>();
  else if (err->is_object() && err->contains("message") && (*err)["message"].is_string())
    msg = (*err)["message"].get<std::string>();
  if (msg.size() > kMaxQuotedError) msg = msg.substr(0, kMaxQuotedError) + "...";
  return msg;
}

std::string withServerMessage(std::string sentence, const HttpResponse& r) {
  const std::string msg = serverMessage(r.body);
  if (!msg.empty()) sentence += " The server said: " + msg;
  return sentence;
}

AiOutcome failure(std::string why) { return {std::nullopt, std::move(why)}; }

bool blank(std::string_view s) { return s.find_first_not_of(" \t\r\n") == std::string_view::npos; }

}  // namespace

std::string ChatRequestBody(std::string_view model, std::string_view prompt, int tokenBudget) {
  const json body = {
      {"model", std::string(model)},
      {"messages", json::array({json{{"role", "user"}, {"content", std::string(prompt)}}})},
      {"max_tokens", tokenBudget},
  };
  // Invalid UTF-8 in a prompt is replaced, not a reason to throw.
  return body.dump(-1, ' ', false, json::error_handler_t::replace);
}

AiOutcome ReadChatReply(const HttpResponse& r) {
  if (!r.ok()) return failure(r.error);
  const std::string code = " (HTTP " + std::to_string(r.status) + ").";
  if (r.status == 401 || r.status == 403)
    return failure(withServerMessage("The server refused the API key" + code, r));
  if (r.status == 429) {
    const std::string_view after = r.header("Retry-After");
    const auto secs = after.empty() ? std::nullopt : wholeNumber(after);
    std::string s = "The server is limiting requests" + code;
    if (secs) s += " It asked to wait " + std::to_string(*secs) + " seconds.";
    return failure(withServerMessage(std::move(s), r));
  }
  if (r.status >= 500) return failure(withServerMessage("The server failed" + code, r));
  if (r.status < 200 || r.status >= 300)
    return failure(withServerMessage("The server did not accept the request" + code, r));
  if (blank(r.body)) return failure("The server's reply is empty.");
  json doc;
  try {
    doc = json::parse(r.body);
  } catch (const json::parse_error& e) {
    return failure("The server's reply is not valid JSON (byte " + std::to_string(e.byte) + ").");
  } catch (const json::exception&) {
    // A number beyond double's range is valid JSON that the parser refuses.
    return failure("The server's reply holds a number too large to read.");
  }
  const json* content = nullptr;
  if (doc.is_object() && doc.contains("choices") && doc["choices"].is_array() && !doc["choices"].empty()) {
    const json& first = doc["choices"][0];
    if (first.is_object() && first.contains("message") && first["message"].is_object() &&
        first["message"].contains("content"))
      content = &first["message"]["content"];
  }
  if (!content || !(content->is_string() || content->is_null()))
    return failure("The server's reply has no choices[0].message.content.");
  if (content->is_null() || blank(content->get_ref<const std::string&>()))
    return failure("The server's reply is empty.");
  return {content->get<std::string>(), {}};
}

AiClient::AiClient(CloudConfig config, HttpOptions http, Now now)
    : config_(std::move(config)), http_(std::move(http)), now_(std::move(now)), ledger_(config_.usageFile()) {}

ai::QuotaState AiClient::quota() const {
  if (config_.dailyLimit <= 0) return {};
  return {true, std::max(0, config_.dailyLimit - ledger_.usedOn(now_()))};
}

void AiClient::honourRateHeaders(const HttpResponse& r) {
  const SystemTime now = now_();
  std::optional<std::int64_t> wait;
  if (r.status == 429 || r.status == 503) wait = retryAfter(r.header("Retry-After"), now);
  // RateLimit (IETF draft): remaining 0 means the next request must wait
  // until the window resets.
  std::optional<std::int64_t> remaining = wholeNumber(r.header("RateLimit-Remaining"));
  std::optional<std::int64_t> reset = wholeNumber(r.header("RateLimit-Reset"));
  if (const std::string_view combined = r.header("RateLimit"); !combined.empty()) {
    if (!remaining) remaining = rateLimitParam(combined, "remaining");
    if (!reset) reset = rateLimitParam(combined, "reset");
  }
  if (remaining && *remaining == 0 && reset) wait = std::max(wait.value_or(0), *reset);
  if (wait && *wait > 0) ledger_.deferUntil(now + std::chrono::seconds(*wait));
}

AiOutcome AiClient::Complete(std::string_view prompt, int tokenBudget) {
  if (!config_.aiConfigured()) return failure("No AI proxy is configured.");
  const SystemTime now = now_();
  if (const std::int64_t wait = ledger_.waitSeconds(now); wait > 0)
    return failure("The server asked to wait another " + std::to_string(wait) + " seconds; no request was sent.");
  if (config_.dailyLimit > 0 && ledger_.usedOn(now) >= config_.dailyLimit)
    return failure("The daily limit of " + std::to_string(config_.dailyLimit) +
                   " requests is reached; no request was sent.");
  // Counted before it goes out, so that a crash mid-request still counts.
  if (!ledger_.record(now))
    return failure("The usage ledger " + ledger_.file().string() + " could not be written; no request was sent.");

  HttpRequest req;
  req.method = "POST";
  req.url = config_.baseUrl.value + "/chat/completions";
  req.headers.emplace_back("Content-Type", "application/json");
  req.headers.emplace_back("Accept", "application/json");
  if (!config_.apiKey.value.empty()) req.headers.emplace_back("Authorization", "Bearer " + config_.apiKey.value);
  req.body = ChatRequestBody(config_.model.value, prompt, tokenBudget);
  const HttpResponse r = Send(req, http_);
  if (r.ok()) honourRateHeaders(r);
  return ReadChatReply(r);
}

ai::CloudCall MakeCloudCall(AiClient& client, std::function<void(const std::string&)> log) {
  return [&client, log = std::move(log)](std::string_view, std::string_view prompt,
                                         int tokenBudget) -> std::optional<std::string> {
    AiOutcome out = client.Complete(prompt, tokenBudget);
    if (!out.text && log) log("Cloud AI: " + out.failure);
    return std::move(out.text);
  };
}

}  // namespace modelyne::cloud
