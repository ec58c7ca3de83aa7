// The AI proxy call end to end on loopback: configuration, the request the
// server sees, each failure's sentence and the AI Generate command's
// fall-back, the daily limit, the server's waits, and content reports.
#include <gtest/gtest.h>

#include <map>
#include <mutex>
#include <nlohmann/json.hpp>
#include <thread>

#include "ai/prompts.h"
#include "cloud/ai_client.h"
#include "cloud/reports.h"
#include "core/document.h"
#include "test_server.h"

namespace modelyne::cloud {
namespace {

using namespace std::chrono_literals;
using nlohmann::json;
using test::TestServer;

constexpr std::string_view kPlanReply =
    R"({"choices":[{"index":0,"message":{"role":"assistant","content":"TITLE|Drone\nNODE|n1|Block|Drone\nNODE|n2|Block|Camera\nEDGE|n1|n2|Containment|contains\n"}}]})";

Environment envOf(std::map<std::string, std::string> vars) {
  return [vars = std::move(vars)](std::string_view name) -> std::optional<std::string> {
    const auto it = vars.find(std::string(name));
    if (it == vars.end()) return std::nullopt;
    return it->second;
  };
}

CloudConfig configFor(const std::string& baseUrl, const std::filesystem::path& dataDir) {
  CloudConfig c;
  c.dataDir = dataDir;
  c.baseUrl = {baseUrl, "test"};
  c.model = {"test-model", "test"};
  return c;
}

HttpOptions quick() {
  HttpOptions o;
  o.connectTimeout = 1000ms;
  o.timeout = 2000ms;
  return o;
}

// What the server saw of the requests that reached it.
struct Seen {
  std::mutex m;
  std::vector<std::string> paths, bodies, auths;
  void add(const httplib::Request& req) {
    std::lock_guard lock(m);
    paths.push_back(req.path);
    bodies.push_back(req.body);
    auths.push_back(req.get_header_value("Authorization"));
  }
  std::size_t count() {
    std::lock_guard lock(m);
    return paths.size();
  }
};

ai::LogEntry text(std::string_view t) { return {{}, std::string(t), {}}; }

// The file and the environment make one configuration; the variables win;
// a URL that breaks the policy is dropped with its rule; a bad file is
// reported with its path.
TEST(CloudConfig, FileEnvironmentAndPolicy) {
  const auto home = test::scratchDir("config");
  const auto data = home / "xdg" / "modelyne";
  std::filesystem::create_directories(data);
  std::ofstream(data / "cloud.json") << R"({"baseUrl": "https://ai.example.com/v1/", "model": "small",)"
                                        R"( "dailyLimit": 20, "backendUrl": "https://api.example.com"})";
  LoadedConfig c = LoadConfig(envOf({{"XDG_DATA_HOME", (home / "xdg").string()}, {"HOME", "/nowhere"}}));
  EXPECT_TRUE(c.fileFound);
  EXPECT_TRUE(c.errors.empty());
  EXPECT_EQ(c.config.dataDir, data);
  EXPECT_EQ(c.config.baseUrl.value, "https://ai.example.com/v1");
  EXPECT_EQ(c.config.baseUrl.from, (data / "cloud.json").string());
  EXPECT_EQ(c.config.model.value, "small");
  EXPECT_EQ(c.config.dailyLimit, 20);
  EXPECT_EQ(c.config.backendUrl.value, "https://api.example.com");

  c = LoadConfig(envOf({{"XDG_DATA_HOME", (home / "xdg").string()},
                        {"MODELYNE_PROXY_BASE_URL", "http://127.0.0.1:8080/v1"},
                        {"MODELYNE_AI_MODEL", "llama"},
                        {"MODELYNE_AI_API_KEY", "sk-1"},
                        {"MODELYNE_BACKEND_URL", "http://backend.example.com"}}));
  EXPECT_EQ(c.config.baseUrl.value, "http://127.0.0.1:8080/v1");
  EXPECT_EQ(c.config.baseUrl.from, "MODELYNE_PROXY_BASE_URL");
  EXPECT_EQ(c.config.model.value, "llama");
  EXPECT_EQ(c.config.apiKey.value, "sk-1");
  EXPECT_EQ(c.config.backendUrl.value, "");
  ASSERT_EQ(c.errors.size(), 1u);
  EXPECT_EQ(c.errors[0].where, "MODELYNE_BACKEND_URL");
  EXPECT_EQ(c.errors[0].what,
            "Plain http is allowed only to 127.0.0.1, ::1 and localhost; use https for other hosts.");

  // No XDG_DATA_HOME: under HOME; no file there: defaults, not configured.
  c = LoadConfig(envOf({{"HOME", home.string()}}));
  EXPECT_EQ(c.config.dataDir, home / ".local" / "share" / "modelyne");
  EXPECT_FALSE(c.fileFound);
  EXPECT_FALSE(c.config.aiConfigured());
  EXPECT_EQ(c.config.model.value, "default");
  EXPECT_EQ(c.config.dailyLimit, 0);

  std::ofstream(data / "cloud.json") << R"({"baseUrl": "https://ai.example.com/v1", "dailyLimt": 3,)"
                                        R"( "dailyLimit": -1, "model": 7})";
  c = LoadConfig(envOf({{"XDG_DATA_HOME", (home / "xdg").string()}}));
  const std::string file = (data / "cloud.json").string();
  ASSERT_EQ(c.errors.size(), 3u);
  EXPECT_EQ(c.errors[0].where, file);
  EXPECT_EQ(c.errors[0].what, "unknown key \"dailyLimt\".");
  EXPECT_EQ(c.errors[1].what, "\"model\" must be a string.");
  EXPECT_EQ(c.errors[2].what, "\"dailyLimit\" must be a whole number from 0 to 1000000 (0: no limit).");
  EXPECT_EQ(c.config.baseUrl.value, "https://ai.example.com/v1");

  std::ofstream(data / "cloud.json") << "{\"baseUrl\": ";
  c = LoadConfig(envOf({{"XDG_DATA_HOME", (home / "xdg").string()}}));
  ASSERT_EQ(c.errors.size(), 1u);
  EXPECT_EQ(c.errors[0].what, "not valid JSON at byte 13.");
}

// The request carries the exact generate prompt, the model, budget 1024 and
// the key; the reply's plan becomes the model through the cloud path.
TEST(AiClient, PlanThroughTheGenerateCommand) {
  TestServer s;
  Seen seen;
  s.routes().Post("/v1/chat/completions", [&](const httplib::Request& req, httplib::Response& res) {
    seen.add(req);
    res.set_content(std::string(kPlanReply), "application/json");
  });
  s.start();
  CloudConfig cfg = configFor(s.url("/v1"), test::scratchDir("plan"));
  cfg.apiKey = {"sk-test", "test"};
  AiClient client(cfg, quick());
  std::vector<std::string> failures;
  core::Document doc;
  ai::GenerateRequest r;
  r.document = &doc;
  r.prompt = "A drone with a camera";
  r.backend = "cloud";
  r.cloud = MakeCloudCall(client, [&](const std::string& s) { failures.push_back(s); });
  const ai::GenerateResult res = ai::RunAiGenerate(r);
  EXPECT_EQ(res.log, (std::vector<ai::LogEntry>{{"ui.ai.running", "AI Generate: running with the cloud backend...",
                                                 "cloud"},
                                                text("Cloud AI plan generated."), text("Parsed 2 nodes and 1 edges."),
                                                text("AI Generate: added 2 nodes and 1 edge.")}));
  EXPECT_TRUE(failures.empty());
  ASSERT_EQ(seen.count(), 1u);
  EXPECT_EQ(seen.paths[0], "/v1/chat/completions");
  EXPECT_EQ(seen.auths[0], "Bearer sk-test");
  const json body = json::parse(seen.bodies[0]);
  EXPECT_EQ(body, json::parse(R"({"model":"test-model","max_tokens":1024,"messages":[{"role":"user","content":""}]})")
                      .patch(json::parse(R"([{"op":"replace","path":"/messages/0/content","value":)" +
                                         json(ai::BuildGeneratePrompt("A drone with a camera")).dump() + "}]")));
  EXPECT_EQ(ChatRequestBody("m", "say \"hi\"\n", 1024),
            R"({"max_tokens":1024,"messages":[{"content":"say \"hi\"\n","role":"user"}],"model":"m"})");

  // Without a key there is no Authorization header.
  cfg.apiKey = {};
  AiClient keyless(cfg, quick());
  EXPECT_TRUE(keyless.Complete("x", 1024).text);
  EXPECT_EQ(seen.auths.back(), "");
}

