#pragma once

/// The texts of the window that asks about an origin.
struct OriginQuestionTexts {
    const char *szTitle;
    const char *szHeadline;
    const char *szShared; ///< for an origin that cannot always be allowed
    const char *szCan;    ///< stands above what a page can do
    const char *szReads;
    const char *szDisturbs;
    const char *szWritesAnywhere;
    const char *szWritesBelow; ///< %1: folders
    const char *szWritesNothing;
    const char *szPatience;
    const char *szAllowThisTime;
    const char *szAllowAlways;
    const char *szNever;
    const char *szNotNow;
};

/// The texts of the window that lists what was answered for good.
struct OriginListTexts {
    const char *szTitle;
    const char *szExplanation;
    const char *szAllowed;
    const char *szBlocked;
    const char *szAllow;
    const char *szBlock;
    const char *szForget;
    const char *szClose;
    const char *szEmpty;
    const char *szFileFails; ///< %1: path
};

/// The tray's texts in one language, UTF-8.
struct TrayTexts {
    const char *szToolTip;
    const char *szStartService;
    const char *szStartSecureService;
    const char *szAutoLaunch;
    const char *szOriginList;
    const char *szExit;
    OriginQuestionTexts question;
    OriginListTexts list;
};

/// 1: Traditional Chinese, 2: Simplified Chinese, any other: English.
const TrayTexts &TrayTextsOf(int nUILangID);
