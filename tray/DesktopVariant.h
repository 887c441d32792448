#pragma once

#include <QString>

/// The desktops with an entry of their own are numbered from 1 to this.
const int nDesktopVariants = 4;

/// The number of the desktop with this product type (QSysInfo::productType()), 0 when it is none of ours.
int DesktopVariantOf(const QString &productType);

/// The folder that the desktop launches programs from at log-in.
QString AutostartFolder();

/// Where the variant's autostart entry goes, and the packaged entry that it is a copy of; empty for variant 0.
QString AutostartTarget(int nOSProductID);
QString AutostartSource(int nOSProductID);
