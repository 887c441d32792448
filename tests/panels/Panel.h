#pragma once

#include "tests/desktop/DesktopSession.h"

/// A desktop's own panel, with its own settings.
struct Panel {
    const char *name;
    /// Starts the panel and what belongs to it; returns once it is a host for icons, or false.
    bool (*start)(DesktopSession &desktop);
    /// The environment in which that desktop starts a program.
    QProcessEnvironment (*environment)(const DesktopSession &desktop);
};

const std::vector<Panel> &allPanels();
