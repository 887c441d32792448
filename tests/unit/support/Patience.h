#pragma once

/// How long a test waits for what has to come: long, for a machine that is emulated and busy with other things.
const int patienceMs = 120000;
