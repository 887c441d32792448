#pragma once

#include "device/InkJson.h"
#include "device/PadControls.h"
#include "sdk/SdkNumbers.h"

#include <QByteArray>
#include <QString>

/// The ink that every pad model hands out: its points and pictures.
template <class Sdk>
class PadInk : public PadControls<Sdk>
{
public:
    QString GetPointer() override;
    QString Encode(int nType) override;
    QString GetInks() override;
    QString GetOpaqueInks() override;
    QString WPSGetInks() override;
    QString GetSVGImageBase64Data() override;

private:
    QByteArray m_strLastInksBase64Content; // one cache for all ink pictures, never cleared
};

template <class Sdk>
QString PadInk<Sdk>::GetPointer()
{
    MV_LOG_PAD("GetPointer", "Enter");
    const int nCount = this->GetSize();
    InkPointList points;
    const auto getPoint = this->fnGetInkPointData();
    const auto getTime = this->fnGetInkPointDataTimeInfo();
    const auto freeTime = this->fnFreeInkPointDataTimeInfo();
    const int nReadable = this->IsBound(getPoint, getTime, freeTime) ? nCount : 0;
    for (int i = 0; i < nReadable && !points.IsFull(); ++i) {
        _STRUCT_INK_POINT_DATA point{};
        point.nIndex = i;
        const int nResult = getPoint.pfn(Sdk::nDeviceID, &point);
        char *pTime = getTime.pfn(Sdk::nDeviceID, i);
        if (!pTime || nResult != sdk::Success)
            continue; // the time text of a point that could not be read stays with the library, on purpose
        points.Append(point, TextFromLibrary(pTime));
        freeTime.pfn(Sdk::nDeviceID, pTime);
    }
    QString strJsonDocInkPointerList = points.Take();
    MV_LOG_PAD("GetPointer", "Leave, strJsonDocInkPointerList.length=%d", strJsonDocInkPointerList.size());
    return strJsonDocInkPointerList;
}

template <class Sdk>
QString PadInk<Sdk>::Encode(int nType)
{
    MV_LOG_PAD("Encode", "Enter");
    return this->ReadText("Encode", this->fnBase64Encode(), this->fnBase64EncodeFree(),
                          [nType](auto encode) { return encode(Sdk::nDeviceID, nType); });
}

template <class Sdk>
QString PadInk<Sdk>::GetSVGImageBase64Data()
{
    MV_LOG_PAD("GetSVGImageBase64Data", "Enter");
    return this->ReadText("GetSVGImageBase64Data", this->fnGetSVGImageBase64Data(), this->fnFreeSVGImageBase64Data(),
                          [](auto getSvg) { return getSvg(Sdk::nDeviceID); });
}

template <class Sdk>
QString PadInk<Sdk>::GetInks()
{
    MV_LOG_PAD("GetInks", "Enter");
    return this->ReadChangedImage("GetInks", ImageEvent::Ink, m_strLastInksBase64Content, this->fnBase64Encode(),
                                  this->fnBase64EncodeFree(),
                                  [](auto encode) { return encode(Sdk::nDeviceID, sdk::PngImage); });
}

template <class Sdk>
QString PadInk<Sdk>::GetOpaqueInks()
{
    MV_LOG_PAD("GetOpaqueInks", "Enter");
    return this->ReadChangedImage("GetOpaqueInks", ImageEvent::Ink, m_strLastInksBase64Content,
                                  this->fnBase64EncodeEx(), this->fnBase64EncodeExFree(),
                                  [](auto encode) { return encode(Sdk::nDeviceID, sdk::PngImage, 0); });
}

template <class Sdk>
QString PadInk<Sdk>::WPSGetInks()
{
    // Goes through Base64EncodeEx on purpose, although the library has an encoder of its own for WPS.
    MV_LOG_PAD("WPSGetInks", "Enter");
    return this->ReadChangedImage("WPSGetInks", ImageEvent::Ink, m_strLastInksBase64Content, this->fnBase64EncodeEx(),
                                  this->fnBase64EncodeExFree(),
                                  [](auto encode) { return encode(Sdk::nDeviceID, sdk::TransparentPngImage, 0); });
}