// Each failure: the sentence the client gives, and the command falls back
// to the offline interpreter with its fall-back message.
TEST(AiClient, FailuresFallBackWithTheirReason) {
  struct Case {
    std::string name;
    std::function<void(httplib::Response&)> answer;
    std::string failure;
  };
  const std::vector<Case> cases = {
      {"unauthorized",
       [](httplib::Response& r) {
         r.status = 401;
         r.set_content(R"({"error":{"message":"invalid key"}})", "application/json");
       },
       "The server refused the API key (HTTP 401). The server said: invalid key"},
      {"limited",
       [](httplib::Response& r) {
         r.status = 429;
         r.set_header("Retry-After", "30");
       },
       "The server is limiting requests (HTTP 429). It asked to wait 30 seconds."},
      {"broken", [](httplib::Response& r) { r.status = 502; }, "The server failed (HTTP 502)."},
      {"missing", [](httplib::Response& r) { r.status = 404; }, "The server did not accept the request (HTTP 404)."},
      {"slow",
       [](httplib::Response& r) {
         std::this_thread::sleep_for(450ms);
         r.set_content(std::string(kPlanReply), "application/json");
       },
       "No complete reply within 250 ms."},
      {"garbled", [](httplib::Response& r) { r.set_content("{\"choices\": [", "application/json"); },
       "The server's reply is not valid JSON (byte 14)."},
      {"nochoice", [](httplib::Response& r) { r.set_content(R"({"choices":[]})", "application/json"); },
       "The server's reply has no choices[0].message.content."},
      {"blank",
       [](httplib::Response& r) {
         r.set_content(R"({"choices":[{"message":{"content":"  \n"}}]})", "application/json");
       },
       "The server's reply is empty."},
      {"nobody", [](httplib::Response& r) { r.set_content("", "application/json"); }, "The server's reply is empty."},
      {"huge",
       [](httplib::Response& r) { r.set_content(std::string(300000, ' '), "application/json"); },
       "The reply is larger than 200000 bytes."},
  };
  TestServer s;
  s.routes().Post(R"(/(\w+)/v1/chat/completions)", [&](const httplib::Request& req, httplib::Response& res) {
    for (const Case& c : cases)
      if (c.name == req.matches[1]) c.answer(res);
  });
  s.start();
  const auto dir = test::scratchDir("failures");
  for (const Case& c : cases) {
    HttpOptions o = quick();
    o.timeout = 250ms;
    o.maxResponseBytes = 200000;
    AiClient client(configFor(s.url("/" + c.name + "/v1"), dir / c.name), o);
    std::vector<std::string> failures;
    core::Document doc;
    ai::GenerateRequest r;
    r.document = &doc;
    r.prompt = "The drone has a camera.";
    r.backend = "cloud";
    r.cloud = MakeCloudCall(client, [&](const std::string& f) { failures.push_back(f); });
    const ai::GenerateResult res = ai::RunAiGenerate(r);
    EXPECT_EQ(failures, std::vector<std::string>{"Cloud AI: " + c.failure}) << c.name;
    ASSERT_GE(res.log.size(), 3u) << c.name;
    EXPECT_EQ(res.log[1], text("Cloud AI request failed; using deterministic fallback.")) << c.name;
    EXPECT_EQ(res.log[2], text("Parsed 2 entities and 1 relationship.")) << c.name;
    EXPECT_TRUE(res.applied) << c.name;
  }
}

