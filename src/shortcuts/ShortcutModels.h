/// What a global shortcut is: bindings, the configuration of the three roles, their JSON form and how they
/// are shown. The values themselves are described in the headers named here.
#pragma once

#include "shortcuts/RecordingTriggerMode.h"
#include "shortcuts/ShortcutBinding.h"
#include "shortcuts/ShortcutConfiguration.h"
#include "shortcuts/ShortcutModifiers.h"
