#include "test_server.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <stdexcept>

namespace modelyne::cloud::test {

namespace {

// One temporary folder per test program, removed at exit. Its name lives in
// a plain array, which outlasts every destructor the exit handler may follow.
char gScratchName[] = "/tmp/modelyne-cloud-test.XXXXXX";

void removeScratch() {
  std::error_code ec;
  std::filesystem::remove_all(gScratchName, ec);
}

const std::filesystem::path& programScratch() {
  static const std::filesystem::path root = [] {
    if (!mkdtemp(gScratchName)) throw std::runtime_error("no temporary folder for the cloud tests");
    std::atexit(removeScratch);
    return std::filesystem::path(gScratchName);
  }();
  return root;
}

std::filesystem::path makePki() {
  const std::filesystem::path dir = scratchDir("ca");
  std::ofstream(dir / "ext.cnf") << "subjectAltName=IP:127.0.0.1,DNS:localhost\n"
                                    "basicConstraints=CA:FALSE\n";
  const std::string ossl = OPENSSL_COMMAND;
  const std::string d = dir.string();
  const std::string ec = " -newkey ec -pkeyopt ec_paramgen_curve:prime256v1 -nodes";
  const std::string commands[] = {
      ossl + " req -x509" + ec + " -keyout " + d + "/ca.key -out " + d +
          "/ca.pem -days 2 -subj '/CN=Modelyne Test CA'",
      ossl + " req" + ec + " -keyout " + d + "/server.key -out " + d + "/server.csr -subj /CN=localhost",
      ossl + " x509 -req -in " + d + "/server.csr -CA " + d + "/ca.pem -CAkey " + d + "/ca.key -CAcreateserial -out " +
          d + "/server.pem -days 2 -extfile " + d + "/ext.cnf",
  };
  for (const std::string& c : commands)
    if (std::system((c + " >/dev/null 2>&1").c_str()) != 0) throw std::runtime_error("failed: " + c);
  return dir;
}

}  // namespace

std::filesystem::path scratchDir(const std::string& name) {
  const std::filesystem::path dir = programScratch() / name;
  std::filesystem::remove_all(dir);
  std::filesystem::create_directories(dir);
  return dir;
}

const TestPki& testPki() {
  static const TestPki pki = [] {
    const std::filesystem::path dir = makePki();
    return TestPki{dir / "ca.pem", dir / "server.pem", dir / "server.key"};
  }();
  return pki;
}

TestServer::TestServer(bool https) : https_(https) {
  if (https) {
    const TestPki& pki = testPki();
    server_ = std::make_unique<httplib::SSLServer>(pki.serverCert.c_str(), pki.serverKey.c_str());
  } else {
    server_ = std::make_unique<httplib::Server>();
  }
  port_ = server_->bind_to_any_port("127.0.0.1");
  if (port_ <= 0) throw std::runtime_error("no free loopback port");
}

void TestServer::start() {
  thread_ = std::thread([this] { server_->listen_after_bind(); });
}

TestServer::~TestServer() {
  server_->stop();
  if (thread_.joinable()) thread_.join();
}

std::string TestServer::url(const std::string& path) const {
  return std::string(https_ ? "https" : "http") + "://127.0.0.1:" + std::to_string(port_) + path;
}

}  // namespace modelyne::cloud::test
