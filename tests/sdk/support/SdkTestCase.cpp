#include "tests/sdk/support/SdkTestCase.h"

#include "base/Logging.h"

#include <QDir>

void useLibrary(const QString &variant)
{
    const QString directory = QStringLiteral(SDK_VARIANTS_DIR "/") + variant;
    if (!QFile::exists(directory + QStringLiteral("/libmvsignpadsdk.so")) || !QDir::setCurrent(directory))
        qFatal("There is no library in %s.", qPrintable(directory));
}

void SdkTestCase::init()
{
    g_bEnableLog = false;
    useLibrary(QStringLiteral("complete"));
}

void SdkTestCase::cleanup()
{
    QStringList problems;
    for (const std::string &problem : recorder().finish()) {
        problems << QString::fromStdString(problem);
    }
    QVERIFY2(problems.isEmpty(), qPrintable(problems.join(QStringLiteral("\n   "))));
}
