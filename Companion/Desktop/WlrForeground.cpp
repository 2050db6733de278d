#include "Companion/Desktop/WlrForeground.h"

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <list>
#include <utility>

#include <wayland-client.h>

#include "Companion/Desktop/WlrProtocol.h"

namespace {

struct Disconnect {
  void operator()(wl_display* display) const { wl_display_disconnect(display); }
};
struct Destroy {
  void operator()(wl_registry* registry) const { wl_registry_destroy(registry); }
  void operator()(wl_callback* callback) const { wl_callback_destroy(callback); }
};

}  // namespace

struct WlrForeground::State {
  struct Window {
    State* state = nullptr;
    wl_proxy* handle = nullptr;
    std::string appId;
    bool isActivated = false;
    // As of the last complete change.
    std::string shownAppId;
    bool isInFront = false;
  };

  std::unique_ptr<wl_display, Disconnect> display;
  // They go before the display.
  std::unique_ptr<wl_registry, Destroy> registry;
  std::unique_ptr<wl_callback, Destroy> allNamed;
  std::unique_ptr<wl_callback, Destroy> allListed;
  wl_proxy* manager = nullptr;
  std::list<Window> windows;
  bool isReady = false;
  bool isOver = false;
  bool hasTold = false;
  std::optional<std::string> told;
  Changed changed;
  Lost lost;
  // Goes before the connection that it waits for.
  std::unique_ptr<EventLoop::Watch> watch;

  void listen();
  void take();
  void tell();
  void end();
  void addWindow(wl_proxy* handle);
  void removeWindow(Window& window);

  // What the compositor says; the functions stand in the order of the protocol.
  static void onGlobal(void* data, wl_registry* registry, std::uint32_t name, const char* interface,
                       std::uint32_t version);
  static int onManager(const void* implementation, void* target, std::uint32_t opcode,
                       const wl_message* message, wl_argument* arguments);
  static int onWindow(const void* implementation, void* target, std::uint32_t opcode,
                      const wl_message* message, wl_argument* arguments);
};

void WlrForeground::State::onGlobal(void* data, wl_registry* registry, std::uint32_t name,
                                    const char* interface, std::uint32_t /*version*/) {
  auto& state = *static_cast<State*>(data);
  const wl_interface& wanted = wlrprotocol::manager();
  if (state.manager != nullptr || std::strcmp(interface, wanted.name) != 0) {
    return;
  }
  state.manager = static_cast<wl_proxy*>(wl_registry_bind(registry, name, &wanted, 1));
  wl_proxy_add_dispatcher(state.manager, onManager, nullptr, &state);
  // The windows of now arrive before the answer to this.
  static const wl_callback_listener listed{
      [](void* owner, wl_callback*, std::uint32_t) { static_cast<State*>(owner)->isReady = true; }};
  state.allListed.reset(wl_display_sync(state.display.get()));
  wl_callback_add_listener(state.allListed.get(), &listed, &state);
}

int WlrForeground::State::onManager(const void* /*implementation*/, void* target,
                                    std::uint32_t opcode, const wl_message* /*message*/,
                                    wl_argument* arguments) {
  enum Event { Toplevel, Finished };
  auto& state = *static_cast<State*>(wl_proxy_get_user_data(static_cast<wl_proxy*>(target)));
  if (opcode == Toplevel) {
    state.addWindow(reinterpret_cast<wl_proxy*>(arguments[0].o));
  } else if (opcode == Finished) {
    state.isOver = true;
  }
  return 0;
}

