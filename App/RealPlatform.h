#pragma once

#include <memory>
#include <string>

#include "Kit/Core/LXPlatform.h"

// The outside as this desktop provides it. The program chooses the mouse and the bus, and by its
// identifier where its files lie.
LXPlatform realPlatform(std::shared_ptr<LXDeviceRequester> requester,
                        std::shared_ptr<LXNotificationCenter> center,
                        const std::string& bundle = LXPlatform().bundleIdentifier);
