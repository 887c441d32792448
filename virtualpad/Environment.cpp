#include "virtualpad/Environment.h"

#include "virtualpad/InkText.h"

#include <QFile>

#include <cstdio>
#include <limits>

using namespace sdk;

namespace virtualpad {

namespace {

constexpr char kSpeedVariable[] = "MVSIGNPAD_VIRTUAL_SPEED";
constexpr char kWindowVariable[] = "MVSIGNPAD_VIRTUAL_WINDOW";
constexpr char kInkVariable[] = "MVSIGNPAD_VIRTUAL_INK";
constexpr char kKeyVariable[] = "MVSIGNPAD_VIRTUAL_KEY";
constexpr char kFingerVariable[] = "MVSIGNPAD_VIRTUAL_FINGER";
constexpr char kUnplugVariable[] = "MVSIGNPAD_VIRTUAL_UNPLUG";
constexpr char kDelayVariable[] = "MVSIGNPAD_VIRTUAL_DELAY";

void complainOf(const char *variable, const QByteArray &text, const QString &flaw)
{
    complain(QString::fromLatin1(variable) + QLatin1Char('=') + QString::fromLocal8Bit(text) + QStringLiteral(" is ")
             + flaw);
}

/// From 0 to `largest`; none when the variable is not set, or, with a line that names the flaw, broken.
std::optional<double> number(const char *variable, double largest, const QString &flaw)
{
    const QByteArray text = qgetenv(variable);
    if (text.isEmpty())
        return std::nullopt;
    bool isNumber = false;
    const double value = text.toDouble(&isNumber);
    if (isNumber && value >= 0.0 && value <= largest)
        return value;
    complainOf(variable, text, flaw);
    return std::nullopt;
}

std::optional<double> seconds(const char *variable)
{
    constexpr double kDay = 24.0 * 60 * 60;
    return number(variable, kDay, QStringLiteral("no number of seconds from 0 to 86400 and does not count"));
}

KeyEvent key()
{
    const QByteArray text = qgetenv(kKeyVariable);
    if (text == "cancel")
        return SIGNPAD_CANCEL_BUTTON;
    if (text == "none")
        return SIGNPAD_NO_BUTTON;
    if (!text.isEmpty() && text != "confirm")
        complainOf(kKeyVariable, text, QStringLiteral("neither confirm nor cancel nor none and does not count"));
    return SIGNPAD_ENTER_BUTTON;
}

} // namespace

void complain(const QString &message)
{
    std::fprintf(stderr, "virtual pad: %s\n", message.toLocal8Bit().constData());
}

Behaviour environmentBehaviour()
{
    Behaviour behaviour;
    behaviour.speed = number(kSpeedVariable, std::numeric_limits<double>::max(),
                             QStringLiteral("no number from 0 up; writing in real time"))
                          .value_or(1.0);
    constexpr double kMomentToTheFinger = 1.0;
    behaviour.fingerAfter =
        seconds(kFingerVariable).value_or(behaviour.speed > 0.0 ? kMomentToTheFinger / behaviour.speed : 0.0);
    behaviour.answersAfter = seconds(kDelayVariable).value_or(0.0);
    behaviour.unpluggedAfter = seconds(kUnplugVariable);
    behaviour.key = key();
    return behaviour;
}

WindowSetting environmentWindow()
{
    const QByteArray text = qgetenv(kWindowVariable);
    if (text == "0")
        return WindowSetting::Off;
    if (text == "1")
        return WindowSetting::On;
    if (!text.isEmpty())
        complainOf(kWindowVariable, text, QStringLiteral("neither 0 nor 1 and does not count"));
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
        complain(QStringLiteral("the ink file ") + path + QStringLiteral(" cannot be used: ") + error);
    return ink.value_or(Ink());
}

} // namespace virtualpad
