#pragma once

#include <QStringList>
#include <QtGlobal>

/// The persisted tray settings. Main thread only.
struct TraySettings {
    bool bAutoLaunch = false;
    bool bStartWebService = false;
    bool bStartWebServiceWithSSL = false;
    qint32 nWebSocketPort = 8089;
    qint32 nWebSocketSecurePort = 8090; // kept for the secure service, which nothing starts
    qint32 nUILangID = 2;

    /// Reads the settings file; what it lacks stays as it is. An automatic launch that the file knows of is replaced by
    /// whether the desktop variant's autostart entry exists.
    void Load(int nOSProductID);
    /// The keys of the file.
    static QStringList Keys();
    /// Writes all settings; a failure goes unnoticed.
    void Save() const;
};
