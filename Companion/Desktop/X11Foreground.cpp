#include "Companion/Desktop/X11Foreground.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <string_view>
#include <utility>
#include <vector>

#include <xcb/xcb.h>

namespace {

// The longest class that is read, in units of four bytes.
constexpr std::uint32_t longestText = 256;

struct Disconnect {
  void operator()(xcb_connection_t* connection) const { xcb_disconnect(connection); }
};
struct Free {
  void operator()(void* memory) const { std::free(memory); }
};

template <typename Reply>
using ReplyOf = std::unique_ptr<Reply, Free>;

xcb_window_t rootOf(xcb_connection_t* connection, int screenNumber) {
  auto screens = xcb_setup_roots_iterator(xcb_get_setup(connection));
  for (; screenNumber > 0 && screens.rem > 1; --screenNumber) {
    xcb_screen_next(&screens);
  }
  return screens.rem > 0 ? screens.data->root : static_cast<xcb_window_t>(XCB_WINDOW_NONE);
}

}  // namespace

struct X11Foreground::State {
  std::unique_ptr<xcb_connection_t, Disconnect> connection;
  xcb_window_t root = XCB_WINDOW_NONE;
  xcb_atom_t active = XCB_ATOM_NONE;
  xcb_atom_t supported = XCB_ATOM_NONE;
  xcb_atom_t pid = XCB_ATOM_NONE;
  bool isFirst = true;
  Changed changed;
  std::function<void()> lost;
  // Goes before the connection that it waits for.
  std::unique_ptr<EventLoop::Watch> watch;
  std::unique_ptr<EventLoop::Timer> later;

  xcb_atom_t atom(std::string_view name) const;
  ReplyOf<xcb_get_property_reply_t> property(xcb_window_t of, xcb_atom_t name,
                                             xcb_atom_t type) const;
  std::vector<std::uint32_t> numbers(xcb_window_t of, xcb_atom_t name, xcb_atom_t type) const;
  bool isToldByWindowManager() const;
  AppIdentity identityOf(xcb_window_t one) const;
  void look();
  void takeEvents();
};

xcb_atom_t X11Foreground::State::atom(std::string_view name) const {
  const ReplyOf<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(
      connection.get(),
      xcb_intern_atom(connection.get(), 0, static_cast<std::uint16_t>(name.size()), name.data()),
      nullptr));
  return reply ? reply->atom : static_cast<xcb_atom_t>(XCB_ATOM_NONE);
}

ReplyOf<xcb_get_property_reply_t> X11Foreground::State::property(xcb_window_t of, xcb_atom_t name,
                                                                 xcb_atom_t type) const {
  return ReplyOf<xcb_get_property_reply_t>(xcb_get_property_reply(
      connection.get(), xcb_get_property(connection.get(), 0, of, name, type, 0, longestText),
      nullptr));
}

std::vector<std::uint32_t> X11Foreground::State::numbers(xcb_window_t of, xcb_atom_t name,
                                                         xcb_atom_t type) const {
  const auto reply = property(of, name, type);
  if (!reply || reply->format != 32) {
    return {};
  }
  const auto* first = static_cast<const std::uint32_t*>(xcb_get_property_value(reply.get()));
  return {first, first + reply->value_len};
}

bool X11Foreground::State::isToldByWindowManager() const {
  const auto told = numbers(root, supported, XCB_ATOM_ATOM);
  return std::find(told.begin(), told.end(), active) != told.end();
}