int WlrForeground::State::onWindow(const void* /*implementation*/, void* target,
                                   std::uint32_t opcode, const wl_message* /*message*/,
                                   wl_argument* arguments) {
  // The title is nobody's business.
  enum Event { Title, AppId, OutputEnter, OutputLeave, States, Done, Closed };
  auto& window = *static_cast<Window*>(wl_proxy_get_user_data(static_cast<wl_proxy*>(target)));
  switch (opcode) {
    case AppId:
      window.appId = arguments[0].s;
      break;
    case States: {
      const auto* first = static_cast<const std::uint32_t*>(arguments[0].a->data);
      const auto* last = first + arguments[0].a->size / sizeof(*first);
      window.isActivated = std::find(first, last, wlrprotocol::Activated) != last;
      break;
    }
    case Done:
      window.shownAppId = window.appId;
      window.isInFront = window.isActivated;
      break;
    case Closed:
      window.state->removeWindow(window);
      break;
    default:
      break;
  }
  return 0;
}

void WlrForeground::State::addWindow(wl_proxy* handle) {
  Window& window = windows.emplace_back();
  window.state = this;
  window.handle = handle;
  wl_proxy_add_dispatcher(handle, onWindow, nullptr, &window);
}

void WlrForeground::State::removeWindow(Window& window) {
  wl_proxy_marshal_flags(window.handle, wlrprotocol::Destroy, nullptr, 1, WL_MARSHAL_FLAG_DESTROY);
  windows.remove_if([&](const Window& one) { return &one == &window; });
}

void WlrForeground::State::listen() {
  registry.reset(wl_display_get_registry(display.get()));
  static const wl_registry_listener globals{onGlobal, [](void*, wl_registry*, std::uint32_t) {}};
  wl_registry_add_listener(registry.get(), &globals, this);
  static const wl_callback_listener named{[](void* owner, wl_callback*, std::uint32_t) {
    auto& state = *static_cast<State*>(owner);
    state.isOver = state.isOver || state.manager == nullptr;
  }};
  allNamed.reset(wl_display_sync(display.get()));
  wl_callback_add_listener(allNamed.get(), &named, this);
  wl_display_flush(display.get());
}

void WlrForeground::State::take() {
  bool isBroken = false;
  while (!isBroken && wl_display_prepare_read(display.get()) != 0) {
    isBroken = wl_display_dispatch_pending(display.get()) < 0;
  }
  // Reads what is there, without waiting.
  isBroken = isBroken || wl_display_read_events(display.get()) < 0 ||
             wl_display_dispatch_pending(display.get()) < 0 ||
             (wl_display_flush(display.get()) < 0 && errno != EAGAIN);
  if (isBroken || isOver) {
    end();
  } else if (isReady) {
    tell();
  }
}

void WlrForeground::State::tell() {
  const auto front = std::find_if(windows.begin(), windows.end(),
                                  [](const Window& window) { return window.isInFront; });
  const auto id = front != windows.end() ? std::optional(front->shownAppId) : std::nullopt;
  if (std::exchange(hasTold, true) && told == id) {
    return;
  }
  told = id;
  std::optional<AppIdentity> identity;
  if (id) {
    identity.emplace();
    identity->appId = *id;
  }
  changed(identity);
}

void WlrForeground::State::end() {
  watch.reset();
  if (lost) {
    std::exchange(lost, nullptr)();
  }
}

WlrForeground::WlrForeground(std::unique_ptr<State> state) : m_state(std::move(state)) {}

WlrForeground::~WlrForeground() {
  for (const State::Window& window : m_state->windows) {
    wl_proxy_destroy(window.handle);
  }
  if (m_state->manager != nullptr) {
    wl_proxy_destroy(m_state->manager);
  }
}

std::unique_ptr<WlrForeground> WlrForeground::open(EventLoop& loop, Changed changed, Lost lost) {
  auto state = std::make_unique<State>();
  state->display.reset(wl_display_connect(nullptr));
  if (!state->display) {
    return nullptr;
  }
  state->changed = std::move(changed);
  state->lost = std::move(lost);
  State* raw = state.get();
  state->watch = loop.watch(wl_display_get_fd(state->display.get()), [raw] { raw->take(); });
  if (!state->watch) {
    return nullptr;
  }
  state->listen();
  return std::unique_ptr<WlrForeground>(new WlrForeground(std::move(state)));
}
