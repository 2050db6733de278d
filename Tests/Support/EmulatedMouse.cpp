#include "Tests/Support/EmulatedMouse.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <map>
#include <mutex>
#include <set>
#include <span>
#include <stdexcept>
#include <system_error>
#include <utility>
#include <vector>

#include <fcntl.h>
#include <linux/capability.h>
#include <linux/hidraw.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <umockdev.h>
#include <unistd.h>

namespace {

constexpr const char* bus = "/devices/pci0000:00/0000:00:14.0/usb1/";
constexpr const char* plugKey = "plug";

// Pointer and media keys share interface 0, so hidapi lists it twice. The eight-byte feature report
// has no number.
constexpr const char* pointerDescriptor =
    "05010902A1010901A100050919012905150025017501950581029503810105010930093109381581257F"
    "750895038106C006A0FF0901150026FF0075089508B102C0"
    "050C0901A1011500257F751095011900297F8100C0";
// Interface 1 carries the keyboard and the three long reports.
constexpr const char* longReportDescriptor =
    "05010906A101050719E029E71500250175019508810295067508150025650507190029658100C0"
    "06A1FF0901A101150026FF0075088504090296040808B10285050903969900B10285060904964500B102C0";
// The same with an input report of eight bytes in the vendor's collection.
constexpr const char* vendorInputDescriptor =
    "05010906A101050719E029E71500250175019508810295067508150025650507190029658100C0"
    "06A1FF0901A101150026FF0075088504090296040808B10285050903969900B10285060904964500B102"
    "8507090595088102C0";

std::string hex(unsigned value, int digits) {
  std::array<char, 16> text{};
  std::snprintf(text.data(), text.size(), "%0*x", digits, value);
  return text.data();
}

std::string upperHex(unsigned value, int digits) {
  std::array<char, 16> text{};
  std::snprintf(text.data(), text.size(), "%0*X", digits, value);
  return text.data();
}

void throwOn(GError* error) {
  if (error != nullptr) {
    const std::string text = error->message;
    g_error_free(error);
    throw std::runtime_error(text);
  }
}

// Root ignores permissions; without this privilege, it is refused like the user.
void dropFilePrivilege() {
  __user_cap_header_struct header{.version = _LINUX_CAPABILITY_VERSION_3, .pid = 0};
  std::array<__user_cap_data_struct, 2> data{};
  if (syscall(SYS_capget, &header, data.data()) != 0) {
    throw std::system_error(errno, std::generic_category(), "capget");
  }
  data[0].effective &= ~(1U << static_cast<unsigned>(CAP_DAC_OVERRIDE));
  if (syscall(SYS_capset, &header, data.data()) != 0) {
    throw std::system_error(errno, std::generic_category(), "capset");
  }
}

// Hides the monitors' sockets from umockdev, which announces every new device.
class Silence {
 public:
  Silence(const std::filesystem::path& root, bool isSilent) {
    if (!isSilent) {
      return;
    }
    for (const auto& entry : std::filesystem::directory_iterator(root)) {
      if (entry.path().filename().string().starts_with("event")) {
        m_sockets.push_back(entry.path());
      }
    }
    for (const std::filesystem::path& socket : m_sockets) {
      std::filesystem::rename(socket, hidden(socket));
    }
  }
  ~Silence() {
    std::error_code ignored;
    for (const std::filesystem::path& socket : m_sockets) {
      std::filesystem::rename(hidden(socket), socket, ignored);
    }
  }
  Silence(const Silence&) = delete;
  Silence& operator=(const Silence&) = delete;

 private:
  static std::filesystem::path hidden(const std::filesystem::path& socket) {
    return socket.parent_path() / ("silent-" + socket.filename().string());
  }

  std::vector<std::filesystem::path> m_sockets;
};

const char* descriptorOf(const EmulatedInterface& interface) {
  if (interface.number == 0) {
    return pointerDescriptor;
  }
  return interface.hasVendorInput ? vendorInputDescriptor : longReportDescriptor;
}

// The mouse's end of a node that carries input reports.
struct Pipe {
  explicit Pipe(const std::filesystem::path& file) {
    if (::mkfifo(file.c_str(), 0600) == 0) {
      descriptor = ::open(file.c_str(), O_RDWR | O_NONBLOCK | O_CLOEXEC);
    }
    if (descriptor < 0) {
      throw std::system_error(errno, std::generic_category(), file.string());
    }
  }
  ~Pipe() { ::close(descriptor); }
  Pipe(const Pipe&) = delete;
  Pipe& operator=(const Pipe&) = delete;

