#pragma once

#include <QString>
#include <QStringList>

/// How one of the three WPS applications wants its signatures.
struct WpsApplicationSettings {
    bool bEnableDateTime = false;
    bool bEnableAutoFit = false;
    int nPenWidth = 3;
    QString strName;
};

/// The WPS signature settings, kept in the user's MVeSign_WPS settings file. Service thread only.
struct _STRUCT_WPS_SETTINGS_INIDATA { // NOLINT(bugprone-reserved-identifier): the record's established name
    WpsApplicationSettings WPS;       ///< writer
    WpsApplicationSettings ET;        ///< spreadsheet
    WpsApplicationSettings WPP;       ///< presentation

    /// The application that a request's id selects: 2 ET, 3 WPP, any other WPS.
    WpsApplicationSettings &Application(int nID);

    /// Reads the file; what it lacks stays as it is.
    void LoadWPSSettingsFromConfigureFile();
    /// Writes all settings; a failure goes unnoticed.
    void UpdateWPSSettingsToConfigureFile() const;
};

/// The keys of the WPS settings file.
QStringList WpsSettingsKeys();
