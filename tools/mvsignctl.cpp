// mvsignctl: sends one request to the signature pad service and prints the result.

#include "service/CommandTable.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTimer>
#include <QUrl>
#include <QWebSocket>

#include <cmath>
#include <cstdio>

namespace {

enum ExitStatus { Success = 0, InvalidRequest = 1, NoAnswer = 2 };

void Print(std::FILE *stream, const QString &text)
{
    std::fprintf(stream, "%s\n", text.toUtf8().constData());
}

void PrintCommands()
{
    for (const Command &command : commandTable)
        Print(stdout, (QStringList{QString::fromLatin1(command.szName)} + command.Keys()).join(QLatin1Char(' ')));
}

struct Options {
    QUrl url;
    QString api;
    QString request;
    int nTimeoutMs = 0;
    bool bRaw = false;
};

/// One request on its way: connects, asks, prints the reply and ends the event loop with the exit status.
class Exchange : public QObject
{
public:
    explicit Exchange(const Options &options) : m_options(options)
    {
        connect(&m_socket, &QWebSocket::connected, this, [this] { m_socket.sendTextMessage(m_options.request); });
        connect(&m_socket, &QWebSocket::textMessageReceived, this, &Exchange::PrintReply);
        connect(&m_socket, &QWebSocket::disconnected, this, [this] {
            GiveUp(QStringLiteral("no connection to ") + m_options.url.toString() + QStringLiteral(": ")
                   + m_socket.errorString());
        });
        connect(&m_timeout, &QTimer::timeout, this, [this] {
            GiveUp(QStringLiteral("no answer from %1 within %2 s")
                       .arg(m_options.url.toString())
                       .arg(m_options.nTimeoutMs / 1000.0));
        });
        m_timeout.setSingleShot(true);
        m_timeout.start(m_options.nTimeoutMs);
        m_socket.open(m_options.url);
    }

private:
    void PrintReply(const QString &reply)
    {
        const QJsonObject envelope = QJsonDocument::fromJson(reply.toUtf8()).object();
        const QString api = envelope.value(QLatin1String("API")).toString();
        const QJsonValue result = envelope.value(QLatin1String("Result"));
        if (api.isEmpty() || !result.isString())
            return GiveUp(
                QStringLiteral("what answers at %1 is not the signature pad service").arg(m_options.url.toString()));
        const bool bInvalid = api == QLatin1String("Invalid API request");
        if (!bInvalid && !m_options.api.startsWith(api))
            return; // a message to all clients, which came before the reply
        m_socket.disconnect(this);
        Print(stdout, m_options.bRaw ? reply : result.toString());
        if (bInvalid)
            Print(stderr,
                  QStringLiteral("mvsignctl: the service calls this an invalid request: %1").arg(m_options.request));
        QCoreApplication::exit(bInvalid ? InvalidRequest : Success);
    }

    void GiveUp(const QString &why)
    {
        m_socket.disconnect(this);
        Print(stderr, QStringLiteral("mvsignctl: ") + why);
        QCoreApplication::exit(NoAnswer);
    }

    Options m_options;
    QWebSocket m_socket;
    QTimer m_timeout;
};

/// A positive number of seconds in milliseconds, or 0.
int Milliseconds(const QString &seconds)
{
    bool bNumber = false;
    const double value = seconds.toDouble(&bNumber);
    const double most = 24 * 60 * 60;
    return bNumber && value > 0 && value <= most ? static_cast<int>(std::ceil(value * 1000)) : 0;
}

int WrongUsage(const QString &what)
{
    Print(stderr, QStringLiteral("mvsignctl: %1 (see mvsignctl --help)").arg(what));
    return NoAnswer;
}

} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("mvsignctl"));
    QCoreApplication::setApplicationVersion(QStringLiteral(MVSIGNPAD_VERSION));

    const QCommandLineOption host(QStringLiteral("host"), QStringLiteral("Host of the service (localhost)."),
                                  QStringLiteral("H"), QStringLiteral("localhost"));
    const QCommandLineOption port(QStringLiteral("port"), QStringLiteral("Port of the service (8089)."),
                                  QStringLiteral("N"), QStringLiteral("8089"));
    const QCommandLineOption timeout(QStringLiteral("timeout"), QStringLiteral("Seconds to wait for the reply (10)."),
                                     QStringLiteral("S"), QStringLiteral("10"));
    const QCommandLineOption raw(QStringLiteral("raw"), QStringLiteral("Print the whole reply."));
    const QCommandLineOption list(QStringLiteral("list"), QStringLiteral("Print the commands with their keys."));

    // Not the parser's own, to which some versions of Qt add a "--help-all".
    const QCommandLineOption help({QStringLiteral("h"), QStringLiteral("help")}, QStringLiteral("Print this help."));

    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Sends one request to the signature pad service and prints the result.\n"
                       "Exit status: 0 a result, 1 the service calls the request invalid, 2 no connection, no answer "
                       "or wrong usage."));
    parser.addVersionOption();
    parser.addOptions({host, port, timeout, raw, list, help});
    parser.addPositionalArgument(QStringLiteral("API"), QStringLiteral("The command, for example SetPenColor."));
    parser.addPositionalArgument(QStringLiteral("key=value"), QStringLiteral("Its parameters, for example R=255."),
                                 QStringLiteral("[key=value ...]"));
    if (!parser.parse(QCoreApplication::arguments()))
        return WrongUsage(parser.errorText());
    if (parser.isSet(help))
        parser.showHelp(Success);
    if (parser.isSet(QStringLiteral("version")))
        parser.showVersion();
    if (parser.isSet(list)) {
        PrintCommands();
        return Success;
    }

    QStringList call = parser.positionalArguments();
    if (call.isEmpty())
        return WrongUsage(QStringLiteral("no command given"));
    const int nPort = parser.value(port).toInt();
    if (nPort < 1 || nPort > 65535)
        return WrongUsage(QStringLiteral("not a port: ") + parser.value(port));

    Options options;
    options.bRaw = parser.isSet(raw);
    options.nTimeoutMs = Milliseconds(parser.value(timeout));
    if (options.nTimeoutMs == 0)
        return WrongUsage(QStringLiteral("not a number of seconds: ") + parser.value(timeout));
    options.url.setScheme(QStringLiteral("ws"));
    options.url.setHost(parser.value(host));
    options.url.setPort(nPort);
    // The service knows its requests by this address, whatever host it is reached through.
    options.api = call.takeFirst();
    options.request = QStringLiteral("ws://localhost:%1/MVSignSDK/%2").arg(nPort).arg(options.api);
    if (!call.isEmpty())
        options.request += QLatin1Char('?') + call.join(QLatin1Char('&'));

    const Exchange exchange(options);
    return QCoreApplication::exec();
}
