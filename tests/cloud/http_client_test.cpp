// The HTTP client against a loopback server: answers, redirects under the
// policy, timeouts, cancellation, the size cap and verified TLS.
#include <gtest/gtest.h>

#include <chrono>
#include <thread>

#include "cloud/http_client.h"
#include "test_server.h"

namespace modelyne::cloud {
namespace {

using namespace std::chrono_literals;
using test::TestServer;

HttpOptions quick() {
  HttpOptions o;
  o.connectTimeout = 1000ms;
  o.timeout = 2000ms;
  return o;
}

// Sleeps up to `total`, in steps, so that a stopping server is not held up long.
void nap(std::chrono::milliseconds total) {
  for (auto slept = 0ms; slept < total; slept += 20ms) std::this_thread::sleep_for(20ms);
}

// A GET and a POST reach the server with their headers and body; the answer
// comes back whole with its status and headers.
TEST(HttpClient, SendsAndReceives) {
  TestServer s;
  std::string seenBody, seenAuth;
  s.routes().Post("/echo", [&](const httplib::Request& req, httplib::Response& res) {
    seenBody = req.body;
    seenAuth = req.get_header_value("Authorization");
    res.status = 201;
    res.set_header("X-Answer", "42");
    res.set_content("got " + req.body, "text/plain");
  });
  s.start();
  HttpRequest req{"POST", s.url("/echo"), {{"Authorization", "Bearer k"}}, "hello"};
  const HttpResponse r = Send(req, quick());
  ASSERT_TRUE(r.ok()) << r.error;
  EXPECT_EQ(r.status, 201);
  EXPECT_EQ(r.body, "got hello");
  EXPECT_EQ(r.header("x-answer"), "42");
  EXPECT_EQ(seenBody, "hello");
  EXPECT_EQ(seenAuth, "Bearer k");
  EXPECT_EQ(r.redirects, 0);
}

// Redirects within loopback are followed up to three; a fourth, one to plain
// http elsewhere and one to another scheme are refused without a request.
TEST(HttpClient, RedirectsFollowThePolicy) {
  TestServer s;
  int finalHits = 0;
  s.routes().Get(R"(/hop/(\d+))", [&](const httplib::Request& req, httplib::Response& res) {
    const int n = std::stoi(req.matches[1]);
    if (n == 0) {
      ++finalHits;
      res.set_content("arrived", "text/plain");
    } else {
      res.set_redirect("/hop/" + std::to_string(n - 1));
    }
  });
  s.routes().Get("/elsewhere", [](const httplib::Request&, httplib::Response& res) {
    res.set_redirect("http://198.51.100.7/steal");
  });
  s.routes().Get("/scheme", [](const httplib::Request&, httplib::Response& res) {
    res.set_redirect("file:///etc/passwd");
  });
  s.routes().Post("/moved", [](const httplib::Request&, httplib::Response& res) {
    res.set_redirect("/hop/0", 303);
  });
  s.start();

  HttpResponse r = Send({"GET", s.url("/hop/3"), {}, {}}, quick());
  ASSERT_TRUE(r.ok()) << r.error;
  EXPECT_EQ(r.body, "arrived");
  EXPECT_EQ(r.redirects, 3);
  EXPECT_EQ(r.url, s.url("/hop/0"));

  r = Send({"GET", s.url("/hop/4"), {}, {}}, quick());
  EXPECT_EQ(r.failure, HttpFailure::kRefused);
  EXPECT_EQ(r.error, "A redirect was refused. At most 3 redirects are followed for one request.");

  r = Send({"GET", s.url("/elsewhere"), {}, {}}, quick());
  EXPECT_EQ(r.failure, HttpFailure::kRefused);
  EXPECT_EQ(r.error,
            "A redirect was refused. Plain http is allowed only to 127.0.0.1, ::1 and localhost; use https for "
            "other hosts.");

  r = Send({"GET", s.url("/scheme"), {}, {}}, quick());
  EXPECT_EQ(r.error, "A redirect was refused. Only https and http addresses are allowed.");

  // 303 after a POST continues as GET.
  r = Send({"POST", s.url("/moved"), {}, "x"}, quick());
  EXPECT_EQ(r.body, "arrived");
  EXPECT_EQ(finalHits, 2);

  r = Send({"GET", "http://user:pw@127.0.0.1:" + std::to_string(s.port()) + "/hop/0", {}, {}}, quick());
  EXPECT_EQ(r.failure, HttpFailure::kRefused);
  EXPECT_EQ(finalHits, 2);
}

// A slow reply ends at the timeout; a raised cancel flag ends it sooner; a
// reply past the cap is cut off, with and without Content-Length.
TEST(HttpClient, TimeoutCancelAndSizeCap) {
  TestServer s;
  s.routes().Get("/slow", [](const httplib::Request&, httplib::Response& res) {
    nap(600ms);
    res.set_content("late", "text/plain");
  });
  s.routes().Get("/huge", [](const httplib::Request&, httplib::Response& res) {
    res.set_content(std::string(3u << 20, 'x'), "text/plain");
  });
  s.routes().Get("/stream", [](const httplib::Request&, httplib::Response& res) {
    res.set_chunked_content_provider("text/plain", [](std::size_t offset, httplib::DataSink& sink) {
      const std::string chunk(64 * 1024, 'y');
      if (offset >= (2u << 20)) {
        sink.done();
        return true;
      }
      return sink.write(chunk.data(), chunk.size());
    });
  });
  s.start();

  HttpOptions o = quick();
  o.timeout = 200ms;
  auto t0 = std::chrono::steady_clock::now();
  HttpResponse r = Send({"GET", s.url("/slow"), {}, {}}, o);
  EXPECT_EQ(r.failure, HttpFailure::kTimeout);
  EXPECT_EQ(r.error, "No complete reply within 200 ms.");
  EXPECT_LT(std::chrono::steady_clock::now() - t0, 550ms);

  std::atomic<bool> cancel{false};
  o = quick();
  o.cancel = &cancel;
  std::thread canceller([&] {
    std::this_thread::sleep_for(100ms);
    cancel = true;
  });
  t0 = std::chrono::steady_clock::now();
  r = Send({"GET", s.url("/slow"), {}, {}}, o);
  canceller.join();
  EXPECT_EQ(r.failure, HttpFailure::kCancelled);
  EXPECT_EQ(r.error, "The request was cancelled.");
  EXPECT_LT(std::chrono::steady_clock::now() - t0, 550ms);

  o = quick();
  o.maxResponseBytes = 100000;
  r = Send({"GET", s.url("/huge"), {}, {}}, o);
  EXPECT_EQ(r.failure, HttpFailure::kTooLarge);
  EXPECT_EQ(r.error, "The reply is larger than 100000 bytes.");
  EXPECT_LE(r.body.size(), 100000u);
  r = Send({"GET", s.url("/stream"), {}, {}}, o);
  EXPECT_EQ(r.failure, HttpFailure::kTooLarge);
  EXPECT_LE(r.body.size(), 100000u);
}

// https against a server whose certificate the test authority signed: with
// that authority trusted it works; with the system's authorities it fails,
// since verification is never off; a redirect from it to http is refused.
TEST(HttpClient, VerifiesTls) {
  TestServer s(true);
  s.routes().Get("/hi", [](const httplib::Request&, httplib::Response& res) { res.set_content("hi", "text/plain"); });
  s.routes().Get("/down", [](const httplib::Request&, httplib::Response& res) {
    res.set_redirect("http://127.0.0.1:1/hi");
  });
  s.start();

  HttpOptions trusted = quick();
  trusted.caBundle = test::testPki().caCert.string();
  HttpResponse r = Send({"GET", s.url("/hi"), {}, {}}, trusted);
  ASSERT_TRUE(r.ok()) << r.error;
  EXPECT_EQ(r.body, "hi");

  r = Send({"GET", "https://localhost:" + std::to_string(s.port()) + "/hi", {}, {}}, trusted);
  EXPECT_TRUE(r.ok()) << r.error;

  r = Send({"GET", s.url("/hi"), {}, {}}, quick());
  EXPECT_EQ(r.failure, HttpFailure::kTls);
  EXPECT_TRUE(r.error.starts_with("The server's identity could not be verified: ")) << r.error;

  r = Send({"GET", s.url("/down"), {}, {}}, trusted);
  EXPECT_EQ(r.failure, HttpFailure::kRefused);
  EXPECT_EQ(r.error, "A redirect was refused. A redirect from https to http is not allowed.");
}

}  // namespace
}  // namespace modelyne::cloud
