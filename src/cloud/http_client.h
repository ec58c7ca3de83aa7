#pragma once
/// A small blocking HTTP client over libcurl for the cloud services. Every
/// address, and every redirect, passes the URL policy first; TLS peers are
/// always verified; proxies come from the environment (https_proxy,
/// http_proxy, no_proxy); a transfer stops at its timeout, at the response
/// size cap, or when its cancel flag is raised.

#include <atomic>
#include <chrono>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace modelyne::cloud {

struct HttpRequest {
  std::string method = "GET";  ///< "GET" or "POST"
  std::string url;
  std::vector<std::pair<std::string, std::string>> headers;  ///< name, value
  std::string body;
};

/// How one transfer ended, before any HTTP status is looked at.
enum class HttpFailure {
  kNone,
  kRefused,    ///< the URL policy refused the address or a redirect
  kTimeout,
  kCancelled,
  kTooLarge,   ///< the response passed the size cap
  kTls,        ///< the peer's certificate did not verify, or the handshake failed
  kNetwork,    ///< name lookup, connection or transfer failed
};

struct HttpResponse {
  HttpFailure failure = HttpFailure::kNone;
  std::string error;  ///< one sentence when `failure` is set
  long status = 0;    ///< HTTP status of the final response
  std::vector<std::pair<std::string, std::string>> headers;  ///< of the final response, in order
  std::string body;
  std::string url;    ///< the address that answered last
  int redirects = 0;

  bool ok() const noexcept { return failure == HttpFailure::kNone; }
  /// The first header of that name (any case), or empty.
  std::string_view header(std::string_view name) const noexcept;
};

struct HttpOptions {
  std::chrono::milliseconds connectTimeout{5000};
  std::chrono::milliseconds timeout{120000};  ///< the whole transfer, redirects included
  std::size_t maxResponseBytes = 4u << 20;
  /// A CA bundle to trust instead of the system's; empty: the system's.
  /// Verification stays on either way.
  std::string caBundle;
  const std::atomic<bool>* cancel = nullptr;  ///< raised: stop as soon as possible
};

/// Sends `request`, following at most three redirects the policy allows
/// (303, and 301/302 after a POST, continue as GET). Never throws for
/// network trouble: the response says what went wrong.
HttpResponse Send(const HttpRequest& request, const HttpOptions& options);

}  // namespace modelyne::cloud