AppIdentity X11Foreground::State::identityOf(xcb_window_t one) const {
  AppIdentity identity;
  if (const auto reply = property(one, XCB_ATOM_WM_CLASS, XCB_ATOM_STRING);
      reply && reply->format == 8) {
    // Two texts, each with a NUL: the instance and the class.
    const std::string_view both(
        static_cast<const char*>(xcb_get_property_value(reply.get())),
        static_cast<std::size_t>(xcb_get_property_value_length(reply.get())));
    const auto end = both.find('\0');
    identity.instance = both.substr(0, end);
    if (end != std::string_view::npos) {
      const std::string_view second = both.substr(end + 1);
      identity.appId = second.substr(0, second.find('\0'));
    }
  }
  if (const auto numbersOfPid = numbers(one, pid, XCB_ATOM_CARDINAL); !numbersOfPid.empty()) {
    identity.pid = static_cast<int>(numbersOfPid.front());
    foreground::describeProcess(identity);
  }
  return identity;
}

void X11Foreground::State::look() {
  const auto windows = numbers(root, active, XCB_ATOM_WINDOW);
  const xcb_window_t window =
      windows.empty() ? static_cast<xcb_window_t>(XCB_WINDOW_NONE) : windows.front();
  if (window == XCB_WINDOW_NONE) {
    changed(std::nullopt);
    return;
  }
  const AppIdentity identity = identityOf(window);
  // A window that says nothing of itself belongs to some program, unless it closed meanwhile.
  const bool isThere = !identity.appId.empty() || !identity.executable.empty() ||
                       property(window, XCB_ATOM_WM_CLASS, XCB_ATOM_STRING) != nullptr;
  changed(isThere ? std::optional(identity) : std::nullopt);
}

void X11Foreground::State::takeEvents() {
  bool isDue = false;
  while (const ReplyOf<xcb_generic_event_t> event{xcb_poll_for_event(connection.get())}) {
    if ((event->response_type & 0x7F) == XCB_PROPERTY_NOTIFY) {
      const auto* notice = reinterpret_cast<const xcb_property_notify_event_t*>(event.get());
      isDue = isDue || notice->atom == active;
    }
  }
  if (isDue) {
    look();
    // The questions may have fetched further events, which no longer make the socket readable.
    if (xcb_connection_has_error(connection.get()) == 0) {
      later->startIn(std::chrono::milliseconds(0));
      return;
    }
  }
  if (xcb_connection_has_error(connection.get()) != 0) {
    watch.reset();
    const auto tell = lost;
    tell();
  }
}

X11Foreground::X11Foreground(std::unique_ptr<State> state) : m_state(std::move(state)) {}

X11Foreground::~X11Foreground() = default;

std::unique_ptr<X11Foreground> X11Foreground::open(EventLoop& loop, Changed changed,
                                                   std::function<void()> lost) {
  auto state = std::make_unique<State>();
  int screen = 0;
  state->connection.reset(xcb_connect(nullptr, &screen));
  xcb_connection_t* connection = state->connection.get();
  if (xcb_connection_has_error(connection) != 0) {
    return nullptr;
  }
  state->root = rootOf(connection, screen);
  state->active = state->atom("_NET_ACTIVE_WINDOW");
  state->supported = state->atom("_NET_SUPPORTED");
  state->pid = state->atom("_NET_WM_PID");
  if (state->root == XCB_WINDOW_NONE || !state->isToldByWindowManager()) {
    return nullptr;
  }
  constexpr std::uint32_t events = XCB_EVENT_MASK_PROPERTY_CHANGE;
  xcb_change_window_attributes(connection, state->root, XCB_CW_EVENT_MASK, &events);
  xcb_flush(connection);
  state->changed = std::move(changed);
  state->lost = std::move(lost);
  State* raw = state.get();
  state->watch = loop.watch(xcb_get_file_descriptor(connection), [raw] { raw->takeEvents(); });
  // The first state is told from the loop, like every later one.
  state->later = std::make_unique<EventLoop::Timer>(loop, [raw] {
    if (std::exchange(raw->isFirst, false)) {
      raw->look();
    }
    raw->takeEvents();
  });
  state->later->startIn(std::chrono::milliseconds(0));
  return std::unique_ptr<X11Foreground>(new X11Foreground(std::move(state)));
}
