#include "tray/DesktopVariant.h"

#include <QDir>

namespace {

struct DesktopVariant {
    const char *szProductType;
    const char *szDesktopEntry;
};

/// A desktop's number is its row, counted from 1.
const DesktopVariant desktopVariants[nDesktopVariants] = {
    {"uos", "com.morvane.mvsignpaddriver.desktop"},
    {"kylin", "mvsignpaddriver-kylin.desktop"},
    {"neokylin", "mvsignpaddriver-neokylin.desktop"},
    {"nfsdesktop", "mvsignpaddriver-nfs.desktop"},
};

QString DesktopEntryIn(const QString &folder, int nOSProductID)
{
    if (nOSProductID < 1 || nOSProductID > nDesktopVariants)
        return {};
    return folder + QLatin1Char('/') + QLatin1String(desktopVariants[nOSProductID - 1].szDesktopEntry);
}

} // namespace

int DesktopVariantOf(const QString &productType)
{
    int nOSProductID = 0;
    for (const DesktopVariant &variant : desktopVariants) {
        ++nOSProductID;
        if (productType == QLatin1String(variant.szProductType))
            return nOSProductID;
    }
    return 0;
}

QString AutostartFolder()
{
    return QDir::homePath() + QStringLiteral("/.config/autostart");
}

QString AutostartTarget(int nOSProductID)
{
    return DesktopEntryIn(AutostartFolder(), nOSProductID);
}

QString AutostartSource(int nOSProductID)
{
    return DesktopEntryIn(QStringLiteral("/usr/share/applications"), nOSProductID);
}
