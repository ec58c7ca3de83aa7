#include "cloud/http_client.h"

#include <curl/curl.h>

#include <cstdlib>
#include <memory>
#include <mutex>

#include "cloud/url_policy.h"

namespace modelyne::cloud {

namespace {

// ---- libcurl plumbing ----

void globalInit() {
  static std::once_flag once;
  std::call_once(once, [] { curl_global_init(CURL_GLOBAL_DEFAULT); });
}

struct EasyDeleter {
  void operator()(CURL* c) const noexcept { curl_easy_cleanup(c); }
};
struct ListDeleter {
  void operator()(curl_slist* l) const noexcept { curl_slist_free_all(l); }
};

struct Transfer {
  HttpResponse* response = nullptr;
  std::size_t cap = 0;
  bool tooLarge = false;
  const std::atomic<bool>* cancel = nullptr;
};

std::size_t onBody(char* data, std::size_t size, std::size_t count, void* user) {
  auto* t = static_cast<Transfer*>(user);
  const std::size_t n = size * count;
  if (t->response->body.size() + n > t->cap) {
    t->tooLarge = true;
    return 0;  // makes libcurl stop with a write error
  }
  t->response->body.append(data, n);
  return n;
}

std::string_view trim(std::string_view s) {
  while (!s.empty() && (s.front() == ' ' || s.front() == '\t')) s.remove_prefix(1);
  while (!s.empty() && (s.back() == ' ' || s.back() == '\t' || s.back() == '\r' || s.back() == '\n'))
    s.remove_suffix(1);
  return s;
}

std::size_t onHeader(char* data, std::size_t size, std::size_t count, void* user) {
  auto* t = static_cast<Transfer*>(user);
  const std::size_t n = size * count;
  const std::string_view line(data, n);
  // A status line starts a new response (after a 100 Continue, say): keep
  // only the last response's headers.
  if (line.starts_with("HTTP/")) {
    t->response->headers.clear();
  } else if (const std::size_t colon = line.find(':'); colon != std::string_view::npos) {
    t->response->headers.emplace_back(std::string(trim(line.substr(0, colon))),
                                      std::string(trim(line.substr(colon + 1))));
  }
  return n;
}

int onProgress(void* user, curl_off_t, curl_off_t, curl_off_t, curl_off_t) {
  const auto* t = static_cast<Transfer*>(user);
  return t->cancel && t->cancel->load() ? 1 : 0;
}

bool iequals(std::string_view a, std::string_view b) noexcept {
  if (a.size() != b.size()) return false;
  for (std::size_t i = 0; i < a.size(); ++i) {
    const auto lower = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; };
    if (lower(a[i]) != lower(b[i])) return false;
  }
  return true;
}

void fail(HttpResponse& r, HttpFailure f, std::string error) {
  r.failure = f;
  r.error = std::move(error);
}

// The environment's no_proxy list plus this machine: a model served on
// loopback is never reached through a proxy.
std::string noProxyList() {
  std::string list;
  for (const char* name : {"no_proxy", "NO_PROXY"}) {
    if (const char* v = std::getenv(name); v && *v) {
      list = v;
      break;
    }
  }
  if (list == "*") return list;
  if (!list.empty()) list += ',';
  return list + "127.0.0.1,::1,localhost";
}

// ---- one hop ----

using Clock = std::chrono::steady_clock;

// Sends one request without following redirects.
void sendOnce(const HttpRequest& req, const HttpOptions& opt, Clock::time_point deadline, HttpResponse& r) {
  r.status = 0;
  r.headers.clear();
  r.body.clear();
  const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now());
  if (left.count() <= 0)
    return fail(r, HttpFailure::kTimeout,
                "No complete reply within " + std::to_string(opt.timeout.count()) + " ms.");

  std::unique_ptr<CURL, EasyDeleter> easy(curl_easy_init());
  if (!easy) return fail(r, HttpFailure::kNetwork, "The HTTP library could not start a transfer.");
  CURL* c = easy.get();
  Transfer t{&r, opt.maxResponseBytes, false, opt.cancel};
  char errbuf[CURL_ERROR_SIZE] = {};

  curl_slist* raw = nullptr;
  for (const auto& [name, value] : req.headers) raw = curl_slist_append(raw, (name + ": " + value).c_str());
  // No "Expect: 100-continue" round trip for larger bodies.
  raw = curl_slist_append(raw, "Expect:");
  const std::unique_ptr<curl_slist, ListDeleter> headers(raw);

