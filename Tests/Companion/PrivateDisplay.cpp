#include "Tests/Companion/PrivateDisplay.h"

#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <sstream>
#include <stdexcept>
#include <thread>

#include <stdlib.h>

using namespace std::chrono_literals;

namespace {

template <typename Reply>
std::unique_ptr<Reply, decltype(&std::free)> owned(Reply* reply) {
  return {reply, &std::free};
}

// The whole line that is a number; empty if there is none yet.
std::string numberIn(const std::string& text) {
  std::istringstream lines(text.substr(0, text.rfind('\n') + 1));
  for (std::string line; std::getline(lines, line);) {
    if (!line.empty() && line.find_first_not_of("0123456789") == std::string::npos) {
      return line;
    }
  }
  return {};
}

}  // namespace

PrivateDisplay::PrivateDisplay(bool hasWindowManager) {
  m_server = std::make_unique<ChildProcess>(std::vector<std::string>{
      "Xvfb", "-displayfd", "1", "-screen", "0", "800x600x24", "-nolisten", "tcp", "-noreset"});
  // Servers that start at the same time first complain about the numbers that are taken.
  std::string said;
  std::string number;
  while (number.empty()) {
    const std::string part = m_server->read(20s);
    if (part.empty()) {
      throw std::runtime_error("no X server: " + said);
    }
    said += part;
    number = numberIn(said);
  }
  setenv("DISPLAY", (":" + number).c_str(), 1);
  unsetenv("WAYLAND_DISPLAY");
  unsetenv("XAUTHORITY");
  if (!hasWindowManager) {
    return;
  }
  setenv("HOME", m_home.folder().c_str(), 1);
  // It tells of itself long before it takes windows, and runs this command last.
  const auto ready = m_home / "ready";
  m_windowManager = std::make_unique<ChildProcess>(
      std::vector<std::string>{"openbox", "--sm-disable", "--startup", "touch " + ready.string()});
  for (int attempt = 0; !std::filesystem::exists(ready); ++attempt) {
    if (attempt == 4000) {
      throw std::runtime_error("no window manager");
    }
    std::this_thread::sleep_for(5ms);
  }
}

PrivateDisplay::~PrivateDisplay() {
  unsetenv("DISPLAY");
}

void PrivateDisplay::end() {
  m_windowManager.reset();
  m_server.reset();
}

ProgramWindow::ProgramWindow(const std::string& instance, const std::string& className, int pid)
    : m_connection(xcb_connect(nullptr, nullptr)) {
  xcb_screen_t* screen = xcb_setup_roots_iterator(xcb_get_setup(m_connection)).data;
  m_root = screen->root;
  m_window = xcb_generate_id(m_connection);
  xcb_create_window(m_connection, XCB_COPY_FROM_PARENT, m_window, m_root, 10, 10, 200, 100, 0,
                    XCB_WINDOW_CLASS_INPUT_OUTPUT, screen->root_visual, 0, nullptr);
  const std::string names = instance + '\0' + className + '\0';
  xcb_change_property(m_connection, XCB_PROP_MODE_REPLACE, m_window, XCB_ATOM_WM_CLASS,
                      XCB_ATOM_STRING, 8, static_cast<std::uint32_t>(names.size()), names.data());
  if (pid != 0) {
    const auto value = static_cast<std::uint32_t>(pid);
    xcb_change_property(m_connection, XCB_PROP_MODE_REPLACE, m_window, atom("_NET_WM_PID"),
                        XCB_ATOM_CARDINAL, 32, 1, &value);
  }
  xcb_map_window(m_connection, m_window);
  xcb_flush(m_connection);
}

ProgramWindow::~ProgramWindow() {
  xcb_disconnect(m_connection);
}

void ProgramWindow::activate() {
  xcb_client_message_event_t event{};
  event.response_type = XCB_CLIENT_MESSAGE;
  event.format = 32;
  event.window = m_window;
  event.type = atom("_NET_ACTIVE_WINDOW");
  event.data.data32[0] = 2;  // as a pager asks
  xcb_send_event(m_connection, 0, m_root,
                 XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY,
                 reinterpret_cast<const char*>(&event));
  xcb_flush(m_connection);
}

void ProgramWindow::claimFront(bool isInFront) {
  const xcb_atom_t active = atom("_NET_ACTIVE_WINDOW");
  xcb_change_property(m_connection, XCB_PROP_MODE_REPLACE, m_root, atom("_NET_SUPPORTED"),
                      XCB_ATOM_ATOM, 32, 1, &active);
  const xcb_window_t front = isInFront ? m_window : static_cast<xcb_window_t>(XCB_WINDOW_NONE);
  xcb_change_property(m_connection, XCB_PROP_MODE_REPLACE, m_root, active, XCB_ATOM_WINDOW, 32, 1,
                      &front);
  xcb_flush(m_connection);
}

xcb_atom_t ProgramWindow::atom(const std::string& name) const {
  const auto reply = owned(xcb_intern_atom_reply(
      m_connection,
      xcb_intern_atom(m_connection, 0, static_cast<std::uint16_t>(name.size()), name.data()),
      nullptr));
  return reply ? reply->atom : static_cast<xcb_atom_t>(XCB_ATOM_NONE);
}
