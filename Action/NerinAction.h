#pragma once

// The operations of the core, all at once.
#include "Action/Catalogue/FunctionCatalogue.h"
#include "Action/Catalogue/MacroCatalogue.h"
#include "Action/Device/DeviceLink.h"
#include "Action/Device/DeviceSettings.h"
#include "Action/Device/SlotTransfer.h"
#include "Action/Edit/SlotOperations.h"
#include "Action/Library/SupportFolder.h"
#include "Action/Service/DaemonMessages.h"
#include "Action/Wire/KeyCodes.h"
#include "Action/Wire/MacroImage.h"
#include "Action/Wire/ProfileImage.h"
