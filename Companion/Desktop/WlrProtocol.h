#pragma once

struct wl_interface;

// The part of the compositor's protocol that lists windows: the names, the numbers and the types of
// its messages, in their order, as the two sides must agree on them. Only what this program uses
// has a name here.
namespace wlrprotocol {

// "zwlr_foreign_toplevel_manager_v1", version 1, and "zwlr_foreign_toplevel_handle_v1".
const wl_interface& manager();
const wl_interface& handle();

// What can be asked of a handle.
enum HandleRequest { Destroy = 7 };
// One of the states of a window.
enum HandleState { Activated = 2 };

}  // namespace wlrprotocol
