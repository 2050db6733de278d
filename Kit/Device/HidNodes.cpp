#include "Kit/Device/HidNodes.h"

#include <algorithm>
#include <filesystem>
#include <memory>
#include <tuple>

#include <hidapi.h>
#include <libudev.h>

namespace {

struct UdevUnref {
  void operator()(udev* context) const { udev_unref(context); }
  void operator()(udev_device* device) const { udev_device_unref(device); }
};
struct FreeEnumeration {
  void operator()(hid_device_info* list) const { hid_free_enumeration(list); }
};

std::string textOf(const char* text) {
  return text == nullptr ? std::string() : std::string(text);
}

// Adds what hidapi does not provide. The paths of a node that is already gone stay empty.
void addSysfsPaths(udev* context, HidNode& node) {
  const std::string name = std::filesystem::path(node.path).filename().string();
  const std::unique_ptr<udev_device, UdevUnref> device(
      udev_device_new_from_subsystem_sysname(context, "hidraw", name.c_str()));
  if (!device) {
    return;
  }
  node.sysPath = textOf(udev_device_get_syspath(device.get()));
  // The parent belongs to the device and must not be released separately.
  udev_device* usbDevice =
      udev_device_get_parent_with_subsystem_devtype(device.get(), "usb", "usb_device");
  if (usbDevice != nullptr) {
    node.usbDevice = textOf(udev_device_get_syspath(usbDevice));
  }
}

}  // namespace

std::vector<HidNode> findHidNodes(std::uint16_t vid, std::uint16_t pid) {
  std::vector<HidNode> nodes;
  const std::unique_ptr<udev, UdevUnref> context(udev_new());
  if (!context) {
    return nodes;
  }
  const std::unique_ptr<hid_device_info, FreeEnumeration> list(hid_enumerate(vid, pid));
  for (const hid_device_info* entry = list.get(); entry != nullptr; entry = entry->next) {
    const std::string path = textOf(entry->path);
    // hidapi lists an interface once for each of its top-level usages.
    const bool isKnown = std::any_of(nodes.begin(), nodes.end(),
                                     [&](const HidNode& node) { return node.path == path; });
    if (path.empty() || isKnown) {
      continue;
    }
    HidNode node;
    node.path = path;
    node.interfaceNumber = entry->interface_number;
    addSysfsPaths(context.get(), node);
    if (!node.usbDevice.empty()) {
      nodes.push_back(std::move(node));
    }
  }
  std::sort(nodes.begin(), nodes.end(), [](const HidNode& left, const HidNode& right) {
    return std::tie(left.usbDevice, left.interfaceNumber, left.path) <
           std::tie(right.usbDevice, right.interfaceNumber, right.path);
  });
  return nodes;
}