  int descriptor = -1;
};

struct PluggedNode {
  EmulatedInterface interface;
  std::vector<std::string> sysPaths;  // the node's first, then its parents up to the interface
  int plug = 0;
  std::shared_ptr<Pipe> pipe;  // null for a node that sends nothing
};

}  // namespace

struct EmulatedMouse::State {
  explicit State(std::shared_ptr<VirtualMouse> newMouse)
      : mouse(std::move(newMouse)), testbed(umockdev_testbed_new()) {
    gchar* directory = umockdev_testbed_get_root_dir(testbed);
    root = directory;
    g_free(directory);
  }

  std::filesystem::path fileOf(const std::string& node) const { return root / node.substr(1); }
  void announce(const std::string& sysPath, const char* action) {
    const Silence silence(root, isSilent);
    umockdev_testbed_uevent(testbed, sysPath.c_str(), action);
  }

  // The node disappears before the announcement.
  void loseNode(const std::string& node, const PluggedNode& plugged) {
    if (std::filesystem::remove(fileOf(node))) {
      announce(plugged.sysPaths.front(), "remove");
    }
  }

  void listen(const std::string& node);
  long answer(UMockdevIoctlClient* client, int& error);
  long transfer(int interfaceNumber, bool isSet, std::span<std::uint8_t> buffer, int& error);

  // umockdev calls this on its own thread.
  static void connected(UMockdevIoctlBase*, UMockdevIoctlClient* client, gpointer state);
  static gboolean handle(UMockdevIoctlBase*, UMockdevIoctlClient* client, gpointer state);

  const std::shared_ptr<VirtualMouse> mouse;
  UMockdevTestbed* testbed;
  std::filesystem::path root;
  bool isSilent = false;
  std::set<std::string> ports;
  std::map<std::string, UMockdevIoctlBase*> handlers;

  mutable std::mutex mutex;  // guards the members below, and the mouse during a transfer
  std::map<std::string, PluggedNode> nodes;
  int plugs = 0;
  int opens = 0;
  int transferError = 0;
};

void EmulatedMouse::State::connected(UMockdevIoctlBase*, UMockdevIoctlClient* client,
                                     gpointer state) {
  auto& self = *static_cast<State*>(state);
  const std::lock_guard lock(self.mutex);
  ++self.opens;
  const auto node = self.nodes.find(umockdev_ioctl_client_get_devnode(client));
  const int plug = node == self.nodes.end() ? 0 : node->second.plug;
  g_object_set_data(G_OBJECT(client), plugKey, GINT_TO_POINTER(plug));
}

gboolean EmulatedMouse::State::handle(UMockdevIoctlBase*, UMockdevIoctlClient* client,
                                      gpointer state) {
  int error = 0;
  const long result = static_cast<State*>(state)->answer(client, error);
  umockdev_ioctl_client_complete(client, result, error);
  return TRUE;
}

long EmulatedMouse::State::answer(UMockdevIoctlClient* client, int& error) {
  const std::lock_guard lock(mutex);
  const auto node = nodes.find(umockdev_ioctl_client_get_devnode(client));
  // A node that was opened before the last replug stays dead, even if the name is the same.
  const int plug = GPOINTER_TO_INT(g_object_get_data(G_OBJECT(client), plugKey));
  if (node == nodes.end() || node->second.plug != plug) {
    error = ENODEV;
    return -1;
  }
  const gulong request = umockdev_ioctl_client_get_request(client);
  GError* failure = nullptr;
  UMockdevIoctlData* data = umockdev_ioctl_data_resolve(umockdev_ioctl_client_get_arg(client), 0,
                                                        _IOC_SIZE(request), &failure);
  if (data == nullptr) {
    g_clear_error(&failure);
    error = EFAULT;
    return -1;
  }
  long result = -1;
  const std::span<std::uint8_t> buffer(data->data, static_cast<std::size_t>(data->data_len));
  if (request == HIDIOCGRDESCSIZE) {
    const int size = static_cast<int>(std::strlen(descriptorOf(node->second.interface)) / 2);
    std::memcpy(buffer.data(), &size, sizeof(size));
    result = 0;
  } else if (request == HIDIOCSFEATURE(_IOC_SIZE(request)) && buffer.size() >= 2) {
    result = transfer(node->second.interface.number, true, buffer, error);
  } else if (request == HIDIOCGFEATURE(_IOC_SIZE(request)) && buffer.size() >= 2) {
    result = transfer(node->second.interface.number, false, buffer, error);
  } else {
    error = EINVAL;
  }
  g_object_unref(data);
  return result;
}

