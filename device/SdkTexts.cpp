#include "device/SdkTexts.h"

#include "base/JsonText.h"

#include <QByteArray>

#include <cstring>

QString TextFromLibrary(const char *szText)
{
    const std::size_t nLength = szText ? std::strlen(szText) : 0;
    return nLength <= nMostTextUnits ? QString::fromUtf8(szText, static_cast<int>(nLength)) : QString();
}

QString TextFromBuffer(const char *buffer, std::size_t size)
{
    return QString::fromUtf8(buffer, static_cast<int>(qstrnlen(buffer, static_cast<uint>(size))));
}

bool IsDeviceInfoType(int nType)
{
    return nType >= 1 && nType <= 7;
}

QString FormatDeviceInfo(int nType, const DeviceInfo &info)
{
    switch (nType) {
    case 1:
        return info.bDeviceConnected != 0 ? QStringLiteral("true") : QStringLiteral("false");
    case 2:
    case 3:
        return QStringLiteral("%1,%2").arg(info.values[0]).arg(info.values[1]);
    case 4:
        return QStringLiteral("0,%1").arg(info.values[0]); // the leading zero is fixed text
    case 5:
    case 6:
        return TextFromBuffer(info.text, sizeof info.text);
    case 7:
        return QStringLiteral("%1.%2").arg(info.values[0]).arg(info.values[1]);
    default:
        return {};
    }
}
