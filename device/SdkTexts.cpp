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

QVector<wchar_t> TextForLibrary(const QString &strText)
{
    QVector<wchar_t> codePoints(strText.size() + 1); // all zero
    strText.toWCharArray(codePoints.data());
    return codePoints;
}

bool IsDeviceInfoType(int nType)
{
    return nType >= sdk::ConnectedInfo && nType <= sdk::VersionInfo;
}

QString FormatDeviceInfo(int nType, const DeviceInfo &info)
{
    switch (nType) {
    case sdk::ConnectedInfo:
        return info.bDeviceConnected != 0 ? QStringLiteral("true") : QStringLiteral("false");
    case sdk::LcdSizeInfo:
    case sdk::SamplingInfo:
        return QStringLiteral("%1,%2").arg(info.values[0]).arg(info.values[1]);
    case sdk::PressureInfo:
        return QStringLiteral("0,%1").arg(info.values[0]); // the leading zero is fixed text
    case sdk::ProductInfo:
    case sdk::SerialNumberInfo:
        return TextFromBuffer(info.text, sizeof info.text);
    case sdk::VersionInfo:
        return QStringLiteral("%1.%2").arg(info.values[0]).arg(info.values[1]);
    default:
        return {};
    }
}
