// The JSON texts in which ink travels to the clients.
#pragma once

#include "sdk/SdkFunctions.h"

#include <QString>

/// A compact JSON array that grows by one object a call.
class InkPointList
{
public:
    /// A point of the current drawing.
    void Append(const _STRUCT_INK_POINT_DATA &point, const QString &strTime);
    /// A point of decoded signature data, which knows neither pressure nor time.
    void AppendDecoded(int x, int y, int nStrokeEnd);

    /// Ends the array and hands it over; the list is spent then.
    QString Take();

private:
    void BeginObject();

    QString m_json = QStringLiteral("[");
};

/// Kinds of image replies.
enum class ImageEvent { Ink = 0, Fingerprint = 3 };

/// The image reply: an array of one object that holds the kind, the base64 text and its length in characters.
QString ImageReply(ImageEvent event, const QString &strBase64);