// Retry-After and RateLimit make later calls wait without a request; the
// daily limit refuses past its count and opens again the next day.
TEST(AiClient, WaitsAndDailyLimit) {
  TestServer s;
  Seen seen;
  s.routes().Post("/wait/v1/chat/completions", [&](const httplib::Request& req, httplib::Response& res) {
    seen.add(req);
    res.status = 429;
    res.set_header("Retry-After", "120");
  });
  s.routes().Post("/window/v1/chat/completions", [&](const httplib::Request& req, httplib::Response& res) {
    seen.add(req);
    res.set_header("RateLimit", "limit=10, remaining=0, reset=45");
    res.set_content(std::string(kPlanReply), "application/json");
  });
  s.routes().Post("/ok/v1/chat/completions", [&](const httplib::Request& req, httplib::Response& res) {
    seen.add(req);
    res.set_content(std::string(kPlanReply), "application/json");
  });
  s.start();
  const auto dir = test::scratchDir("waits");
  SystemTime now = std::chrono::system_clock::now();
  const auto clock = [&] { return now; };

  AiClient waiting(configFor(s.url("/wait/v1"), dir / "wait"), quick(), clock);
  EXPECT_FALSE(waiting.Complete("x", 1024).text);
  now += 20s;
  EXPECT_EQ(waiting.Complete("x", 1024).failure,
            "The server asked to wait another 100 seconds; no request was sent.");
  EXPECT_EQ(seen.count(), 1u);

  AiClient window(configFor(s.url("/window/v1"), dir / "window"), quick(), clock);
  EXPECT_TRUE(window.Complete("x", 1024).text);
  EXPECT_EQ(window.Complete("x", 1024).failure,
            "The server asked to wait another 45 seconds; no request was sent.");
  EXPECT_EQ(seen.count(), 2u);
  now += 46s;
  EXPECT_TRUE(window.Complete("x", 1024).text);
  EXPECT_EQ(seen.count(), 3u);

  CloudConfig limited = configFor(s.url("/ok/v1"), dir / "limit");
  limited.dailyLimit = 2;
  AiClient client(limited, quick(), clock);
  EXPECT_EQ(client.quota().remaining, 2);
  EXPECT_TRUE(client.Complete("x", 1024).text);
  EXPECT_TRUE(client.Complete("x", 1024).text);
  EXPECT_EQ(client.quota().remaining, 0);
  EXPECT_TRUE(client.quota().limited);
  EXPECT_EQ(client.Complete("x", 1024).failure, "The daily limit of 2 requests is reached; no request was sent.");
  EXPECT_EQ(seen.count(), 5u);

  // The command, told the quota, does not call at all and says why.
  core::Document doc;
  ai::GenerateRequest r;
  r.document = &doc;
  r.prompt = "The drone has a camera.";
  r.backend = "cloud";
  r.quota = client.quota();
  r.cloud = MakeCloudCall(client, nullptr);
  const ai::GenerateResult res = ai::RunAiGenerate(r);
  EXPECT_EQ(res.log[0], (ai::LogEntry{"ui.ai.quota_reached",
                                      "Daily cloud AI limit reached; using the offline interpreter.", ""}));
  EXPECT_TRUE(res.applied);
  EXPECT_EQ(seen.count(), 5u);

  now += 24h;
  EXPECT_EQ(client.quota().remaining, 2);
  EXPECT_TRUE(client.Complete("x", 1024).text);
}

