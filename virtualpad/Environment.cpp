#include "virtualpad/Environment.h"

#include "virtualpad/InkText.h"

#include <QFile>

#include <cmath>
#include <cstdio>

namespace virtualpad {

namespace {

constexpr char kSpeedVariable[] = "MVSIGNPAD_VIRTUAL_SPEED";
constexpr char kWindowVariable[] = "MVSIGNPAD_VIRTUAL_WINDOW";
constexpr char kInkVariable[] = "MVSIGNPAD_VIRTUAL_INK";

} // namespace

void complain(const QString &message)
{
    std::fprintf(stderr, "virtual pad: %s\n", message.toLocal8Bit().constData());
}

double environmentSpeed()
{
    const QByteArray text = qgetenv(kSpeedVariable);
    if (text.isEmpty())
        return 1.0;
    bool isNumber = false;
    const double speed = text.toDouble(&isNumber);
    if (isNumber && std::isfinite(speed) && speed >= 0.0)
        return speed;
    complain(QStringLiteral("%1=%2 is no number from 0 up; writing in real time")
                 .arg(QLatin1String(kSpeedVariable), QString::fromLocal8Bit(text)));
    return 1.0;
}

WindowSetting environmentWindow()
{
    const QByteArray text = qgetenv(kWindowVariable);
    if (text == "0")
        return WindowSetting::Off;
    if (text == "1")
        return WindowSetting::On;
    if (!text.isEmpty()) {
        complain(QStringLiteral("%1=%2 is neither 0 nor 1 and does not count")
                     .arg(QLatin1String(kWindowVariable), QString::fromLocal8Bit(text)));
    }
    return WindowSetting::Automatic;
}

bool environmentNamesInk()
{
    return !qEnvironmentVariableIsEmpty(kInkVariable);
}

Ink environmentInk()
{
    const QString path = QFile::decodeName(qgetenv(kInkVariable));
    QString error;
    const std::optional<Ink> ink = inkFromFile(path, &error);
    if (!ink)
        complain(QStringLiteral("the ink file %1 cannot be used: %2").arg(path, error));
    return ink.value_or(Ink());
}

} // namespace virtualpad
