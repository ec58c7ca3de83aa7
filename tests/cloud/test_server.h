#pragma once
// A cpp-httplib server on a free loopback port, run on its own thread for
// one test, and a throw-away certificate authority for the https cases.

#include <filesystem>
#include <memory>
#include <string>
#include <thread>

#include <httplib.h>

namespace modelyne::cloud::test {

/// Files of a test certificate authority and a server certificate it signed
/// for 127.0.0.1 and localhost.
struct TestPki {
  std::filesystem::path caCert;
  std::filesystem::path serverCert;
  std::filesystem::path serverKey;
};

/// Made once per test program with the openssl command, in the program's
/// scratch folder; throws when that is not possible.
const TestPki& testPki();

/// A fresh empty folder `name` inside this program's scratch folder, which
/// is removed when the program ends.
std::filesystem::path scratchDir(const std::string& name);

class TestServer {
 public:
  /// Plain http, or https with the test authority's server certificate.
  explicit TestServer(bool https = false);
  ~TestServer();
  TestServer(const TestServer&) = delete;
  TestServer& operator=(const TestServer&) = delete;

  httplib::Server& routes() { return *server_; }
  /// Starts serving; call after the routes are set.
  void start();
  /// "http://127.0.0.1:PORT" + path (https for an https server).
  std::string url(const std::string& path = "") const;
  int port() const { return port_; }

 private:
  std::unique_ptr<httplib::Server> server_;
  std::thread thread_;
  int port_ = 0;
  bool https_ = false;
};

}  // namespace modelyne::cloud::test
