#include "tools/Exchange.h"
#include "tools/Text.h"
#include "tools/doctor/Checks.h"
#include "tools/doctor/Machine.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QHostInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSet>

#include <algorithm>
#include <optional>

namespace {

const int nPatienceMs = 5000;

QList<QByteArray> LinesOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll().split('\n') : QList<QByteArray>();
}

/// The kernel's numbers of the sockets that listen on the port, over IPv4 and IPv6.
QSet<QString> ListeningSockets(int nPort)
{
    QSet<QString> sockets;
    const QByteArray end = ':' + QByteArray::number(nPort, 16).rightJustified(4, '0').toUpper();
    for (const char *szTable : {"/proc/net/tcp", "/proc/net/tcp6"}) {
        const QList<QByteArray> lines = LinesOf(QString::fromLatin1(szTable));
        for (const QByteArray &line : lines) {
            const QList<QByteArray> fields = line.simplified().split(' ');
            if (fields.size() > 9 && fields.at(1).endsWith(end) && fields.at(3) == "0A") // LISTEN
                sockets.insert(QStringLiteral("socket:[%1]").arg(QString::fromLatin1(fields.at(9))));
        }
    }
    return sockets;
}

bool HasOneOf(const Process &process, const QSet<QString> &sockets)
{
    const QDir descriptors(QStringLiteral("/proc/%1/fd").arg(process.nId));
    const QStringList names = descriptors.entryList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot);
    return std::any_of(names.begin(), names.end(),
                       [&](const QString &name) { return sockets.contains(LinkText(descriptors.filePath(name))); });
}

const Process *HolderOf(const QSet<QString> &sockets, const Machine &machine)
{
    for (const Process &process : machine.processes) {
        if (HasOneOf(process, sockets))
            return &process;
    }
    return nullptr;
}

Finding WhyNobodyListens(const Machine &machine)
{
    const QString state = machine.Told("State").toString();
    const int nPort = machine.settings.nWebSocketPort;
    if (state == QLatin1String("stopped"))
        return Bad(Text::tr("nobody listens at %1: choose \"Start Service\" in the tray menu").arg(nPort));
    if (state == QLatin1String("closed"))
        return Bad(Text::tr("nobody listens at %1; correct the settings: %2")
                       .arg(nPort)
                       .arg(machine.Told("Reason").toString()));
    if (state == QLatin1String("listening"))
        return Bad(Text::tr("the program listens at %1, the settings say %2: start the service again")
                       .arg(machine.Told("Port").toInt())
                       .arg(nPort));
    return Bad(Text::tr("nobody listens at %1: start the program, and the service in its tray menu").arg(nPort));
}

/// Whether a page that says "localhost" can come over this address.
bool IsServedAt(const QHostAddress &loopback, const AccessPolicy &access)
{
    const QHostAddress listen = access.listenAddress.value_or(QHostAddress::Any);
    return listen == QHostAddress::Any || listen == loopback
           || (loopback == QHostAddress::LocalHost ? listen == QHostAddress::AnyIPv4 : listen == QHostAddress::AnyIPv6);
}

/// What a program must say to be let in without a question; absent when there is no such origin.
std::optional<QString> OriginFor(const AccessPolicy &access)
{
    if (!access.bRequireOrigin)
        return QString();
    QStringList candidates = access.NamedOrigins();
    if (access.ForUnknownOrigins() == UnknownOrigins::Allow)
        candidates += QStringLiteral("http://localhost");
    for (const QString &strOrigin : qAsConst(candidates)) {
        if (!access.originAnswers.Blocked().contains(strOrigin))
            return strOrigin;
    }
    return std::nullopt;
}

