#pragma once

#include "device/InkJson.h"
#include "device/PadInk.h"
#include "device/SaveTarget.h"
#include "device/WpsPicture.h"
#include "sdk/SdkNumbers.h"

#include <QDateTime>
#include <QImage>
#include <QString>

/// Everything that all pad models have: controls, ink, and here the files.
template <class Sdk>
class SignObjModel : public PadInk<Sdk>
{
public:
    QString Decode(int nType, QString strPath, QString strData) override;
    QString GetDecodeFilePath() override;
    QString SaveDrawImage(int nType, int nDPI, QString strPath) override;
    QString WPSSignConfirmed(bool bEnableDateTime, QString strName) override;
    void RestrictSaving(std::optional<QStringList> saveFolders) override { m_saveFolders = std::move(saveFolders); }

private:
    QString DecodedPoints();
    QString ComposeWpsPicture(bool bEnableDateTime, const QString &strName);

    /// Stays where it is, whatever folders are open for saving: the WPS plug-in looks for it there.
    static constexpr char szWpsDrawing[] = "/tmp/MVeSignWPS.png";

    QString m_strDecodeFilePath;
    std::optional<QStringList> m_saveFolders;
};

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
        SaveTarget target(m_strDecodeFilePath, m_saveFolders);
        this->CallAndLogResult("Decode", decode, nType, strData.toUtf8().constData(),
                               TextForLibrary(target.PathForLibrary()).constData());
        target.Finish(); // the result does not tell whether there is a file
        if (nType == sdk::InkData)
            strResult = DecodedPoints();
    }
    MV_LOG_PAD("Decode", "Leave with strResult.length=%d", strResult.size());
    return strResult;
}

template <class Sdk>
QString SignObjModel<Sdk>::DecodedPoints()
{
    const auto getCount = this->fnGetTotalDecodeInkPointsNumber();
    const auto getField = this->fnGetDecodeInkPointData();
    if (!this->IsBound(getCount, getField))
        return {};
    const int nCount = getCount.pfn(Sdk::nDeviceID);
    InkPointList points;
    for (int i = 0; i < nCount && !points.IsFull(); ++i) {
        const int x = getField.pfn(Sdk::nDeviceID, i, sdk::DecodedX);
        const int y = getField.pfn(Sdk::nDeviceID, i, sdk::DecodedY);
        const int nStrokeEnd = getField.pfn(Sdk::nDeviceID, i, sdk::DecodedStrokeEnd);
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
        SaveTarget target(strPath, strPath == QLatin1String(szWpsDrawing) ? std::nullopt : m_saveFolders);
        int nResult = save.pfn(Sdk::nDeviceID, nType, TextForLibrary(target.PathForLibrary()).constData(), nDPI);
        MV_LOG_PAD("SaveDrawImage", "after call m_pfn_%s(), nResult=%d", save.szName, nResult);
        if (nResult == sdk::Success && !target.Finish())
            nResult = sdk::CannotWrite;
        strResult = nResult != sdk::Success ? QString::number(nResult) : strPath;
    }
    MV_LOG_PAD("SaveDrawImage", "Leave with strResult.length=%d", strResult.size());
    return strResult;
}

template <class Sdk>
QString SignObjModel<Sdk>::WPSSignConfirmed(bool bEnableDateTime, QString strName)
{
    MV_LOG_PAD("WPSSignConfirmed", "Enter, bEnableDateTime=%d, strName=%s", bEnableDateTime,
               strName.toUtf8().constData());
    this->SetClip(5, 5);
    QString strResult = SaveDrawImage(sdk::PngImage, 300, QStringLiteral("MVeSignWPS.png"));
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
    const QImage drawing(QLatin1String{szWpsDrawing});
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
