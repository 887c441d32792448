// Definitions of SignObjModel, the pad's controls first, then its ink, then files.
#pragma once

template <class Sdk>
bool SignObjModel<Sdk>::InitialDevice(int nID, int nWidth, int nHeight)
{
    MV_LOG_PAD("InitialDevice", "Enter, nID=%d, nWidth=%d, nHeight=%d", nID, nWidth, nHeight);
    bool bResult = false;
    const auto function = this->fnInitialDevice();
    if (this->IsBound(function)) {
        bResult = function.pfn(nID, nullptr, 0, 0, nWidth, nHeight) != 0;
        MV_LOG_PAD("InitialDevice", "after call m_pfn_%s(), bResult=%d", function.szName, bResult);
    }
    MV_LOG_PAD("InitialDevice", "Leave, bResult=%d", bResult);
    return bResult;
}

template <class Sdk>
bool SignObjModel<Sdk>::UnInitialDevice()
{
    MV_LOG_PAD("UnInitialDevice", "Enter...");
    bool bResult = false;
    const auto function = this->fnUnInitialDevice();
    if (this->IsBound(function)) {
        const int nResult = function.pfn(Sdk::nDeviceID);
        MV_LOG_PAD("UnInitialDevice", "after call m_pfn_%s(), nResult=%d", function.szName, nResult);
        bResult = nResult == 0; // the other way round than InitialDevice, on purpose
    }
    MV_LOG_PAD("UnInitialDevice", "Leave, bResult=%d", bResult);
    return bResult;
}

template <class Sdk>
void SignObjModel<Sdk>::Clear()
{
    MV_LOG_PAD("Clear", "Enter...");
    const auto function = this->fnClear();
    if (this->IsBound(function)) {
        function.pfn(Sdk::nDeviceID);
        MV_LOG_PAD("Clear", "after call m_pfn_%s()", function.szName);
    }
    MV_LOG_PAD("Clear", "Leave !");
}

template <class Sdk>
bool SignObjModel<Sdk>::IsValid()
{
    MV_LOG_PAD("IsValid", "Enter...");
    bool bResult = false;
    const auto function = this->fnGetDeviceInfo();
    if (this->IsBound(function)) {
        DeviceInfo info{};
        const int nResult = function.pfn(Sdk::nDeviceID, 1, &info);
        MV_LOG_PAD("IsValid", "after call m_pfn_%s(), nResult=%d, bDeviceConnected=%d", function.szName, nResult,
                   info.bDeviceConnected);
        bResult = nResult == 0 && info.bDeviceConnected != 0;
    }
    MV_LOG_PAD("IsValid", "Leave, bResult=%d", bResult);
    return bResult;
}

template <class Sdk>
int SignObjModel<Sdk>::GetSize()
{
    MV_LOG_PAD("GetSize", "Enter...");
    int nInksCount = 0;
    const auto function = this->fnGetTotalInkPointsNumber();
    if (this->IsBound(function)) {
        nInksCount = function.pfn(Sdk::nDeviceID);
        MV_LOG_PAD("GetSize", "after call m_pfn_%s(), nInksCount=%d", function.szName, nInksCount);
    }
    MV_LOG_PAD("GetSize", "Leave, nInksCount=%d", nInksCount);
    return nInksCount;
}

template <class Sdk>
void SignObjModel<Sdk>::SetPenWidth(int nWidth)
{
    MV_LOG_PAD("SetPenWidth", "Enter, nWidth=%d", nWidth);
    this->CallAndLogResult("SetPenWidth", this->fnSetPenWidth(), nWidth);
    MV_LOG_PAD("SetPenWidth", "Leave !");
}

template <class Sdk>
void SignObjModel<Sdk>::SetPenStyle(bool bPressureOn)
{
    MV_LOG_PAD("SetPenStyle", "Enter, bPressureOn=%d", bPressureOn);
    this->CallAndLogResult("SetPenStyle", this->fnSetPenStyle(), bPressureOn);
    MV_LOG_PAD("SetPenStyle", "Leave !");
}

template <class Sdk>
void SignObjModel<Sdk>::SetPenColor(int nR, int nG, int nB)
{
    MV_LOG_PAD("SetPenColor", "Enter, nR=%d, nG=%d, nB=%d", nR, nG, nB);
    this->CallAndLogResult("SetPenColor", this->fnSetPenColor(), nR, nG, nB);
    MV_LOG_PAD("SetPenColor", "Leave !");
}

