#pragma once

#include "tests/sdk/recording/Recorder.h"
#include "tests/sdk/support/Models.h"

#include <QObject>
#include <QString>
#include <QTest>

inline recording::Recorder &recorder()
{
    return recording::Recorder::instance();
}

inline void expect(std::string call, recording::Answer answer = {})
{
    recorder().expect(std::move(call), std::move(answer));
}

inline void expectFor(const Model &model, const char *pattern, recording::Answer answer = {})
{
    expect(spelledFor(model, pattern), std::move(answer));
}

inline recording::Answer number(long long value)
{
    return recording::number(value);
}

inline recording::Answer text(std::string content)
{
    return recording::text(std::move(content));
}

/// Makes the directory of a recording SDK the working directory, where the product looks for its library:
/// "complete", or "without-" and the name that every family lacks.
void useLibrary(const QString &variant);

/// The base of all tests here: a test starts in the directory of the complete library with logging off, and fails
/// when the recorder has anything to complain of at its end.
class SdkTestCase : public QObject
{
    Q_OBJECT

protected Q_SLOTS:
    void init();
    void cleanup();
};
