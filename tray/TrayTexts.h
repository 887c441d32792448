#pragma once

/// The tray's texts in one language, UTF-8.
struct TrayTexts {
    const char *szToolTip;
    const char *szStartService;
    const char *szStartSecureService;
    const char *szAutoLaunch;
    const char *szExit;
};

/// 1: Traditional Chinese, 2: Simplified Chinese, any other: English.
const TrayTexts &TrayTextsOf(int nUILangID);
