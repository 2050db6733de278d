#include "Tests/Companion/PrivateSway.h"

#include <chrono>
#include <csignal>
#include <cstring>
#include <fstream>
#include <stdexcept>
#include <thread>
#include <vector>

#include <stdlib.h>
#include <sys/mman.h>
#include <unistd.h>
#include <wayland-client.h>

#include "xdg-shell-client-protocol.h"

using namespace std::chrono_literals;

namespace {

constexpr int side = 64;
constexpr int bytes = side * side * 4;

}  // namespace

PrivateSway::PrivateSway() {
  setenv("XDG_RUNTIME_DIR", m_runtime.folder().c_str(), 1);
  setenv("WLR_BACKENDS", "headless", 1);
  setenv("WLR_LIBINPUT_NO_DEVICES", "1", 1);
  setenv("WLR_RENDERER", "pixman", 1);
  unsetenv("DISPLAY");
  unsetenv("WAYLAND_DISPLAY");
  const auto ready = m_runtime / "ready";
  const auto config = m_runtime / "config";
  std::ofstream(config) << "xwayland disable\nexec touch " << ready.string() << "\n";
  std::vector<std::string> command{"sway", "--config", config.string()};
  if (geteuid() == 0) {
    // It refuses to work for root.
    const std::string nobody = "65534";
    const std::vector<std::string> asNobody{"setpriv", "--reuid", nobody,
                                            "--regid", nobody,    "--clear-groups"};
    command.insert(command.begin(), asNobody.begin(), asNobody.end());
    if (::chown(m_runtime.folder().c_str(), 65534, 65534) < 0) {
      throw std::runtime_error("no folder for the compositor");
    }
  }
  m_compositor = std::make_unique<ChildProcess>(command);
  for (int attempt = 0; !std::filesystem::exists(ready); ++attempt) {
    if (attempt == 4000) {
      throw std::runtime_error("no compositor: " + m_compositor->read(100ms));
    }
    std::this_thread::sleep_for(5ms);
  }
  setenv("WAYLAND_DISPLAY", "wayland-1", 1);
}

PrivateSway::~PrivateSway() {
  unsetenv("WAYLAND_DISPLAY");
}

void PrivateSway::freeze() const {
  m_compositor->send(SIGSTOP);
}

void PrivateSway::thaw() const {
  m_compositor->send(SIGCONT);
}

struct WaylandWindow::State {
  wl_display* display = nullptr;
  wl_registry* registry = nullptr;
  wl_compositor* compositor = nullptr;
  wl_shm* memory = nullptr;
  xdg_wm_base* shell = nullptr;
  wl_surface* surface = nullptr;
  xdg_surface* frame = nullptr;
  xdg_toplevel* window = nullptr;
  wl_buffer* picture = nullptr;
  bool isConfigured = false;

  void bind(std::uint32_t name, const std::string& interface) {
    if (interface == wl_compositor_interface.name) {
      compositor = static_cast<wl_compositor*>(
          wl_registry_bind(registry, name, &wl_compositor_interface, 1));
    } else if (interface == wl_shm_interface.name) {
      memory = static_cast<wl_shm*>(wl_registry_bind(registry, name, &wl_shm_interface, 1));
    } else if (interface == xdg_wm_base_interface.name) {
      shell =
          static_cast<xdg_wm_base*>(wl_registry_bind(registry, name, &xdg_wm_base_interface, 1));
    }
  }

  void draw() {
    const int file = ::memfd_create("window", MFD_CLOEXEC);
    if (file < 0 || ::ftruncate(file, bytes) < 0) {
      throw std::runtime_error("no memory for a window");
    }
    wl_shm_pool* pool = wl_shm_create_pool(memory, file, bytes);
    picture = wl_shm_pool_create_buffer(pool, 0, side, side, side * 4, WL_SHM_FORMAT_XRGB8888);
    wl_shm_pool_destroy(pool);
    ::close(file);
    wl_surface_attach(surface, picture, 0, 0);
    wl_surface_commit(surface);
  }
};

WaylandWindow::WaylandWindow(const std::string& appId) : m_state(std::make_unique<State>()) {
  State& state = *m_state;
  state.display = wl_display_connect(nullptr);
  if (state.display == nullptr) {
    throw std::runtime_error("no compositor");
  }
  state.registry = wl_display_get_registry(state.display);
  static const wl_registry_listener globals{
      [](void* data, wl_registry*, std::uint32_t name, const char* interface, std::uint32_t) {
        static_cast<State*>(data)->bind(name, interface);
      },
      [](void*, wl_registry*, std::uint32_t) {}};
  wl_registry_add_listener(state.registry, &globals, &state);
  wl_display_roundtrip(state.display);
  state.surface = wl_compositor_create_surface(state.compositor);
  state.frame = xdg_wm_base_get_xdg_surface(state.shell, state.surface);
  static const xdg_surface_listener configured{
      [](void* data, xdg_surface* frame, std::uint32_t serial) {
        xdg_surface_ack_configure(frame, serial);
        static_cast<State*>(data)->isConfigured = true;
      }};
  xdg_surface_add_listener(state.frame, &configured, &state);
  state.window = xdg_surface_get_toplevel(state.frame);
  static const xdg_toplevel_listener ignored{
      [](void*, xdg_toplevel*, std::int32_t, std::int32_t, wl_array*) {},
      [](void*, xdg_toplevel*) {}, [](void*, xdg_toplevel*, std::int32_t, std::int32_t) {},
      [](void*, xdg_toplevel*, wl_array*) {}};
  xdg_toplevel_add_listener(state.window, &ignored, &state);
  xdg_toplevel_set_app_id(state.window, appId.c_str());
  xdg_toplevel_set_title(state.window, "a title that nobody may read");
  wl_surface_commit(state.surface);
  while (!state.isConfigured && wl_display_dispatch(state.display) >= 0) {
  }
  state.draw();
  wl_display_roundtrip(state.display);
}

WaylandWindow::~WaylandWindow() {
  State& state = *m_state;
  xdg_toplevel_destroy(state.window);
  xdg_surface_destroy(state.frame);
  wl_surface_destroy(state.surface);
  wl_buffer_destroy(state.picture);
  xdg_wm_base_destroy(state.shell);
  wl_shm_destroy(state.memory);
  wl_compositor_destroy(state.compositor);
  wl_registry_destroy(state.registry);
  wl_display_roundtrip(state.display);
  wl_display_disconnect(state.display);
}