// Handles the buffer like the kernel's USB driver: a leading 0 is only for the kernel; any other
// number is part of the report.
long EmulatedMouse::State::transfer(int interfaceNumber, bool isSet, std::span<std::uint8_t> buffer,
                                    int& error) {
  if (transferError != 0) {
    error = transferError;
    return -1;
  }
  const std::uint8_t reportId = buffer[0];
  const std::size_t skipped = reportId == 0 ? 1 : 0;
  std::vector<std::uint8_t> wire(buffer.size() - skipped);
  if (isSet) {
    std::copy(buffer.begin() + static_cast<std::ptrdiff_t>(skipped), buffer.end(), wire.begin());
  } else if (skipped == 0) {
    wire[0] = reportId;
  }
  SetupPacket setup;
  setup.requestType = isSet ? 0x21 : 0xA1;
  setup.request = isSet ? 0x09 : 0x01;
  setup.value = static_cast<std::uint16_t>(0x0300U | reportId);
  setup.index = static_cast<std::uint16_t>(interfaceNumber);
  setup.length = static_cast<std::uint16_t>(wire.size());
  const TransferResult result = mouse->controlTransfer(setup, wire);
  if (result.status != TransferStatus::Done) {
    error = result.status == TransferStatus::Gone ? ENODEV : EPIPE;
    return -1;
  }
  const std::size_t bytes = std::min<std::size_t>(result.bytes, wire.size());
  if (!isSet) {
    std::copy_n(wire.begin(), bytes, buffer.begin() + static_cast<std::ptrdiff_t>(skipped));
  }
  return static_cast<long>(bytes + skipped);
}

// Once per node name, because umockdev drops open nodes when a handler is removed.
void EmulatedMouse::State::listen(const std::string& node) {
  if (handlers.contains(node)) {
    return;
  }
  UMockdevIoctlBase* handler = umockdev_ioctl_base_new();
  handlers[node] = handler;
  g_signal_connect(handler, "client-connected", G_CALLBACK(&State::connected), this);
  g_signal_connect(handler, "handle-ioctl", G_CALLBACK(&State::handle), this);
  GError* error = nullptr;
  umockdev_testbed_attach_ioctl(testbed, node.c_str(), handler, &error);
  throwOn(error);
}

EmulatedMouse::EmulatedMouse(std::shared_ptr<VirtualMouse> mouse)
    : m_state(std::make_unique<State>(std::move(mouse))) {
  std::filesystem::create_directories(m_state->root / "dev");
  std::ofstream(udevControl()).flush();
}

EmulatedMouse::~EmulatedMouse() {
  for (const auto& [node, handler] : m_state->handlers) {
    umockdev_testbed_detach_ioctl(m_state->testbed, node.c_str(), nullptr);
    g_object_unref(handler);
  }
  g_object_unref(m_state->testbed);
}

VirtualMouse& EmulatedMouse::mouse() {
  return *m_state->mouse;
}

void EmulatedMouse::plug(int firstNode) {
  plugInterface({.number = 0, .node = firstNode});
  plugInterface({.number = 1, .node = firstNode + 1});
}

void EmulatedMouse::plugWithVendorInput(int firstNode) {
  plugInterface({.number = 0, .node = firstNode});
  plugInterface({.number = 1, .node = firstNode + 1, .hasVendorInput = true});
}

void EmulatedMouse::sendInput(int interfaceNumber, const std::vector<std::uint8_t>& report) {
  const std::lock_guard lock(m_state->mutex);
  for (const auto& [node, plugged] : m_state->nodes) {
    if (plugged.interface.number == interfaceNumber) {
      if (::write(plugged.pipe->descriptor, report.data(), report.size()) < 0) {
        throw std::system_error(errno, std::generic_category(), node);
      }
    }
  }
}

