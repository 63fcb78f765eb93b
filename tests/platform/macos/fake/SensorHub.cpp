#include "SensorHub.h"

namespace ventolith::fake {

namespace {

constexpr std::int64_t temperatureEvent = 15;
constexpr std::uint32_t temperatureField = 0xF0000;

/// What `dlopen` returned, and its address alone counts.
int library;

SensorHub& hub() {
  return SensorHub::get();
}
Objects& objects() {
  return Objects::get();
}

/// Whatever the hub is asked for may leave objects behind.
void requirePool(const char* function) {
  if (!objects().hasPool()) objects().complain(std::string(function) + " was called without a pool");
}

CFTypeRef clientCreate(CFAllocatorRef) {
  requirePool("ClientCreate");
  return hub().createClient();
}

void clientSetMatching(CFTypeRef client, CFDictionaryRef matching) {
  requirePool("SetMatching");
  Object* const itself = objects().alive(client, "SetMatching", "client");
  Object* const what = objects().alive(matching, "SetMatching", "dictionary");
  if (itself != nullptr && what != nullptr) hub().setMatching(*itself, *what);
}

CFArrayRef clientCopyServices(CFTypeRef client) {
  requirePool("CopyServices");
  Object* const itself = objects().alive(client, "CopyServices", "client");
  return itself == nullptr ? nullptr : hub().copyServices(*itself);
}

CFTypeRef serviceCopyProperty(CFTypeRef service, CFStringRef key) {
  requirePool("CopyProperty");
  Object* const itself = objects().alive(service, "CopyProperty", "service");
  Object* const name = objects().alive(key, "CopyProperty", "string");
  return itself == nullptr || name == nullptr ? nullptr : hub().copyProperty(*itself, *name);
}

CFTypeRef serviceCopyEvent(CFTypeRef service, std::int64_t type, std::int32_t options,
                           std::int64_t timeStamp) {
  requirePool("CopyEvent");
  Object* const itself = objects().alive(service, "CopyEvent", "service");
  return itself == nullptr ? nullptr : hub().copyEvent(*itself, type, options, timeStamp);
}

double eventGetFloatValue(CFTypeRef event, std::uint32_t field) {
  requirePool("GetFloatValue");
  Object* const itself = objects().alive(event, "GetFloatValue", "event");
  return itself == nullptr ? 0 : hub().floatOf(*itself, field);
}

template <class Function>
void* address(Function* function) {
  return reinterpret_cast<void*>(function);
}

const std::map<std::string, void*, std::less<>>& symbols() {
  static const std::map<std::string, void*, std::less<>> table = {
      {"IOHIDEventSystemClientCreate", address(clientCreate)},
      {"IOHIDEventSystemClientSetMatching", address(clientSetMatching)},
      {"IOHIDEventSystemClientCopyServices", address(clientCopyServices)},
      {"IOHIDServiceClientCopyProperty", address(serviceCopyProperty)},
      {"IOHIDServiceClientCopyEvent", address(serviceCopyEvent)},
      {"IOHIDEventGetFloatValue", address(eventGetFloatValue)},
  };
  return table;
}

} // namespace

SensorHub::SensorHub(std::shared_ptr<simulated::SimulatedMac> mac) : InForce(this) {
  const auto labels = mac->hubLabels();
  for (std::size_t index = 0; index < labels.size(); ++index)
    services.push_back({labels[index], [mac, index] { return mac->sampleHub(index); }});
}

platform::DynamicLoader SensorHub::loader() {
  return {.open = [](const char* path, int mode) { return hub().open(path, mode); },
          .find = [](void* opened, const char* name) { return hub().find(opened, name); }};
}

void* SensorHub::open(const char* path, int mode) {
  log.push_back("open " + std::string(path) + " " + std::to_string(mode));
  return opens ? &library : nullptr;
}

void* SensorHub::find(void* opened, const char* name) {
  log.push_back("find " + std::string(name));
  if (opened != &library) objects().complain("dlsym was given another library");
  const auto symbol = symbols().find(name);
  return symbol == symbols().end() || missing.contains(name) ? nullptr : symbol->second;
}

CFTypeRef SensorHub::createClient() {
  if (!givesClient) return nullptr;
  ++clientsMade;
  return objects().make({.type = "client"}).as<CFTypeRef>();
}

void SensorHub::setMatching(Object& client, Object& matching) {
  objects().retain(matching);
  client.parts.push_back(&matching);
  matched.clear();
  for (std::size_t place = 0; place < matching.parts.size(); place += 2)
    matched[matching.parts[place]->text] = matching.parts[place + 1]->number;
}

CFArrayRef SensorHub::copyServices(Object& client) {
  if (!givesServices) return nullptr;
  Object& array = objects().make({.type = "array"});
  for (std::size_t index = 0; index < services.size(); ++index) {
    Object& service = objects().make({.type = "service"}); // The array's from here on.
    origins_[&service] = {.index = index, .client = &client};
    array.parts.push_back(&service);
  }
  return array.as<CFArrayRef>();
}

CFTypeRef SensorHub::copyProperty(Object& service, Object& key) {
  if (key.text != "Product") return nullptr;
  const auto& product = services.at(origins_.at(&service).index).product;
  if (const auto* const text = std::get_if<std::string>(&product)) {
    // A NUL stands for what has no form in UTF-8.
    Object& string = objects().makeString(*text);
    string.hasUTF8 = text->find('\0') == std::string::npos;
    return string.as<CFTypeRef>();
  }
  if (std::holds_alternative<NoString>(product)) return objects().make({.type = "number"}).as<CFTypeRef>();
  return nullptr;
}

CFTypeRef SensorHub::copyEvent(Object& service, std::int64_t type, std::int32_t options,
                               std::int64_t timeStamp) {
  ++eventsCopied;
  const Origin& origin = origins_.at(&service);
  if (origin.client->references <= 0) objects().complain("a service was asked whose client is gone");
  if (type != temperatureEvent || options != 0 || timeStamp != 0) return nullptr;
  const auto value = services.at(origin.index).sample();
  if (!value) return nullptr;
  Object& event = objects().make({.type = "event"});
  values_[&event] = *value;
  return event.as<CFTypeRef>();
}

double SensorHub::floatOf(Object& event, std::uint32_t field) {
  if (field == temperatureField) return values_.at(&event);
  objects().complain("GetFloatValue was given another field");
  return 0;
}

} // namespace ventolith::fake
