// mvsignctl: sends one request to the signature pad service and prints the result, or does one of the other things of
// its table.

#include "base/SettingsFile.h"
#include "service/CommandTable.h"
#include "tools/Exchange.h"
#include "tools/Subcommands.h"
#include "tools/Text.h"
#include "tray/TraySettings.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QLocale>
#include <QTranslator>

#include <cmath>

namespace {

void PrintCommands()
{
    for (const Command &command : commandTable)
        Print(stdout, (QStringList{QString::fromLatin1(command.szName)} + command.Keys()).join(QLatin1Char(' ')));
}

/// Sends the request and prints what comes of it.
int SendRequest(const Target &target, const QString &call, bool bRaw)
{
    Exchange exchange(target);
    QObject::connect(&exchange, &Exchange::failed, [](const QString &why) { QCoreApplication::exit(Fail(why)); });
    QObject::connect(&exchange, &Exchange::answered, [&](const Reply &reply) {
        Print(stdout, bRaw ? reply.raw : reply.result);
        if (reply.bInvalid)
            Fail(Text::tr("the service calls this an invalid request: %1").arg(exchange.Request()));
        QCoreApplication::exit(reply.bInvalid ? InvalidRequest : Success);
    });
    exchange.Ask(call);
    return QCoreApplication::exec();
}

/// A positive number of seconds in milliseconds, or 0.
int Milliseconds(const QString &seconds)
{
    bool bNumber = false;
    const double value = seconds.toDouble(&bNumber);
    const double most = 24 * 60 * 60;
    return bNumber && value > 0 && value <= most ? static_cast<int>(std::ceil(value * 1000)) : 0;
}

/// The port that the user's service listens on.
QString PortOfTheSettings()
{
    TraySettings settings;
    settings.Load(0);
    return QString::number(settings.nWebSocketPort);
}

struct Options {
    QCommandLineOption host{QStringLiteral("host"), Text::tr("Host of the service (localhost)."), QStringLiteral("H"),
                            QStringLiteral("localhost")};
    QCommandLineOption port{QStringLiteral("port"),
                            Text::tr("Port of the service (that of the user's settings, 8089)."), QStringLiteral("N")};
    QCommandLineOption timeout{QStringLiteral("timeout"), Text::tr("Seconds to wait for the reply (10)."),
                               QStringLiteral("S"), QStringLiteral("10")};
    QCommandLineOption raw{QStringLiteral("raw"), Text::tr("Print the whole reply.")};
    QCommandLineOption json{QStringLiteral("json"), Text::tr("Print the state as JSON.")};
    QCommandLineOption list{QStringLiteral("list"), Text::tr("Print the commands with their keys.")};
    // Not the parser's own, to which some versions of Qt add a "--help-all".
    QCommandLineOption help{{QStringLiteral("h"), QStringLiteral("help")}, Text::tr("Print this help.")};
};

void Describe(QCommandLineParser &parser, const Options &options)
{
    parser.setApplicationDescription(
        Text::tr("Sends one request to the signature pad service and prints the result.\n"
                 "Exit status: 0 a result, 1 the service calls the request invalid, 2 no connection, no answer "
                 "or wrong usage.\n\nIn place of a request:")
        + QLatin1Char('\n') + SubcommandsHelp().trimmed().prepend(QStringLiteral("  ")));
    parser.addVersionOption();
    parser.addOptions(
        {options.host, options.port, options.timeout, options.raw, options.json, options.list, options.help});
    parser.addPositionalArgument(QStringLiteral("API"), Text::tr("The command, for example SetPenColor."));
    parser.addPositionalArgument(QStringLiteral("key=value"), Text::tr("Its parameters, for example R=255."),
                                 QStringLiteral("[key=value ...]"));
}

/// Does what the words say.
int Run(const QCommandLineParser &parser, const Options &options)
{
    QStringList words = parser.positionalArguments();
    if (words.isEmpty())
        return WrongUsage(Text::tr("no command given"));
    const QString name = words.takeFirst();
    const Subcommand *const subcommand = FindSubcommand(name);
    const bool bAsksService = subcommand == nullptr || subcommand->bAsksService;
    const QString port = parser.isSet(options.port) || !bAsksService ? parser.value(options.port) : PortOfTheSettings();
    const Target target{parser.value(options.host), port.toInt(), Milliseconds(parser.value(options.timeout))};
    if (bAsksService && (target.nPort < 1 || target.nPort > 65535))
        return WrongUsage(Text::tr("not a port: %1").arg(port));
    if (target.nTimeoutMs == 0)
        return WrongUsage(Text::tr("not a number of seconds: %1").arg(parser.value(options.timeout)));
    if (parser.isSet(options.json) && !(subcommand && subcommand->bKnowsJson))
        return WrongUsage(Text::tr("%1 does not take --json").arg(name));
    if (!subcommand)
        return SendRequest(target, words.isEmpty() ? name : name + QLatin1Char('?') + words.join(QLatin1Char('&')),
                           parser.isSet(options.raw));
    if (words.size() < subcommand->nFewestArguments || words.size() > subcommand->nMostArguments)
        return WrongUsage(
            Fill(Text::tr("to be called as: mvsignctl %1 %2"), {name, QString::fromLatin1(subcommand->szArguments)})
                .trimmed());
    return subcommand->run({target, words, parser.isSet(options.json)});
}

} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("mvsignctl"));
    QCoreApplication::setApplicationVersion(QStringLiteral(MVSIGNPAD_VERSION));
    QTranslator translator;
    if (QLocale().language() == QLocale::Chinese && translator.load(QStringLiteral(":/mvsignctl_zh_CN.qm")))
        QCoreApplication::installTranslator(&translator);

    const Options options;
    QCommandLineParser parser;
    Describe(parser, options);
    if (!parser.parse(QCoreApplication::arguments()))
        return WrongUsage(parser.errorText());
    if (parser.isSet(options.help))
        parser.showHelp(Success);
    if (parser.isSet(QStringLiteral("version")))
        parser.showVersion();
    if (parser.isSet(options.list)) {
        PrintCommands();
        return Success;
    }
    return Run(parser, options);
}