// A content report reaches {backend}/v1/ai/reports with its three texts.
TEST(ContentReports, SentToTheBackend) {
  TestServer s;
  Seen seen;
  s.routes().Post("/v1/ai/reports", [&](const httplib::Request& req, httplib::Response& res) {
    seen.add(req);
    res.status = 202;
  });
  s.start();
  CloudConfig cfg = configFor(s.url("/v1"), test::scratchDir("reports"));
  const ContentReport report{"A drone", "NODE|n1|Block|Weapon", "harmful"};
  ReportOutcome out = SendContentReport(cfg, quick(), report);
  EXPECT_FALSE(out.sent);
  EXPECT_EQ(out.failure, "No backend is configured; set MODELYNE_BACKEND_URL.");

  cfg.backendUrl = {s.url(), "test"};
  cfg.apiKey = {"sk-r", "test"};
  out = SendContentReport(cfg, quick(), report);
  EXPECT_TRUE(out.sent) << out.failure;
  ASSERT_EQ(seen.count(), 1u);
  EXPECT_EQ(seen.auths[0], "Bearer sk-r");
  EXPECT_EQ(json::parse(seen.bodies[0]),
            json::parse(R"({"prompt":"A drone","reply":"NODE|n1|Block|Weapon","reason":"harmful","model":"test-model"})"));

  cfg.backendUrl = {s.url("/nothing"), "test"};
  out = SendContentReport(cfg, quick(), report);
  EXPECT_EQ(out.failure, "The backend did not accept the report (HTTP 404).");
}

}  // namespace
}  // namespace modelyne::cloud

// Fuzz finding: a number beyond double's range made the JSON parser throw
// past the reply reader.
TEST(AiClient, ReplyWithAnOverflowingNumberIsAFailure) {
  modelyne::cloud::HttpResponse r;
  r.status = 200;
  r.body = "777e777\"*-\"7778\"";
  const modelyne::cloud::AiOutcome out = modelyne::cloud::ReadChatReply(r);
  EXPECT_FALSE(out.text.has_value());
  EXPECT_EQ(out.failure, "The server's reply holds a number too large to read.");
  r.body = R"({"choices": [{"message": {"content": "NODE|a|Block"}}], "x": 1e999})";
  EXPECT_EQ(modelyne::cloud::ReadChatReply(r).failure, "The server's reply holds a number too large to read.");
}
