#include "tools/Text.h"

QString Fill(const QString &text, const QStringList &values)
{
    QString filled;
    for (int i = 0; i < text.size(); ++i) {
        const int nPlace = text.at(i) == QLatin1Char('%') && i + 1 < text.size() ? text.at(i + 1).digitValue() : 0;
        if (nPlace < 1 || nPlace > values.size()) {
            filled += text.at(i);
            continue;
        }
        filled += values.at(nPlace - 1);
        ++i;
    }
    return filled;
}
