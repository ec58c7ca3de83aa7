// `modelyne generate --backend cloud` and `modelyne cloud test` against a
// loopback OpenAI-style server, configured through the environment.
#include <gtest/gtest.h>
#include <httplib.h>

#include <cstdlib>
#include <mutex>
#include <nlohmann/json.hpp>
#include <thread>

#include "run_tool.h"

namespace modelyne::cli::test {
namespace {

constexpr const char* kVars[] = {"XDG_DATA_HOME", "MODELYNE_PROXY_BASE_URL", "MODELYNE_BACKEND_URL",
                                 "MODELYNE_AI_MODEL", "MODELYNE_AI_API_KEY"};

// Sets the cloud variables for one test and restores them afterwards.
class CloudEnv {
 public:
  CloudEnv() {
    for (const char* v : kVars) {
      const char* old = std::getenv(v);
      saved_.emplace_back(v, old ? std::optional<std::string>(old) : std::nullopt);
      ::unsetenv(v);
    }
  }
  ~CloudEnv() {
    for (const auto& [name, value] : saved_) {
      if (value) ::setenv(name.c_str(), value->c_str(), 1);
      else ::unsetenv(name.c_str());
    }
  }
  void set(const char* name, const std::string& value) { ::setenv(name, value.c_str(), 1); }

 private:
  std::vector<std::pair<std::string, std::optional<std::string>>> saved_;
};

struct Server {
  httplib::Server http;
  std::thread thread;
  int port = 0;
  std::mutex m;
  std::vector<std::string> bodies;
  int status = 200;

