#pragma once
/// Which addresses the cloud client may talk to. Every request and every
/// redirect is checked here first: https anywhere, plain http only to this
/// machine, no credentials in the address, at most three redirects and
/// never from https down to http. A refusal names the rule it broke.

#include <string>
#include <string_view>

namespace modelyne::cloud {

/// The rules of the policy; `kNone` when an address passed.
enum class UrlRule {
  kNone,
  kMalformed,        ///< not an absolute URL
  kScheme,           ///< a scheme other than https and http
  kPlainHttp,        ///< http to a host other than 127.0.0.1, ::1, localhost
  kCredentials,      ///< a user name or password in the URL
  kTooManyRedirects, ///< a fourth redirect
  kDowngrade,        ///< a redirect from https to http
};

/// At most this many redirects are followed for one request.
inline constexpr int kMaxRedirects = 3;

struct UrlVerdict {
  UrlRule rule = UrlRule::kNone;
  std::string reason;  ///< one sentence naming the broken rule; empty when allowed
  std::string url;     ///< the address as it will be requested (absolute)

  bool allowed() const noexcept { return rule == UrlRule::kNone; }
};

/// Checks an address before a request.
UrlVerdict CheckUrl(std::string_view url);

/// Checks a redirect from `from` (already allowed) to `location`, which may
/// be relative to `from`; `redirectsSoFar` counts the redirects already
/// followed for this request.
UrlVerdict CheckRedirect(std::string_view from, std::string_view location, int redirectsSoFar);

/// Whether `host` (as written in a URL, IPv6 in brackets) names this machine.
bool IsLoopbackHost(std::string_view host) noexcept;

}  // namespace modelyne::cloud
