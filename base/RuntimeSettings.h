#pragma once

/// Settings of Qt and of the C library that hold for the whole process. To be called first in main, while there is no
/// other thread.
void ApplyRuntimeSettings();
