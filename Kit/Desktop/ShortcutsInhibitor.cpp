#include "Kit/Desktop/ShortcutsInhibitor.h"

#include <utility>

#ifdef NERIN_WAYLAND
#include <QWindow>
#include <cstdint>
#include <cstring>

#include <wayland-client.h>

#include "Kit/Desktop/WaylandDisplay.h"
#include "ShortcutsInhibitProtocol.h"

namespace {

template <typename Object, void (*destroyObject)(Object*)>
struct Destroy {
  void operator()(Object* object) const { destroyObject(object); }
};

template <typename Object, void (*destroyObject)(Object*)>
using Owned = std::unique_ptr<Object, Destroy<Object, destroyObject>>;

using Manager = zwp_keyboard_shortcuts_inhibit_manager_v1;
using Inhibitor = zwp_keyboard_shortcuts_inhibitor_v1;
constexpr std::uint32_t version = 1;

struct WrapperEnd {
  void operator()(wl_display* display) const { wl_proxy_wrapper_destroy(display); }
};

void onGlobal(void* manager, wl_registry* registry, std::uint32_t name, const char* interface,
              std::uint32_t /*version*/) {
  if (std::strcmp(interface, zwp_keyboard_shortcuts_inhibit_manager_v1_interface.name) == 0) {
    *static_cast<Manager**>(manager) = static_cast<Manager*>(wl_registry_bind(
        registry, name, &zwp_keyboard_shortcuts_inhibit_manager_v1_interface, version));
  }
}

void onGlobalRemove(void* /*data*/, wl_registry* /*registry*/, std::uint32_t /*name*/) {}

constexpr wl_registry_listener listener{onGlobal, onGlobalRemove};

}  // namespace

// They end in the order from the last to the first.
struct ShortcutsInhibitor::Objects {
  Owned<wl_event_queue, wl_event_queue_destroy> queue;
  Owned<wl_registry, wl_registry_destroy> registry;
  Owned<Manager, zwp_keyboard_shortcuts_inhibit_manager_v1_destroy> manager;
  Owned<Inhibitor, zwp_keyboard_shortcuts_inhibitor_v1_destroy> inhibitor;
};

// What the compositor offers is asked on a queue of its own, so that no event of the windows is
// handled here.
std::unique_ptr<ShortcutsInhibitor> ShortcutsInhibitor::of(QWindow& window) {
  wl_display* display = waylanddisplay::display();
  wl_seat* seat = waylanddisplay::seat();
  wl_surface* surface = waylanddisplay::surfaceOf(window);
  if (display == nullptr || seat == nullptr || surface == nullptr) {
    return nullptr;
  }
  auto objects = std::make_unique<Objects>();
  objects->queue.reset(wl_display_create_queue(display));
  const std::unique_ptr<wl_display, WrapperEnd> wrapper(
      static_cast<wl_display*>(wl_proxy_create_wrapper(display)));
  wl_proxy_set_queue(reinterpret_cast<wl_proxy*>(wrapper.get()), objects->queue.get());
  objects->registry.reset(wl_display_get_registry(wrapper.get()));
  Manager* manager = nullptr;
  wl_registry_add_listener(objects->registry.get(), &listener, static_cast<void*>(&manager));
  wl_display_roundtrip_queue(display, objects->queue.get());
  objects->manager.reset(manager);
  if (manager == nullptr) {
    return nullptr;
  }
  objects->inhibitor.reset(
      zwp_keyboard_shortcuts_inhibit_manager_v1_inhibit_shortcuts(manager, surface, seat));
  waylanddisplay::flush();
  return std::unique_ptr<ShortcutsInhibitor>(new ShortcutsInhibitor(std::move(objects)));
}

ShortcutsInhibitor::~ShortcutsInhibitor() {
  m_objects.reset();
  waylanddisplay::flush();
}
#else
struct ShortcutsInhibitor::Objects {};

std::unique_ptr<ShortcutsInhibitor> ShortcutsInhibitor::of(QWindow& /*window*/) {
  return nullptr;
}

ShortcutsInhibitor::~ShortcutsInhibitor() = default;
#endif

ShortcutsInhibitor::ShortcutsInhibitor(std::unique_ptr<Objects> objects)
    : m_objects(std::move(objects)) {}
