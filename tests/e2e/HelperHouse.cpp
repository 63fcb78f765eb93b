#include "e2e/HelperHouse.h"

#include <sys/stat.h>

#include <algorithm>
#include <stdexcept>

namespace ventolith::e2e {

namespace {

constexpr const char* helperName = "com.ventolith.helper";
constexpr const char* helperPath = "/com/ventolith/helper";

std::unique_ptr<sdbus::IProxy> proxyOn(const std::string& address, const std::string& name,
                                       const std::string& path) {
  return sdbus::createProxy(sdbus::createSessionBusConnectionWithAddress(address), name, path);
}

} // namespace

Peer::Peer(const std::string& address) : helper_(proxyOn(address, helperName, helperPath)) {}

void Peer::callForNothing(const std::string& method) const {
  helper_->callMethod(method).onInterface(interfaceName).withTimeout(timeout);
}

std::string Peer::errorOf(const std::string& method) const {
  try {
    callForNothing(method);
    return {};
  } catch (const sdbus::Error& error) {
    return error.getName();
  }
}

void Peer::heartbeat() const {
  helper_->callMethod("Heartbeat").onInterface(interfaceName).dontExpectReply();
}

nlohmann::json Peer::state() const {
  const auto bytes = call<std::vector<std::uint8_t>>("ReadState");
  return nlohmann::json::parse(bytes.begin(), bytes.end());
}

MockPolkit::MockPolkit(const PrivateBus& bus)
    : peer_(bus,
            {"org.freedesktop.PolicyKit1", "/org/freedesktop/PolicyKit1/Authority",
             "org.freedesktop.PolicyKit1.Authority"},
            "polkitd") {}

HelperHouse::HelperHouse() : mac_(quickMacBookPro()) {}

Environment HelperHouse::environment() const {
  Environment environment = mac_.environment();
  environment["VENTOLITH_BUS"] = bus_.address();
  environment["VENTOLITH_STATE_DIR"] = (folder() / "state").string();
  return environment;
}

std::unique_ptr<Program> HelperHouse::startHelper(const std::vector<std::string>& options,
                                                  const Streams& streams) {
  auto helper = std::make_unique<Program>("ventolith-helper", options, environment(), streams);
  waitUntil("a helper that serves", [&] {
    if (!helper->isRunning()) throw std::runtime_error("the helper ended: " + helper->err());
    return Peer(bus_.address()).errorOf("HelperVersion").empty();
  });
  return helper;
}

pid_t HelperHouse::helperProcess() const {
  std::uint32_t process = 0;
  proxyOn(bus_.address(), "org.freedesktop.DBus", "/org/freedesktop/DBus")
      ->callMethod("GetConnectionUnixProcessID")
      .onInterface("org.freedesktop.DBus")
      .withArguments(helperName)
      .storeResultsTo(process);
  return static_cast<pid_t>(process);
}

std::string HelperHouse::waitForHelper() const {
  std::string version;
  waitUntil("a helper that tells its build", [&] {
    try {
      version = Peer(bus_.address()).call<std::string>("HelperVersion");
    } catch (const sdbus::Error&) {
      return false;
    }
    return true;
  });
  return version;
}

void HelperHouse::activateBy(const std::string& line) {
  std::string script = "#!/bin/sh\n";
  for (const auto& [variable, value] : environment())
    script += "export " + variable + "='" + value + "'\n";
  const auto file = folder_.write("start-helper", script + line + '\n');
  ::chmod(file.c_str(), 0700);
  bus_.addService(helperName, file.string());
}

std::filesystem::path HelperHouse::plan(const std::map<int, int>& rpm) const {
  nlohmann::json plan = {
      {"fans", nlohmann::json::array()},
      {"rules", nlohmann::json::array()},
      {"tuning",
       {{"emaAlpha", 0.3}, {"hysteresisCelsius", 2}, {"maxDeltaRPMPerTick", 400}, {"minDwellSeconds", 3}}},
  };
  for (const auto& [fan, speed] : rpm)
    plan["fans"].push_back({{"fanID", fan}, {"mode", {{"fixedRPM", {{"_0", speed}}}}}});
  return folder_.write("plan.json", plan.dump());
}

Ended HelperHouse::ctl(std::vector<std::string> arguments) const {
  return run("ventolithctl", std::move(arguments), environment());
}

std::unique_ptr<Program> HelperHouse::startHolding() {
  auto holder = std::make_unique<Program>(
      "ventolithctl", std::vector<std::string>{"apply", plan({{0, 3000}, {1, 2500}}).string(), "--hold"},
      environment());
  waitUntilHeldBy(*holder);
  waitUntil("a holder that knows it", [&] {
    return std::ranges::any_of(holder->outLines(),
                               [](const auto& line) { return line.starts_with("holding"); });
  });
  return holder;
}

void HelperHouse::waitUntilHeldBy(Program& holder) const {
  waitUntil("fans that are held", [&] {
    if (!holder.isRunning()) throw std::runtime_error("the holder ended: " + holder.out() + holder.err());
    return isEveryFanHeld();
  });
}

void HelperHouse::waitUntilBack() const {
  waitUntil("fans that are back", [this] { return isEveryFanBack(); });
}

bool HelperHouse::everyFanHas(const std::string& mode) const {
  return mac_.lastWrite("F0Md") == mode && mac_.lastWrite("F1Md") == mode;
}

} // namespace ventolith::e2e
