// A web server of the tests' own on this computer, and certificates for it.
#pragma once

#include "e2e/Program.h"

#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace ventolith::e2e {

/// An authority that nobody knows, and a certificate of it for the name "localhost" alone.
class TestAuthority {
public:
  TestAuthority();

  [[nodiscard]] std::filesystem::path authority() const { return folder_.path() / "authority.pem"; }
  [[nodiscard]] std::filesystem::path certificate() const { return folder_.path() / "localhost.pem"; }
  [[nodiscard]] std::filesystem::path key() const { return folder_.path() / "localhost.key"; }

private:
  TemporaryFolder folder_;
};

struct WebAnswer {
  enum class Kind {
    whole,
    truncated, // The connection ends ten bytes too early.
    late,      // After 0.6 seconds.
    silence,   // Nothing at all, and the connection stands.
    trickle,   // A byte now and then, of a million announced.
    endless,   // As fast as it goes, of unknown length.
    headers,   // Without an end to them.
  };
  std::string body = {};
  int status = 200;
  std::map<std::string, std::string> headers = {};
  Kind kind = Kind::whole;
};

/// Answers 404 to what it was given no answer for.
class WebServer {
public:
  /// Plain HTTP.
  WebServer();
  explicit WebServer(const TestAuthority& authority);

  /// By the name "localhost".
  [[nodiscard]] std::string url(const std::string& path) const;
  [[nodiscard]] const std::string& port() const { return port_; }

  void answer(const std::string& path, const WebAnswer& answer);

  /// "GET /path | User-Agent: ..." and "GONE /path", once the client has gone in the middle of an answer.
  [[nodiscard]] std::vector<std::string> log() const { return readLines(folder_.path() / "log"); }
  /// How many of them begin so.
  [[nodiscard]] std::size_t count(const std::string& beginning) const;

  void kill() { program_.reset(); }

private:
  WebServer(std::string scheme, const std::vector<std::string>& certificate);

  std::string scheme_;
  TemporaryFolder folder_;
  std::map<std::string, WebAnswer> answers_;
  std::unique_ptr<Program> program_;
  std::string port_;
};

} // namespace ventolith::e2e
