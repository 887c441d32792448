#include "service/OriginAnswers.h"

#include "base/SettingsFile.h"
#include "service/OriginText.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLockFile>

#include <algorithm>

namespace {

constexpr char allowedKey[] = "Origins/Allowed";
constexpr char blockedKey[] = "Origins/Blocked";

/// How long a change waits for another one to end.
constexpr int nPatienceMs = 5000;

bool CanBeAllowed(const QString &strOrigin)
{
    return IsOrigin(strOrigin) && !IsSharedOrigin(strOrigin);
}

/// Takes the key's list out of the settings; absent when an entry of it cannot be there.
std::optional<QStringList> TakeOrigins(QVariantMap &settings, const char *szKey, bool (*canBeThere)(const QString &))
{
    const QVariant value = settings.take(QLatin1String(szKey));
    const bool bList = !value.isValid() || value.type() == QVariant::String || value.type() == QVariant::StringList;
    const QStringList origins = value.toStringList();
    if (!bList || !std::all_of(origins.begin(), origins.end(), canBeThere))
        return std::nullopt;
    return origins;
}

void Put(QSettings &file, const char *szKey, const QStringList &origins)
{
    if (origins.isEmpty())
        file.remove(QLatin1String(szKey));
    else
        file.setValue(QLatin1String(szKey), origins);
}

} // namespace

QString OriginAnswers::Path()
{
    return SettingsPaths(originAnswersName).constLast();
}

std::optional<OriginAnswers> OriginAnswers::Read()
{
    std::optional<QVariantMap> settings = ReadSettings(Path());
    if (!settings || HasOtherLines(ReadSettingsText(Path()).value_or(QByteArray())))
        return std::nullopt;
    const std::optional<QStringList> allowed = TakeOrigins(*settings, allowedKey, CanBeAllowed);
    const std::optional<QStringList> blocked = TakeOrigins(*settings, blockedKey, IsOrigin);
    if (!allowed || !blocked || !settings->isEmpty())
        return std::nullopt;
    OriginAnswers answers;
    answers.m_allowed = *allowed;
    answers.m_blocked = *blocked;
    return answers;
}

bool OriginAnswers::Allow(const QString &strOrigin)
{
    return CanBeAllowed(strOrigin) && Change(strOrigin, &OriginAnswers::m_allowed);
}

bool OriginAnswers::Block(const QString &strOrigin)
{
    return Change(strOrigin, &OriginAnswers::m_blocked);
}

bool OriginAnswers::Forget(const QString &strOrigin)
{
    return Change(strOrigin, nullptr);
}

/// Puts the origin on that list and no other; null is none.
void OriginAnswers::PutOn(List list, const QString &strOrigin)
{
    for (const List each : {&OriginAnswers::m_allowed, &OriginAnswers::m_blocked}) {
        if (each != list)
            (this->*each).removeAll(strOrigin);
        else if (!(this->*each).contains(strOrigin))
            (this->*each).append(strOrigin);
    }
}

bool OriginAnswers::Change(const QString &strOrigin, List list)
{
    // Not the name of the lock that QSettings takes itself for each writing.
    QLockFile lock(Path() + QStringLiteral(".change"));
    if (!IsOrigin(strOrigin) || !QDir().mkpath(QFileInfo(Path()).path()) || !lock.tryLock(nPatienceMs))
        return false;
    const std::optional<OriginAnswers> before = Read();
    if (!before)
        return false;
    OriginAnswers after = *before;
    after.PutOn(list, strOrigin);
    return (after.m_allowed == before->m_allowed && after.m_blocked == before->m_blocked) || after.Write();
}

bool OriginAnswers::Write() const
{
    QFile empty(Path()); // QSettings would let others read a file that it makes
    if (!empty.open(QIODevice::Append) || !empty.setPermissions(QFile::ReadOwner | QFile::WriteOwner))
        return false;
    empty.close();
    QSettings file(Path(), QSettings::NativeFormat);
    Put(file, allowedKey, m_allowed);
    Put(file, blockedKey, m_blocked);
    file.sync();
    return file.status() == QSettings::NoError;
}