void EmulatedMouse::plugInterface(const EmulatedInterface& interface) {
  const std::string name = "hidraw" + std::to_string(interface.node);
  const std::string node = "/dev/" + name;
  const std::string vid = upperHex(interface.vid, 4);
  const std::string pid = upperHex(interface.pid, 4);
  const std::string usbDevice = bus + interface.port;
  const std::string usbInterface =
      usbDevice + "/" + interface.port + ":1." + std::to_string(interface.number);

  m_state->listen(node);
  std::unique_lock lock(m_state->mutex);
  PluggedNode plugged{
      .interface = interface, .sysPaths = {}, .plug = ++m_state->plugs, .pipe = nullptr};
  // The kernel counts every HID device it has ever seen.
  const std::string hidName =
      "0003:" + vid + ":" + pid + "." + upperHex(static_cast<unsigned>(plugged.plug), 4);
  const std::string hidDevice = usbInterface + "/" + hidName;
  const std::string rawDevice = hidDevice + "/hidraw/" + name;
  plugged.sysPaths = {"/sys" + rawDevice, "/sys" + hidDevice, "/sys" + usbInterface};
  m_state->nodes[node] = plugged;
  if (!m_state->mouse->isAttached()) {
    m_state->mouse->attach();
  }
  lock.unlock();

  // umockdev would create a terminal for a node it knows. Our own file has no such side effects and
  // exists before the announcement.
  std::string devices;
  if (m_state->ports.insert(interface.port).second) {
    devices += "P: " + usbDevice +
               "\nE: SUBSYSTEM=usb\nE: DEVTYPE=usb_device\nA: idVendor=" + hex(interface.vid, 4) +
               "\\n\nA: idProduct=" + hex(interface.pid, 4) + "\\n\n\n";
  }
  devices += "P: " + usbInterface +
             "\nE: SUBSYSTEM=usb\nE: DEVTYPE=usb_interface\nA: bInterfaceNumber=" +
             hex(static_cast<unsigned>(interface.number), 2) + "\\n\n\n";
  devices +=
      "P: " + hidDevice + "\nE: SUBSYSTEM=hid\nE: HID_ID=0003:0000" + vid + ":0000" + pid +
      "\nE: HID_NAME=Gaming Mouse\nE: HID_UNIQ=\nH: report_descriptor=" + descriptorOf(interface) +
      "\n\n";
  // hidapi finds the report descriptor through this link.
  devices += "P: " + rawDevice + "\nE: SUBSYSTEM=hidraw\nE: DEVNAME=" + node +
             "\nL: device=../../../" + hidName + "\n\n";
  if (interface.hasVendorInput) {
    lock.lock();
    m_state->nodes[node].pipe = std::make_shared<Pipe>(m_state->fileOf(node));
    lock.unlock();
  } else {
    std::ofstream(m_state->fileOf(node)).flush();
  }
  const Silence silence(m_state->root, m_state->isSilent);
  GError* error = nullptr;
  umockdev_testbed_add_from_string(m_state->testbed, devices.c_str(), &error);
  throwOn(error);
}

void EmulatedMouse::unplug() {
  std::unique_lock lock(m_state->mutex);
  const std::map<std::string, PluggedNode> nodes = std::exchange(m_state->nodes, {});
  m_state->mouse->detach();
  lock.unlock();
  for (const auto& [node, plugged] : nodes) {
    m_state->loseNode(node, plugged);
    for (const std::string& sysPath : plugged.sysPaths) {
      umockdev_testbed_remove_device(m_state->testbed, sysPath.c_str());
    }
  }
  for (const std::string& port : std::exchange(m_state->ports, {})) {
    umockdev_testbed_remove_device(m_state->testbed, ("/sys" + (bus + port)).c_str());
  }
}

void EmulatedMouse::loseNodes() {
  std::unique_lock lock(m_state->mutex);
  const std::map<std::string, PluggedNode> nodes = m_state->nodes;
  m_state->mouse->detach();
  lock.unlock();
  for (const auto& [node, plugged] : nodes) {
    m_state->loseNode(node, plugged);
  }
}

std::filesystem::path EmulatedMouse::udevControl() const {
  return m_state->root / "udev-control";
}

void EmulatedMouse::setIsSilent(bool isSilent) {
  m_state->isSilent = isSilent;
}

void EmulatedMouse::announceChange() {
  const std::lock_guard lock(m_state->mutex);
  for (const auto& [node, plugged] : m_state->nodes) {
    m_state->announce(plugged.sysPaths.front(), "change");
  }
}

void EmulatedMouse::setIsAccessAllowed(bool isAccessAllowed) {
  dropFilePrivilege();
  const std::lock_guard lock(m_state->mutex);
  for (const auto& [node, plugged] : m_state->nodes) {
    std::filesystem::permissions(
        m_state->fileOf(node),
        isAccessAllowed ? std::filesystem::perms::owner_read | std::filesystem::perms::owner_write
                        : std::filesystem::perms::none);
  }
}

void EmulatedMouse::setTransferError(int error) {
  const std::lock_guard lock(m_state->mutex);
  m_state->transferError = error;
}

int EmulatedMouse::openCount() const {
  const std::lock_guard lock(m_state->mutex);
  return m_state->opens;
}
