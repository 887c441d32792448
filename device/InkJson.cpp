#include "device/InkJson.h"

void InkPointList::BeginObject()
{
    m_json += m_json.size() == 1 ? QLatin1String("{") : QLatin1String(",{");
}

void InkPointList::Append(const _STRUCT_INK_POINT_DATA &point, const QString &strTime)
{
    BeginObject();
    m_json += QLatin1String("\"Time\":");
    AppendJsonString(m_json, strTime);
    m_json += QLatin1String(",\"bStrokeEnd\":");
    AppendJsonNumberText(m_json, point.bStrokeEnd);
    m_json += QLatin1String(",\"pressure\":");
    AppendJsonNumberText(m_json, point.pressure);
    m_json += QLatin1String(",\"x\":");
    AppendJsonNumberText(m_json, point.x);
    m_json += QLatin1String(",\"y\":");
    AppendJsonNumberText(m_json, point.y);
    m_json += QLatin1Char('}');
}

void InkPointList::AppendDecoded(int x, int y, int nStrokeEnd)
{
    BeginObject();
    m_json += QLatin1String("\"bStrokeEnd\":");
    AppendJsonNumberText(m_json, nStrokeEnd);
    m_json += QLatin1String(",\"x\":");
    AppendJsonNumberText(m_json, x);
    m_json += QLatin1String(",\"y\":");
    AppendJsonNumberText(m_json, y);
    m_json += QLatin1Char('}');
}

QString InkPointList::Take()
{
    m_json += QLatin1Char(']');
    return std::move(m_json);
}

QString ImageReply(ImageEvent event, const QString &strBase64)
{
    QString json;
    json.reserve(strBase64.size() + 64);
    json += QLatin1String("[{\"EventType\":");
    AppendJsonNumberText(json, static_cast<int>(event));
    json += QLatin1String(",\"Image\":");
    AppendJsonString(json, strBase64);
    json += QLatin1String(",\"ImageLength\":");
    AppendJsonNumberText(json, strBase64.size());
    json += QLatin1String("}]");
    return json;
}
