#pragma once

enum class StatusNotifierHost {
    None,
    Registered,
    Silent, ///< somebody holds the name and does not answer
};

/// Whether a tray that speaks the StatusNotifier protocol is registered on the session bus now. Asks the bus afresh on
/// every call, unlike Qt, and waits for its answer for at most half a second. Any thread.
StatusNotifierHost FindStatusNotifierHost();
