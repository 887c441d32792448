#pragma once

/// Settings of Qt, of the C library and of the system that hold for the whole process. To be called first in main,
/// while there is no other thread.
void ApplyRuntimeSettings();
