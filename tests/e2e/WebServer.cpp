#include "e2e/WebServer.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <memory>
#include <stdexcept>
#include <utility>

namespace ventolith::e2e {

namespace {

std::string nameOf(WebAnswer::Kind kind) {
  switch (kind) {
  case WebAnswer::Kind::whole: return "whole";
  case WebAnswer::Kind::truncated: return "truncated";
  case WebAnswer::Kind::late: return "late";
  case WebAnswer::Kind::silence: return "silence";
  case WebAnswer::Kind::trickle: return "trickle";
  case WebAnswer::Kind::endless: return "endless";
  case WebAnswer::Kind::headers: return "headers";
  }
  throw std::logic_error("no such kind of answer");
}

/// Bytes as the characters of the same numbers, which is how the server takes them.
std::string asLatin1(const std::string& bytes) {
  std::string text;
  for (const char byte : bytes) {
    const auto number = static_cast<unsigned char>(byte);
    if (number < 0x80) {
      text += byte;
    } else {
      text += static_cast<char>(0xC0 | (number >> 6));
      text += static_cast<char>(0x80 | (number & 0x3F));
    }
  }
  return text;
}

void openssl(std::vector<std::string> arguments) {
  const Ended ended = run("/usr/bin/openssl", std::move(arguments));
  if (ended.status != 0) throw std::runtime_error("openssl, which this test needs: " + ended.err);
}

} // namespace

TestAuthority::TestAuthority() {
  const std::string authorityKey = (folder_.path() / "authority.key").string();
  const std::string names = folder_.write("names", "subjectAltName=DNS:localhost\n").string();
  const std::string request = (folder_.path() / "request").string();
  const std::vector<std::string> newKey = {"req",   "-newkey", "ec", "-pkeyopt", "ec_paramgen_curve:P-256",
                                           "-nodes"};
  auto forAuthority = newKey;
  forAuthority.insert(forAuthority.end(), {"-x509", "-days", "2", "-subj", "/CN=Test Authority", "-keyout",
                                           authorityKey, "-out", authority().string()});
  openssl(forAuthority);
  auto forServer = newKey;
  forServer.insert(forServer.end(), {"-subj", "/CN=localhost", "-keyout", key().string(), "-out", request});
  openssl(forServer);
  openssl({"x509", "-req", "-days", "2", "-in", request, "-CA", authority().string(), "-CAkey", authorityKey,
           "-CAcreateserial", "-extfile", names, "-out", certificate().string()});
}

WebServer::WebServer() : WebServer("http", std::vector<std::string>()) {}

WebServer::WebServer(const TestAuthority& authority)
    : WebServer("https", {authority.certificate().string(), authority.key().string()}) {}

WebServer::WebServer(std::string scheme, const std::vector<std::string>& certificate)
    : scheme_(std::move(scheme)) {
  folder_.write("routes.json", "{}");
  std::vector<std::string> arguments = {VENTOLITH_SOURCES "/tests/e2e/web-server.py",
                                        folder_.path().string()};
  arguments.insert(arguments.end(), certificate.begin(), certificate.end());
  program_ = std::make_unique<Program>("/usr/bin/python3", std::move(arguments), Environment{});
  waitUntil("the web server", [&] {
    if (!program_->isRunning()) throw std::runtime_error("the web server: " + program_->err());
    return !program_->outLines().empty();
  });
  port_ = program_->outLines().front();
}

std::string WebServer::url(const std::string& path) const {
  return scheme_ + "://localhost:" + port_ + path;
}

void WebServer::answer(const std::string& path, const WebAnswer& answer) {
  answers_[path] = answer;
  nlohmann::json routes = nlohmann::json::object();
  for (const auto& [route, given] : answers_)
    routes[route] = {{"status", given.status},
                     {"body", asLatin1(given.body)},
                     {"headers", given.headers},
                     {"kind", nameOf(given.kind)}};
  // Replaced at once: the server may be reading it.
  const auto file = folder_.write("routes.new", routes.dump());
  std::filesystem::rename(file, folder_.path() / "routes.json");
}

std::size_t WebServer::count(const std::string& beginning) const {
  const auto lines = log();
  return static_cast<std::size_t>(std::count_if(
      lines.begin(), lines.end(), [&](const std::string& line) { return line.starts_with(beginning); }));
}

} // namespace ventolith::e2e