template <class Sdk>
void SignObjModel<Sdk>::SetClip(int nWidth, int nHeight)
{
    MV_LOG_PAD("SetClip", "Enter, nWidth=%d, nHeight=%d", nWidth, nHeight);
    const auto function = this->fnSetSaveClipImageMargin();
    if (nWidth < 0 || nHeight < 0)
        MV_LOG_PAD("SetClip", "after call m_pfn_%s(), nResult=%d", function.szName, -1);
    else
        this->CallAndLogResult("SetClip", function, nWidth != 0 || nHeight != 0 ? 1 : 0, nWidth, nHeight);
    MV_LOG_PAD("SetClip", "Leave !");
}

template <class Sdk>
int SignObjModel<Sdk>::GetDeviceConfirmOrCancelKeyStatus()
{
    MV_LOG_PAD("GetDeviceConfirmOrCancelKeyStatus", "Enter...");
    int nKeyStatus = -1;
    const auto function = this->fnGetDeviceConfirmOrCancelKeyStatus();
    if (this->IsBound(function)) {
        nKeyStatus = function.pfn(Sdk::nDeviceID);
        MV_LOG_PAD("GetDeviceConfirmOrCancelKeyStatus", "after call m_pfn_%s(), nKeyStatus=%d", function.szName,
                   nKeyStatus);
    }
    MV_LOG_PAD("GetDeviceConfirmOrCancelKeyStatus", "Leave with nKeyStatus=%d", nKeyStatus);
    return nKeyStatus;
}

template <class Sdk>
QString SignObjModel<Sdk>::GetDeviceInfo(int nType)
{
    MV_LOG_PAD("GetDeviceInfo", "Enter, nType=%d", nType);
    QString strResult;
    int nResult = -1;
    const auto function = this->fnGetDeviceInfo();
    if (this->IsBound(function) && IsDeviceInfoType(nType)) {
        DeviceInfo info{};
        nResult = function.pfn(Sdk::nDeviceID, nType, &info);
        MV_LOG_PAD("GetDeviceInfo", "after call m_pfn_%s(), nResult=%d", function.szName, nResult);
        strResult = FormatDeviceInfo(nType, info); // whether or not the call succeeded
    }
    MV_LOG_PAD("GetDeviceInfo", "Leave with strResult.length=%d, nResult=%d", strResult.size(), nResult);
    return strResult;
}

template <class Sdk>
QString SignObjModel<Sdk>::VersionID()
{
    return this->ReadIdentifier("VersionID", this->fnGetHWVersion());
}

template <class Sdk>
QString SignObjModel<Sdk>::PadID()
{
    return this->ReadIdentifier("PadID", this->fnGetHWPadID());
}

template <class Sdk>
QString SignObjModel<Sdk>::GetAboutInfo()
{
    MV_LOG_PAD("GetAboutInfo", "Enter...");
    char buffer[256] = {};
    const auto function = this->fnGetAboutInfo();
    if (this->IsBound(function)) {
        function.pfn(Sdk::nDeviceID, buffer);
        MV_LOG_PAD("GetAboutInfo", "after call m_pfn_%s()", function.szName);
    }
    QString strResult = TextFromBuffer(buffer, sizeof buffer);
    MV_LOG_PAD("GetAboutInfo", "Leave with strResult.length=%d", strResult.size());
    return strResult;
}

template <class Sdk>
QString SignObjModel<Sdk>::GetPointer()
{
    MV_LOG_PAD("GetPointer", "Enter");
    const int nCount = GetSize();
    InkPointList points;
    const auto getPoint = this->fnGetInkPointData();
    const auto getTime = this->fnGetInkPointDataTimeInfo();
    const auto freeTime = this->fnFreeInkPointDataTimeInfo();
    for (int i = 0; this->IsBound(getPoint, getTime, freeTime) && i < nCount && !points.IsFull(); ++i) {
        _STRUCT_INK_POINT_DATA point{};
        point.nIndex = i;
        const int nResult = getPoint.pfn(Sdk::nDeviceID, &point);
        char *pTime = getTime.pfn(Sdk::nDeviceID, i);
        if (!pTime || nResult != 0)
            continue; // the time text of a point that could not be read stays with the library, on purpose
        points.Append(point, TextFromLibrary(pTime));
        freeTime.pfn(Sdk::nDeviceID, pTime);
    }
    QString strJsonDocInkPointerList = points.Take();
    MV_LOG_PAD("GetPointer", "Leave, strJsonDocInkPointerList.length=%d", strJsonDocInkPointerList.size());
    return strJsonDocInkPointerList;
}