  curl_easy_setopt(c, CURLOPT_URL, r.url.c_str());
  curl_easy_setopt(c, CURLOPT_PROTOCOLS_STR, "http,https");
  const std::string noProxy = noProxyList();
  curl_easy_setopt(c, CURLOPT_NOPROXY, noProxy.c_str());
  curl_easy_setopt(c, CURLOPT_FOLLOWLOCATION, 0L);  // redirects pass the policy here, hop by hop
  curl_easy_setopt(c, CURLOPT_SSL_VERIFYPEER, 1L);
  curl_easy_setopt(c, CURLOPT_SSL_VERIFYHOST, 2L);
  if (!opt.caBundle.empty()) curl_easy_setopt(c, CURLOPT_CAINFO, opt.caBundle.c_str());
  curl_easy_setopt(c, CURLOPT_NOSIGNAL, 1L);
  curl_easy_setopt(c, CURLOPT_CONNECTTIMEOUT_MS, static_cast<long>(opt.connectTimeout.count()));
  curl_easy_setopt(c, CURLOPT_TIMEOUT_MS, static_cast<long>(left.count()));
  curl_easy_setopt(c, CURLOPT_MAXFILESIZE_LARGE, static_cast<curl_off_t>(opt.maxResponseBytes));
  curl_easy_setopt(c, CURLOPT_WRITEFUNCTION, onBody);
  curl_easy_setopt(c, CURLOPT_WRITEDATA, &t);
  curl_easy_setopt(c, CURLOPT_HEADERFUNCTION, onHeader);
  curl_easy_setopt(c, CURLOPT_HEADERDATA, &t);
  curl_easy_setopt(c, CURLOPT_XFERINFOFUNCTION, onProgress);
  curl_easy_setopt(c, CURLOPT_XFERINFODATA, &t);
  curl_easy_setopt(c, CURLOPT_NOPROGRESS, 0L);
  curl_easy_setopt(c, CURLOPT_ERRORBUFFER, errbuf);
  curl_easy_setopt(c, CURLOPT_HTTPHEADER, headers.get());
  if (iequals(req.method, "POST")) {
    curl_easy_setopt(c, CURLOPT_POST, 1L);
    curl_easy_setopt(c, CURLOPT_POSTFIELDS, req.body.data());
    curl_easy_setopt(c, CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(req.body.size()));
  } else {
    curl_easy_setopt(c, CURLOPT_HTTPGET, 1L);
  }

  const CURLcode code = curl_easy_perform(c);
  curl_easy_getinfo(c, CURLINFO_RESPONSE_CODE, &r.status);
  if (code == CURLE_OK) return;
  const std::string detail = errbuf[0] ? std::string(errbuf) : std::string(curl_easy_strerror(code));
  switch (code) {
    case CURLE_OPERATION_TIMEDOUT:
      return fail(r, HttpFailure::kTimeout,
                  "No complete reply within " + std::to_string(opt.timeout.count()) + " ms.");
    case CURLE_ABORTED_BY_CALLBACK: return fail(r, HttpFailure::kCancelled, "The request was cancelled.");
    case CURLE_FILESIZE_EXCEEDED:
      return fail(r, HttpFailure::kTooLarge,
                  "The reply is larger than " + std::to_string(opt.maxResponseBytes) + " bytes.");
    case CURLE_WRITE_ERROR:
      if (t.tooLarge)
        return fail(r, HttpFailure::kTooLarge,
                    "The reply is larger than " + std::to_string(opt.maxResponseBytes) + " bytes.");
      break;
    case CURLE_PEER_FAILED_VERIFICATION:
    case CURLE_SSL_CONNECT_ERROR:
    case CURLE_SSL_CACERT_BADFILE:
    case CURLE_SSL_CERTPROBLEM:
      return fail(r, HttpFailure::kTls, "The server's identity could not be verified: " + detail + ".");
    default: break;
  }
  fail(r, HttpFailure::kNetwork, "The server could not be reached: " + detail + ".");
}

bool isRedirect(long status) {
  return status == 301 || status == 302 || status == 303 || status == 307 || status == 308;
}

}  // namespace

std::string_view HttpResponse::header(std::string_view name) const noexcept {
  for (const auto& [n, v] : headers)
    if (iequals(n, name)) return v;
  return {};
}

HttpResponse Send(const HttpRequest& request, const HttpOptions& options) {
  globalInit();
  HttpResponse r;
  const UrlVerdict first = CheckUrl(request.url);
  if (!first.allowed()) {
    fail(r, HttpFailure::kRefused, first.reason);
    return r;
  }
  r.url = first.url;
  const Clock::time_point deadline = Clock::now() + options.timeout;
  HttpRequest hop = request;
  for (;;) {
    sendOnce(hop, options, deadline, r);
    if (!r.ok() || !isRedirect(r.status)) return r;
    const std::string location(r.header("Location"));
    if (location.empty()) return r;  // a redirect without a target is the answer
    const UrlVerdict next = CheckRedirect(r.url, location, r.redirects);
    if (!next.allowed()) {
      fail(r, HttpFailure::kRefused, "A redirect was refused. " + next.reason);
      return r;
    }
    ++r.redirects;
    r.url = next.url;
    if (r.status == 303 || ((r.status == 301 || r.status == 302) && iequals(hop.method, "POST"))) {
      hop.method = "GET";
      hop.body.clear();
    }
  }
}

}  // namespace modelyne::cloud
