#include "base/SettingsFile.h"

#include <QFile>
#include <QLockFile>
#include <QStandardPaths>

#include <algorithm>

namespace {

/// Appends what the escape at pAt stands for, as far as it matters here, and returns where it ends. As Qt reads them, a
/// number may have any length, its low 16 bits count, and an unknown letter stands for nothing.
const char *AppendEscaped(QByteArray &bare, const char *pAt, const char *pEnd)
{
    const int nBase = *pAt == 'x' ? 16 : 8;
    const QByteArray digits(nBase == 16 ? "0123456789abcdefABCDEF" : "01234567");
    const char *const pDigits = nBase == 16 ? pAt + 1 : pAt;
    const char *const pBehind = std::find_if_not(pDigits, pEnd, [&digits](char c) { return digits.contains(c); });
    if (pBehind != pDigits) {
        const QByteArray number(pDigits, static_cast<int>(pBehind - pDigits));
        const uint nCode = number.right(6).toUInt(nullptr, nBase) & 0xffff;
        if (nCode > ' ')
            bare += nCode < 0x80 ? static_cast<char>(nCode) : '?';
        return pBehind;
    }
    if (QByteArray("abfnrtv\"?'\\").contains(*pAt))
        bare += '?';
    return pAt + 1;
}

/// The text without blanks, quotation marks and line breaks, its escapes resolved.
QByteArray Bare(const QByteArray &text)
{
    QByteArray bare;
    bare.reserve(text.size());
    const char *const pEnd = text.constData() + text.size();
    for (const char *pAt = text.constData(); pAt != pEnd;) {
        const char c = *pAt++;
        if (c == '\\' && pAt != pEnd)
            pAt = AppendEscaped(bare, pAt, pEnd);
        else if (c != '"' && static_cast<uchar>(c) > ' ')
            bare += c;
    }
    return bare;
}

/// Whether a value of the file is one that Qt would build from a stream of bytes: a forged one asks for any amount of
/// memory or of stack. The program writes none; a text that begins so is written with a second @. When in doubt (within
/// a quoted text, say) it is one.
bool HoldsStreamedValue(const QByteArray &text)
{
    const QByteArray bare = Bare(text);
    const auto isIn = [&bare](const char *szBeginning) { return bare.contains(szBeginning); };
    return isIn("=@Variant(") || isIn(",@Variant(") || isIn("=@DateTime(") || isIn(",@DateTime(");
}

/// Whether the text may have settings of the access group: "%" is how a key can spell any letter.
bool MayNameAccess(const QByteArray &text)
{
    return text.contains(accessGroup) || text.contains('%');
}

} // namespace

SettingsFile::SettingsFile(const QString &application, const QString &group)
    : m_settings(QStringLiteral("mvsignpadsdk"), application)
{
    m_settings.beginGroup(group);
    const QByteArrayList texts = RawTexts();
    m_bReadable = std::none_of(texts.begin(), texts.end(), HoldsStreamedValue);
    m_bOwnReadable = m_bReadable || !HoldsStreamedValue(texts.constFirst());
    m_bMayHideAccess = !m_bReadable && std::any_of(texts.begin(), texts.end(), MayNameAccess);
}

QByteArrayList SettingsFile::RawTexts() const
{
    const QString organization = m_settings.organizationName();
    const QString application = m_settings.applicationName();
    QStringList paths;
    for (const QSettings::Scope scope : {QSettings::UserScope, QSettings::SystemScope})
        paths << QSettings(scope, organization, application).fileName() << QSettings(scope, organization).fileName();
    const QStringList folders = QStandardPaths::standardLocations(QStandardPaths::GenericConfigLocation);
    for (const QString &folder : folders) {
        const QString base = folder + QLatin1Char('/') + organization;
        paths << base + QLatin1Char('/') + application + QStringLiteral(".conf") << base + QStringLiteral(".conf");
    }
    paths.removeDuplicates();

    QByteArrayList texts;
    for (const QString &path : qAsConst(paths)) {
        QFile file(path);
        texts += file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
    return texts;
}

bool SettingsFile::MakeWritable()
{
    // Writing would read the old file first. One that may narrow who is served stays for its owner to mend.
    if (!m_bOwnReadable && !m_bMayHideAccess)
        m_bOwnReadable = QFile::remove(m_settings.fileName());
    return m_bOwnReadable;
}

void SettingsFile::RemoveStaleLock()
{
    QLockFile(m_settings.fileName() + QStringLiteral(".lock")).removeStaleLockFile();
}
