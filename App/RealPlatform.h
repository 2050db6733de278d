#pragma once

#include <memory>
#include <string>

#include "Kit/Core/LXPlatform.h"

// The outside as this desktop provides it. The program chooses the mouse and the bus.
LXPlatform realPlatform(std::shared_ptr<LXDeviceRequester> requester,
                        std::shared_ptr<LXNotificationCenter> center);
