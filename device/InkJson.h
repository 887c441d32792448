// The JSON texts in which ink travels to the clients.
#pragma once

#include "base/JsonText.h"
#include "sdk/SdkFunctions.h"

#include <QString>

/// A compact JSON array that grows by one object a call, until it is full.
class InkPointList
{
public:
    /// Full from this length on, lest a library that claims any number of points exhaust what a text holds.
    explicit InkPointList(int nFullLength = nMostTextUnits) : m_nFullLength(nFullLength) {}

    bool IsFull() const { return m_json.size() >= m_nFullLength; }

    /// A point of the current drawing.
    void Append(const _STRUCT_INK_POINT_DATA &point, const QString &strTime);
    /// A point of decoded signature data, which knows neither pressure nor time.
    void AppendDecoded(int x, int y, int nStrokeEnd);

    /// Ends the array and hands it over; the list is spent then.
    QString Take();

private:
    void BeginObject();

    const int m_nFullLength;
    QString m_json = QStringLiteral("[");
};

/// Kinds of image replies.
enum class ImageEvent { Ink = 0, Fingerprint = 3 };

/// The image reply: an array of one object that holds the kind, the base64 text and its length in characters.
QString ImageReply(ImageEvent event, const QString &strBase64);
