#pragma once

// The operations of the core, all at once.
#include "Action/DaemonMessages.h"
#include "Action/DeviceLink.h"
#include "Action/DeviceSettings.h"
#include "Action/FunctionCatalogue.h"
#include "Action/KeyCodes.h"
#include "Action/MacroCatalogue.h"
#include "Action/MacroImage.h"
#include "Action/ProfileImage.h"
#include "Action/SlotOperations.h"
#include "Action/SupportFolder.h"
