#pragma once

#include <QStringList>

/// While it lives, every warning (or worse) that Qt or the program reports, on any thread, is kept here as well.
/// A test checks taken() to be empty: a service that is sound gives Qt nothing to complain about.
class WarningTrap
{
public:
    WarningTrap();
    ~WarningTrap();

    /// The warnings since the last call.
    QStringList taken();
};
