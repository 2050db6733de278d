#pragma once

#include <memory>
#include <string>

#include "Kit/Core/LXPlatform.h"

// The outside as this desktop gives it, but for the mouse and the bus, which the program chooses.
LXPlatform realPlatform(std::shared_ptr<LXDeviceRequester> requester,
                        std::shared_ptr<LXNotificationCenter> center);
