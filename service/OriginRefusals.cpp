#include "service/OriginRefusals.h"

bool OriginRefusals::IsSilenced(const QString &strOrigin) const
{
    const auto points = m_points.constFind(strOrigin);
    return points == m_points.constEnd() ? m_points.size() >= nMostOrigins : *points >= nMostPoints;
}

void OriginRefusals::Add(const QString &strOrigin, int nPoints)
{
    if (m_points.size() < nMostOrigins || m_points.contains(strOrigin))
        m_points[strOrigin] += nPoints;
}
