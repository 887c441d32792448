// What mvsignctl says, in the language of the locale.
#pragma once

#include <QCoreApplication>
#include <QString>
#include <QStringList>

#include <cstdio>

struct Text {
    Q_DECLARE_TR_FUNCTIONS(Text)
};

/// The text with the values in the places of %1, %2 and so on, up to %9. QString::arg with several values would need a
/// newer Qt than it was written for, and one after the other would look for places in the values.
QString Fill(const QString &text, const QStringList &values);

enum ExitStatus { Success = 0, InvalidRequest = 1, NoAnswer = 2 };

inline void Print(std::FILE *stream, const QString &text)
{
    std::fprintf(stream, "%s\n", text.toUtf8().constData());
}

/// Says why nothing came of it.
inline int Fail(const QString &why)
{
    Print(stderr, QStringLiteral("mvsignctl: ") + why);
    return NoAnswer;
}

inline int WrongUsage(const QString &what)
{
    return Fail(Text::tr("%1 (see mvsignctl --help)").arg(what));
}
