#include "cloud/url_policy.h"

#include <curl/curl.h>

#include <memory>
#include <optional>

namespace modelyne::cloud {

namespace {

// ---- rule texts ----

struct RuleText {
  UrlRule rule;
  std::string_view text;
};
constexpr RuleText kRuleTexts[] = {
    {UrlRule::kMalformed, "The address is not an absolute URL such as https://host/path."},
    {UrlRule::kScheme, "Only https and http addresses are allowed."},
    {UrlRule::kPlainHttp, "Plain http is allowed only to 127.0.0.1, ::1 and localhost; use https for other hosts."},
    {UrlRule::kCredentials,
     "An address must not carry a user name or password; give the API key in MODELYNE_AI_API_KEY instead."},
    {UrlRule::kTooManyRedirects, "At most 3 redirects are followed for one request."},
    {UrlRule::kDowngrade, "A redirect from https to http is not allowed."},
};

constexpr std::string_view kLoopbackHosts[] = {"127.0.0.1", "[::1]", "localhost"};

std::string_view ruleText(UrlRule rule) {
  for (const RuleText& r : kRuleTexts)
    if (r.rule == rule) return r.text;
  return {};
}

UrlVerdict refuse(UrlRule rule) { return {rule, std::string(ruleText(rule)), {}}; }

// ---- URL handles ----

struct UrlDeleter {
  void operator()(CURLU* u) const noexcept { curl_url_cleanup(u); }
};
using UrlHandle = std::unique_ptr<CURLU, UrlDeleter>;

struct CurlText {
  char* p = nullptr;
  ~CurlText() { curl_free(p); }
};

std::optional<std::string> part(CURLU* u, CURLUPart which) {
  CurlText t;
  if (curl_url_get(u, which, &t.p, 0) != CURLUE_OK || !t.p) return std::nullopt;
  return std::string(t.p);
}

bool iequals(std::string_view a, std::string_view b) noexcept {
  if (a.size() != b.size()) return false;
  for (std::size_t i = 0; i < a.size(); ++i) {
    const auto lower = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; };
    if (lower(a[i]) != lower(b[i])) return false;
  }
  return true;
}

// The rules that look at one address on its own.
UrlVerdict judge(CURLU* u) {
  const std::optional<std::string> scheme = part(u, CURLUPART_SCHEME);
  if (!scheme) return refuse(UrlRule::kMalformed);
  const bool https = iequals(*scheme, "https");
  if (!https && !iequals(*scheme, "http")) return refuse(UrlRule::kScheme);
  const std::optional<std::string> host = part(u, CURLUPART_HOST);
  if (!host || host->empty()) return refuse(UrlRule::kMalformed);
  if (part(u, CURLUPART_USER) || part(u, CURLUPART_PASSWORD)) return refuse(UrlRule::kCredentials);
  if (!https && !IsLoopbackHost(*host)) return refuse(UrlRule::kPlainHttp);
  UrlVerdict ok;
  ok.url = part(u, CURLUPART_URL).value_or(std::string());
  if (ok.url.empty()) return refuse(UrlRule::kMalformed);
  return ok;
}

UrlHandle parse(std::string_view url, CURLU* base = nullptr) {
  UrlHandle u(base ? curl_url_dup(base) : curl_url());
  if (!u) return nullptr;
  const std::string text(url);
  // Other schemes parse so that the refusal can name the scheme rule.
  if (text.find('\0') != std::string::npos ||
      curl_url_set(u.get(), CURLUPART_URL, text.c_str(), CURLU_NON_SUPPORT_SCHEME) != CURLUE_OK)
    return nullptr;
  return u;
}

}  // namespace

bool IsLoopbackHost(std::string_view host) noexcept {
  for (std::string_view h : kLoopbackHosts)
    if (iequals(host, h)) return true;
  return false;
}

UrlVerdict CheckUrl(std::string_view url) {
  const UrlHandle u = parse(url);
  if (!u) return refuse(UrlRule::kMalformed);
  return judge(u.get());
}

UrlVerdict CheckRedirect(std::string_view from, std::string_view location, int redirectsSoFar) {
  if (redirectsSoFar >= kMaxRedirects) return refuse(UrlRule::kTooManyRedirects);
  const UrlHandle base = parse(from);
  if (!base) return refuse(UrlRule::kMalformed);
  const UrlHandle target = parse(location, base.get());
  if (!target) return refuse(UrlRule::kMalformed);
  UrlVerdict v = judge(target.get());
  if (!v.allowed()) return v;
  const std::optional<std::string> fromScheme = part(base.get(), CURLUPART_SCHEME);
  const std::optional<std::string> toScheme = part(target.get(), CURLUPART_SCHEME);
  if (fromScheme && toScheme && iequals(*fromScheme, "https") && iequals(*toScheme, "http"))
    return refuse(UrlRule::kDowngrade);
  return v;
}

}  // namespace modelyne::cloud