Finding CheckAnswer(const Machine &machine, const QHostAddress &loopback)
{
    if (!IsServedAt(loopback, machine.access))
        return Ok(Text::tr("none, as ListenAddress says; pages come over the other one"));
    const std::optional<QString> origin = OriginFor(machine.access);
    if (!origin)
        return Ok(Text::tr("not tried, since no program is served"));
    Exchange exchange({loopback.toString(), machine.settings.nWebSocketPort, nPatienceMs}, *origin);
    QString why;
    QObject::connect(&exchange, &Exchange::failed, [&why](const QString &text) { why = text; });
    Reply reply;
    if (!exchange.AskAndWait(QStringLiteral("IsValid"), reply))
        return Bad(Text::tr("%1: see the line about the port").arg(why));
    return reply.bInvalid
               ? Bad(Text::tr("the service does not know the request: it serves another port, or is another one"))
               : Ok(Text::tr("the service answers at %1").arg(loopback.toString()));
}

bool HasIPv6()
{
    const auto lines = LinesOf(QStringLiteral("/proc/net/if_inet6"));
    return std::any_of(lines.begin(), lines.end(),
                       [](const QByteArray &line) { return line.startsWith("00000000000000000000000000000001"); });
}

/// The policies that keep pages from this machine, in files of these folders.
QStringList Obstacles(const QString &folder)
{
    QStringList obstacles;
    const QFileInfoList files = QDir(folder).entryInfoList({QStringLiteral("*.json")}, QDir::Files);
    for (const QFileInfo &info : files) {
        QFile file(info.filePath());
        if (!file.open(QIODevice::ReadOnly))
            continue;
        const QJsonObject policies = QJsonDocument::fromJson(file.readAll()).object();
        for (const char *szPolicy :
             {"LocalNetworkAccessBlockedForUrls", "LocalNetworkBlockedForUrls", "LoopbackNetworkBlockedForUrls"}) {
            if (!policies.value(QLatin1String(szPolicy)).toArray().isEmpty())
                obstacles += info.filePath() + QStringLiteral(" (") + QLatin1String(szPolicy) + QLatin1Char(')');
        }
    }
    return obstacles;
}

} // namespace

Finding CheckPort(const Machine &machine)
{
    const int nPort = machine.settings.nWebSocketPort;
    const QSet<QString> sockets = ListeningSockets(nPort);
    if (sockets.isEmpty())
        return WhyNobodyListens(machine);
    const Process *const pHolder = HolderOf(sockets, machine);
    if (!pHolder)
        return Bad(Text::tr("another user's program holds %1: end it, or set WebSocketPort").arg(nPort));
    if (!pHolder->bProgram)
        return Bad(Fill(Text::tr("%1 (%2) holds %3: end it and start the service again, or set WebSocketPort"),
                        {pHolder->Name(), pHolder->commandLine.left(100), QString::number(nPort)}));
    return Ok(Text::tr("the program listens at %1").arg(nPort));
}

Finding CheckLocalhost(const Machine &)
{
    const QList<QHostAddress> addresses = QHostInfo::fromName(QStringLiteral("localhost")).addresses();
    QStringList names;
    bool bLoopback = !addresses.isEmpty();
    for (const QHostAddress &address : addresses) {
        names += address.toString();
        bLoopback = bLoopback && address.isLoopback();
    }
    return bLoopback ? Ok(names.join(QLatin1Char(' ')))
                     : Bad(Text::tr("does not lead to this machine: put \"127.0.0.1 localhost\" into /etc/hosts"));
}

Finding CheckAnswerIPv4(const Machine &machine)
{
    return CheckAnswer(machine, QHostAddress(QHostAddress::LocalHost));
}

Finding CheckAnswerIPv6(const Machine &machine)
{
    return HasIPv6() ? CheckAnswer(machine, QHostAddress(QHostAddress::LocalHostIPv6))
                     : Ok(Text::tr("this machine has none"));
}

Finding CheckBrowserPolicy(const Machine &)
{
    QStringList obstacles;
    for (const char *szFolder :
         {"/etc/chromium/policies/managed", "/etc/opt/chrome/policies/managed", "/etc/opt/edge/policies/managed"})
        obstacles += Obstacles(QString::fromLatin1(szFolder));
    return obstacles.isEmpty() ? Ok(Text::tr("nothing keeps pages from this machine"))
                               : Bad(Text::tr("keeps pages from this machine, except the pages that need it: %1")
                                         .arg(obstacles.join(QLatin1Char(' '))));
}