  Server() {
    http.Post("/v1/chat/completions", [this](const httplib::Request& req, httplib::Response& res) {
      std::lock_guard lock(m);
      bodies.push_back(req.body);
      res.status = status;
      if (status == 200)
        res.set_content(
            R"({"choices":[{"message":{"content":"Here is the plan:\nTITLE|Drone\nNODE|n1|Block|Drone\nNODE|n2|Block|Camera\nEDGE|n1|n2|Containment|contains"}}]})",
            "application/json");
    });
    http.Get("/v1/models", [](const httplib::Request&, httplib::Response& res) {
      res.set_content(R"({"object":"list","data":[{"id":"tiny"},{"id":"big"}]})", "application/json");
    });
    port = http.bind_to_any_port("127.0.0.1");
    thread = std::thread([this] { http.listen_after_bind(); });
  }
  ~Server() {
    http.stop();
    thread.join();
  }
  std::string base() const { return "http://127.0.0.1:" + std::to_string(port) + "/v1"; }
};

constexpr std::string_view kText = "The drone has a camera.";

// The cloud's plan becomes the output, with the exact generate prompt and a
// budget of 1024 in the request; a failing server and the daily limit fall
// back to the offline interpreter and say why.
TEST(CloudCli, GenerateThroughTheCloud) {
  CloudEnv env;
  const auto data = scratchDir("cloud-cli");
  env.set("XDG_DATA_HOME", data.string());
  Server server;

  // Nothing configured: the old message.
  ToolRun run = runTool({"generate", std::string(kText), "--backend", "cloud", "--plan"});
  EXPECT_NE(run.err.find("Cloud AI is not configured; using deterministic fallback.\n"), std::string::npos) << run.err;

  env.set("MODELYNE_PROXY_BASE_URL", server.base());
  env.set("MODELYNE_AI_MODEL", "tiny");
  run = runTool({"generate", std::string(kText), "--backend", "cloud", "--plan"});
  EXPECT_EQ(run.exitCode, 0) << run.err;
  EXPECT_EQ(run.out, "TITLE|Drone\nNODE|n1|Block|Drone\nNODE|n2|Block|Camera\nEDGE|n1|n2|Containment|contains\n");
  EXPECT_EQ(run.err, "AI Generate: running with the cloud backend...\nCloud AI plan generated.\n"
                     "Parsed 2 nodes and 1 edges.\n");
  const ToolRun prompt = runTool({"prompt", "generate", std::string(kText)});
  {
    std::lock_guard lock(server.m);
    ASSERT_EQ(server.bodies.size(), 1u);
    const nlohmann::json body = nlohmann::json::parse(server.bodies[0]);
    EXPECT_EQ(body["model"], "tiny");
    EXPECT_EQ(body["max_tokens"], 1024);
    EXPECT_EQ(body["messages"].size(), 1u);
    EXPECT_EQ(body["messages"][0]["role"], "user");
    EXPECT_EQ(body["messages"][0]["content"], prompt.out);
  }

  // The model file path of the command goes through the same flow.
  run = runTool({"generate", std::string(kText), "--backend", "cloud"});
  EXPECT_EQ(run.exitCode, 0) << run.err;
  EXPECT_NE(run.out.find("Camera"), std::string::npos);
  EXPECT_NE(run.err.find("Cloud AI plan generated.\n"), std::string::npos) << run.err;

  server.status = 500;
  run = runTool({"generate", std::string(kText), "--backend", "cloud"});
  EXPECT_EQ(run.exitCode, 0) << run.err;
  EXPECT_EQ(run.out, runTool({"generate", std::string(kText)}).out);
  EXPECT_NE(run.err.find("AI Generate: running with the cloud backend...\nCloud AI: The server failed (HTTP 500).\n"
                         "Cloud AI request failed; using deterministic fallback.\n"),
            std::string::npos)
      << run.err;

  // A daily limit of 3: three requests went out today, so no fourth.
  writeText(data / "modelyne" / "cloud.json", R"({"dailyLimit": 3})");
  run = runTool({"generate", std::string(kText), "--backend", "cloud", "--plan"});
  EXPECT_EQ(run.exitCode, 0) << run.err;
  EXPECT_TRUE(run.err.starts_with("Daily cloud AI limit reached; using the offline interpreter.\n"
                                  "AI Generate: running with the offline backend...\n"))
      << run.err;
  {
    std::lock_guard lock(server.m);
    EXPECT_EQ(server.bodies.size(), 3u);
  }
}

// `cloud test` prints what it found and whether the proxy answers.
TEST(CloudCli, CloudTest) {
  CloudEnv env;
  const auto data = scratchDir("cloud-test");
  env.set("XDG_DATA_HOME", data.string());
  ToolRun run = runTool({"cloud", "test"});
  EXPECT_EQ(run.exitCode, 1);
  const std::string file = (data / "modelyne" / "cloud.json").string();
  EXPECT_EQ(run.out, "configuration file: " + file + " (not found)\nAI proxy: not configured\n"
                     "model: default (default)\nAPI key: not set\ndaily limit: none\nbackend: not configured\n");

  Server server;
  std::filesystem::create_directories(data / "modelyne");
  writeText(data / "modelyne" / "cloud.json",
            R"({"baseUrl": ")" + server.base() + R"(", "model": "tiny", "dailyLimit": 5})");
  env.set("MODELYNE_AI_API_KEY", "sk-secret");
  env.set("MODELYNE_BACKEND_URL", "http://example.com");
  run = runTool({"cloud", "test"});
  EXPECT_EQ(run.exitCode, 1) << run.err;
  EXPECT_EQ(run.out, "configuration file: " + file + "\nAI proxy: " + server.base() + " (from " + file +
                         ")\nmodel: tiny (from " + file + ")\nAPI key: set (from MODELYNE_AI_API_KEY)\n"
                         "daily limit: 5 requests (from " + file + "), 0 used today\nbackend: not configured\n"
                         "connection: ok (HTTP 200 from " + server.base() + "/models); 2 models served, 'tiny' "
                         "among them\n");
  EXPECT_EQ(run.err, "modelyne: warning: MODELYNE_BACKEND_URL: Plain http is allowed only to 127.0.0.1, ::1 and "
                     "localhost; use https for other hosts.\n");
  EXPECT_EQ(run.out.find("sk-secret"), std::string::npos);

  env.set("MODELYNE_BACKEND_URL", "https://example.com");
  EXPECT_EQ(runTool({"cloud", "test"}).exitCode, 0);
  EXPECT_EQ(runTool({"cloud", "check"}).exitCode, 2);
}

}  // namespace
}  // namespace modelyne::cli::test
