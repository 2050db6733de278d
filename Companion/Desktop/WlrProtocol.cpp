#include "Companion/Desktop/WlrProtocol.h"

#include <array>

#include <wayland-client-core.h>
#include <wayland-client-protocol.h>

namespace {

// The interfaces of the objects in a message, one for each argument.
const std::array<const wl_interface*, 5> plain{};
const std::array<const wl_interface*, 1> seat{&wl_seat_interface};
const std::array<const wl_interface*, 1> output{&wl_output_interface};
const std::array<const wl_interface*, 5> surface{&wl_surface_interface};

wl_message message(const char* name, const char* signature, const wl_interface* const* types) {
  return {name, signature, const_cast<const wl_interface**>(types)};
}

}  // namespace

const wl_interface& wlrprotocol::handle() {
  static const std::array requests{message("set_maximized", "", plain.data()),
                                   message("unset_maximized", "", plain.data()),
                                   message("set_minimized", "", plain.data()),
                                   message("unset_minimized", "", plain.data()),
                                   message("activate", "o", seat.data()),
                                   message("close", "", plain.data()),
                                   message("set_rectangle", "oiiii", surface.data()),
                                   message("destroy", "", plain.data())};
  static const std::array events{
      message("title", "s", plain.data()),         message("app_id", "s", plain.data()),
      message("output_enter", "o", output.data()), message("output_leave", "o", output.data()),
      message("state", "a", plain.data()),         message("done", "", plain.data()),
      message("closed", "", plain.data())};
  static const wl_interface interface {
    "zwlr_foreign_toplevel_handle_v1", 1, static_cast<int>(requests.size()), requests.data(),
        static_cast<int>(events.size()), events.data()
  };
  return interface;
}

const wl_interface& wlrprotocol::manager() {
  static const std::array<const wl_interface*, 1> handles{&handle()};
  static const std::array requests{message("stop", "", plain.data())};
  static const std::array events{message("toplevel", "n", handles.data()),
                                 message("finished", "", plain.data())};
  static const wl_interface interface {
    "zwlr_foreign_toplevel_manager_v1", 1, static_cast<int>(requests.size()), requests.data(),
        static_cast<int>(events.size()), events.data()
  };
  return interface;
}
