// Fuzzes what comes back from an AI proxy and where it sends us: the reply
// reader with arbitrary bodies under every interesting status and
// Retry-After header, and the URL policy with arbitrary addresses and
// redirect targets. Neither may throw; a reply is text or a reason, never
// both or neither; an allowed address is http or https with no credentials.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "cloud/ai_client.h"
#include "cloud/url_policy.h"

using namespace modelyne;

namespace {

constexpr long kStatuses[] = {200, 201, 204, 301, 400, 401, 403, 404, 429, 500, 502, 503};

void fail() { std::abort(); }

void checkAllowed(const cloud::UrlVerdict& v) {
  if (v.allowed() != v.reason.empty()) fail();
  if (!v.allowed()) return;
  if (!v.url.starts_with("http://") && !v.url.starts_with("https://")) fail();
  const std::string_view rest = std::string_view(v.url).substr(v.url.find("//") + 2);
  if (rest.substr(0, rest.find('/')).find('@') != std::string_view::npos) fail();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  if (bytes.empty()) return 0;
  cloud::HttpResponse r;
  r.status = kStatuses[static_cast<std::uint8_t>(bytes[0]) % std::size(kStatuses)];
  const std::string_view rest = bytes.substr(1);
  const std::size_t cut = rest.find('\n');
  if (cut != std::string_view::npos) r.headers.emplace_back("Retry-After", std::string(rest.substr(0, cut)));
  r.body = std::string(cut == std::string_view::npos ? rest : rest.substr(cut + 1));
  const cloud::AiOutcome out = cloud::ReadChatReply(r);
  if (out.text.has_value() == !out.failure.empty()) fail();
  if (out.text && out.text->empty()) fail();

  const std::string_view first = cut == std::string_view::npos ? rest : rest.substr(0, cut);
  const cloud::UrlVerdict v = cloud::CheckUrl(first);
  checkAllowed(v);
  if (v.allowed() && cut != std::string_view::npos) {
    const cloud::UrlVerdict next = cloud::CheckRedirect(v.url, rest.substr(cut + 1), bytes[0] % 5);
    checkAllowed(next);
    if (v.url.starts_with("https:") && next.allowed() && next.url.starts_with("http:")) fail();
  }
  return 0;
}
