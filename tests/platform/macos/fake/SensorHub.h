// The HID event system behind the fake IOKit, and the loader that finds its functions.
#pragma once

#include "InForce.h"
#include "Objects.h"
#include "platform/macos/HIDInterface.h"
#include "platform/simulated/SimulatedMac.h"

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <variant>
#include <vector>

namespace ventolith::fake {

class SensorHub : public InForce<SensorHub> {
public:
  /// The sensors of `mac`, as services with their labels.
  explicit SensorHub(std::shared_ptr<simulated::SimulatedMac> mac);

  struct NoString {};

  struct Service {
    std::variant<std::string, NoString, std::monostate> product; // The last is none at all.
    std::function<std::optional<double>()> sample;
  };

  // What the test sets.
  bool opens = true;
  std::set<std::string> missing; // Symbols that are not found.
  bool givesClient = true;
  bool givesServices = true;
  std::vector<Service> services;

  // What the sources under test did.
  std::vector<std::string> log;                // Of the loader.
  std::map<std::string, std::int32_t> matched; // What the last client is to see.
  int clientsMade = 0;
  int eventsCopied = 0;

  [[nodiscard]] static platform::DynamicLoader loader();

  // The functions.
  void* open(const char* path, int mode);
  void* find(void* library, const char* name);
  CFTypeRef createClient();
  void setMatching(Object& client, Object& matching);
  CFArrayRef copyServices(Object& client);
  CFTypeRef copyProperty(Object& service, Object& key);
  CFTypeRef copyEvent(Object& service, std::int64_t type, std::int32_t options, std::int64_t timeStamp);
  double floatOf(Object& event, std::uint32_t field);

private:
  struct Origin {
    std::size_t index;
    Object* client;
  };

  std::map<const Object*, Origin> origins_; // Of the objects that stand for services.
  std::map<const Object*, double> values_;  // Of events.
};

} // namespace ventolith::fake