template <class Sdk>
QString SignObjModel<Sdk>::Encode(int nType)
{
    MV_LOG_PAD("Encode", "Enter");
    return this->ReadText("Encode", this->fnBase64Encode(), this->fnBase64EncodeFree(),
                          [nType](auto encode) { return encode(Sdk::nDeviceID, nType); });
}

template <class Sdk>
QString SignObjModel<Sdk>::GetSVGImageBase64Data()
{
    MV_LOG_PAD("GetSVGImageBase64Data", "Enter");
    return this->ReadText("GetSVGImageBase64Data", this->fnGetSVGImageBase64Data(), this->fnFreeSVGImageBase64Data(),
                          [](auto getSvg) { return getSvg(Sdk::nDeviceID); });
}

template <class Sdk>
QString SignObjModel<Sdk>::GetInks()
{
    MV_LOG_PAD("GetInks", "Enter");
    return this->ReadChangedImage("GetInks", ImageEvent::Ink, m_strLastInksBase64Content, this->fnBase64Encode(),
                                  this->fnBase64EncodeFree(), [](auto encode) { return encode(Sdk::nDeviceID, 3); });
}

template <class Sdk>
QString SignObjModel<Sdk>::GetOpaqueInks()
{
    MV_LOG_PAD("GetOpaqueInks", "Enter");
    return this->ReadChangedImage("GetOpaqueInks", ImageEvent::Ink, m_strLastInksBase64Content,
                                  this->fnBase64EncodeEx(), this->fnBase64EncodeExFree(),
                                  [](auto encode) { return encode(Sdk::nDeviceID, 3, 0); });
}

template <class Sdk>
QString SignObjModel<Sdk>::WPSGetInks()
{
    // Goes through Base64EncodeEx on purpose, although the library has an encoder of its own for WPS.
    MV_LOG_PAD("WPSGetInks", "Enter");
    return this->ReadChangedImage("WPSGetInks", ImageEvent::Ink, m_strLastInksBase64Content, this->fnBase64EncodeEx(),
                                  this->fnBase64EncodeExFree(),
                                  [](auto encode) { return encode(Sdk::nDeviceID, 2, 0); });
}

template <class Sdk>
QString SignObjModel<Sdk>::Decode(int nType, QString strPath, QString strData)
{
    MV_LOG_PAD("Decode", "Enter, nType=%d, strPath=%s, strData.length=%d", nType, strPath.toUtf8().constData(),
               strData.size());
    QString strResult;
    const auto decode = this->fnBase64Decode();
    if (this->IsBound(decode)) {
        // Always below /tmp, on purpose, even when the path is absolute already.
        m_strDecodeFilePath = QStringLiteral("/tmp/") + strPath;
        this->CallAndLogResult("Decode", decode, nType, strData.toUtf8().constData(),
                               m_strDecodeFilePath.toStdWString().c_str());
        if (nType == 6)
            strResult = DecodedPoints();
    }
    MV_LOG_PAD("Decode", "Leave with strResult.length=%d", strResult.size());
    return strResult;
}

template <class Sdk>
QString SignObjModel<Sdk>::DecodedPoints()
{
    enum Field { X = 1, Y = 2, StrokeEnd = 3 };
    const auto getCount = this->fnGetTotalDecodeInkPointsNumber();
    const auto getField = this->fnGetDecodeInkPointData();
    if (!this->IsBound(getCount, getField))
        return {};
    const int nCount = getCount.pfn(Sdk::nDeviceID);
    InkPointList points;
    for (int i = 0; i < nCount && !points.IsFull(); ++i) {
        const int x = getField.pfn(Sdk::nDeviceID, i, X);
        const int y = getField.pfn(Sdk::nDeviceID, i, Y);
        const int nStrokeEnd = getField.pfn(Sdk::nDeviceID, i, StrokeEnd);
        points.AppendDecoded(x, y, nStrokeEnd);
    }
    return points.Take();
}

