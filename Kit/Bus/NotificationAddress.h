#pragma once

// Where the broadcast notifications are on the bus. The member of a signal is the notification's
// name.
namespace notificationaddress {

inline constexpr const char* path = "/com/corvex/NerinOption";
inline constexpr const char* interface = "com.corvex.NerinOption.Notification";

}  // namespace notificationaddress
