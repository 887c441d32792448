#pragma once

#include "service/AccessPolicy.h"

/// Reads the access settings files, which the program never writes: what a package has brought, then the machine's,
/// then the user's own, the later one with the last word on each key. Anything in them that is not understood serves
/// nobody, and the policy says why; so does a group Access in the tray settings files, where version 1.0 looked for it.
/// Any thread.
AccessPolicy ReadAccessPolicy();

/// The same for the service: one line on standard error says why it stays closed. Any thread.
AccessPolicy LoadAccessPolicy();
