#pragma once

#include "service/AccessPolicy.h"

/// False when a line of the access group is no setting. Such a line is lost when the file is written. Any thread.
bool IsAccessGroupReadable();

/// Reads the access group of the tray settings file. A group that is not understood in full serves nobody, and one line
/// on standard error says why. Any thread.
AccessPolicy LoadAccessPolicy();