template <class Sdk>
QString SignObjModel<Sdk>::GetDecodeFilePath()
{
    MV_LOG_PAD("GetDecodeFilePath", "Enter...");
    MV_LOG_PAD("GetDecodeFilePath", "Leave with strResult.length=%d", m_strDecodeFilePath.size());
    return m_strDecodeFilePath;
}

template <class Sdk>
QString SignObjModel<Sdk>::SaveDrawImage(int nType, int nDPI, QString strPath)
{
    MV_LOG_PAD("SaveDrawImage", "Enter, nType=%d, nDPI=%d, strPath=%s", nType, nDPI, strPath.toUtf8().constData());
    QString strResult;
    const auto save = this->fnSaveDrawingImage();
    if (this->IsBound(save)) {
        if (!strPath.contains(QLatin1Char('/')))
            strPath.prepend(QLatin1String("/tmp/"));
        const int nResult = save.pfn(Sdk::nDeviceID, nType, strPath.toStdWString().c_str(), nDPI);
        MV_LOG_PAD("SaveDrawImage", "after call m_pfn_%s(), nResult=%d", save.szName, nResult);
        strResult = nResult != 0 ? QString::number(nResult) : strPath;
    }
    MV_LOG_PAD("SaveDrawImage", "Leave with strResult.length=%d", strResult.size());
    return strResult;
}

template <class Sdk>
QString SignObjModel<Sdk>::WPSSignConfirmed(bool bEnableDateTime, QString strName)
{
    MV_LOG_PAD("WPSSignConfirmed", "Enter, bEnableDateTime=%d, strName=%s", bEnableDateTime,
               strName.toUtf8().constData());
    SetClip(5, 5);
    QString strResult = SaveDrawImage(3, 300, QStringLiteral("MVeSignWPS.png"));
    MV_LOG_PAD("WPSSignConfirmed", "after call SaveDrawImage(), strResult.length=%d", strResult.size());
    // One-sided on purpose: a path reads as 0, and a positive code goes on as well.
    const bool bSaveFailed = strResult.toInt() < 0;
    if (!bSaveFailed && (bEnableDateTime || !strName.isEmpty()))
        strResult = ComposeWpsPicture(bEnableDateTime, strName);
    MV_LOG_PAD("WPSSignConfirmed", "Leave with strResult.length=%d", strResult.size());
    return strResult;
}

template <class Sdk>
QString SignObjModel<Sdk>::ComposeWpsPicture(bool bEnableDateTime, const QString &strName)
{
    const QImage drawing(QStringLiteral("/tmp/MVeSignWPS.png"));
    const QString strCurrentDateTime = QDateTime::currentDateTime().toString(QStringLiteral("yyyy/MM/dd hh:mm:ss"));
    MV_LOG_PAD("WPSSignConfirmed", "strCurrentDateTime=%s", strCurrentDateTime.toUtf8().constData());
    MV_LOG_PAD("WPSSignConfirmed", "nSignImageWidth=%d, nSignImageHeight=%d", drawing.width(), drawing.height());

    const WpsPicture picture(strName, bEnableDateTime ? strCurrentDateTime : QString(), drawing);
    const QSize text = picture.TextSize();
    const QSize canvas = picture.CanvasSize();
    const char *const existing = !bEnableDateTime    ? "strName"
                                 : strName.isEmpty() ? "strCurrentDateTime"
                                                     : "strName and strCurrentDateTime";
    // These lines carry the name of another operation, on purpose.
    MV_LOG_PAD("GetAboutInfo", "%s existed..., nTargetSignWidth=%d, nTargetSignHeight=%d", existing, text.width(),
               text.height());
    MV_LOG_PAD("GetAboutInfo", "nTargetSignWidth=%d, nTargetSignHeight=%d", canvas.width(), canvas.height());

    const QString strTargetSignImageFilePath = QStringLiteral("/tmp/MVeSignWPS_dt_name.png");
    const bool bRet = picture.Save(strTargetSignImageFilePath);
    MV_LOG_PAD("GetAboutInfo", "after call targetSignImage.save(strTargetSignImageFilePath), bRet=%d", bRet);
    return bRet ? strTargetSignImageFilePath : QStringLiteral("-1");
}
