#pragma once

#include "service/AccessPolicy.h"
#include "tools/BusStatus.h"
#include "tray/TraySettings.h"

#include <QString>
#include <QVariantMap>
#include <QVector>

/// The name of the program's file, which the single-instance guard looks for in every command line.
constexpr char programName[] = "mvsignpadsdk_wssvr";

/// What a symbolic link says, whether or not it is a path. Empty when it is none, or not to be read. Qt's own function
/// has got another name since 5.9.
QString LinkText(const QString &path);

struct Process {
    int nId = 0;
    uint nUser = 0;
    QString executable;  ///< empty when this user may not know
    QString commandLine; ///< its words with blanks between them
    bool bProgram = false;

    /// As in "process 17 of user anna".
    QString Name() const;
};

/// What the checks look at: the machine as it is when the doctor comes.
struct Machine {
    Machine();

    /// The program of this user, or else of another; null when none runs.
    const Process *Program() const;
    /// A property of the running program's; invalid when it is not on the bus.
    QVariant Told(const char *szProperty) const { return told.value(QLatin1String(szProperty)); }

    BusStatus bus;
    QVariantMap told;
    QVector<Process> processes;
    TraySettings settings;
    AccessPolicy access;
    QString folder; ///< of the program and of the library beside it
};
