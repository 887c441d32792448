#include "tools/Subcommands.h"
#include "tools/Text.h"

#include <QJsonDocument>
#include <QJsonObject>

#include <unistd.h>

namespace {

const int nPauseMs = 200;

struct Question {
    const char *szCall;
    const char *szName; ///< in the JSON lines
};

/// What is asked again and again, in this order.
const Question questions[] = {
    {"IsValid", "connected"},
    {"GetSize", "points"},
    {"GetDeviceConfirmOrCancelKeyStatus", "key"},
};
const int nQuestions = sizeof questions / sizeof *questions;

/// Follows the pad until the connection ends.
class Watch : public QObject
{
public:
    explicit Watch(const Target &target) : m_exchange(target)
    {
        connect(&m_exchange, &Exchange::answered, this, &Watch::TakeAnswer);
        connect(&m_exchange, &Exchange::pushed, this, &Watch::TakePush);
        connect(&m_exchange, &Exchange::failed, this, [this](const QString &why) {
            if (m_bTerminal)
                std::fputc('\n', stdout);
            QCoreApplication::exit(Fail(why));
        });
        m_pause.setSingleShot(true);
        m_pause.setInterval(nPauseMs);
        connect(&m_pause, &QTimer::timeout, this, [this] { AskNext(); });
        AskNext();
    }

private:
    void AskNext() { m_exchange.Ask(QString::fromLatin1(questions[m_nQuestion].szCall)); }

    void TakeAnswer(const Reply &reply)
    {
        m_now.insert(QString::fromLatin1(questions[m_nQuestion].szName), reply.result.toInt());
        m_nQuestion = (m_nQuestion + 1) % nQuestions;
        if (m_nQuestion != 0)
            return AskNext();
        if (m_now != m_shown)
            Show();
        m_shown = m_now;
        m_pause.start();
    }

    void TakePush(const Reply &reply)
    {
        ++m_nPushes;
        if (!m_bTerminal)
            PrintPush(reply);
        else
            Show();
    }

    void Show() const
    {
        if (!m_bTerminal)
            return PrintJson(m_now);
        const auto number = [this](const char *szName) { return m_now.value(QLatin1String(szName)).toInt(); };
        const QString key = number("key") == 1   ? Text::tr("confirm")
                            : number("key") == 0 ? Text::tr("cancel")
                                                 : QStringLiteral("-");
        const QString line = Text::tr("pad: %1, points: %2, key: %3, pushes: %4")
                                 .arg(number("connected") ? Text::tr("connected") : Text::tr("none"))
                                 .arg(number("points"))
                                 .arg(key)
                                 .arg(m_nPushes);
        std::fprintf(stdout, "\r\033[K%s", line.toUtf8().constData()); // over the line before
        std::fflush(stdout);
    }

    static void PrintPush(const Reply &reply)
    {
        QJsonObject line;
        line.insert(QStringLiteral("push"), reply.api);
        line.insert(QStringLiteral("result"), reply.result);
        PrintJson(line);
    }

    static void PrintJson(const QJsonObject &line)
    {
        Print(stdout, QString::fromUtf8(QJsonDocument(line).toJson(QJsonDocument::Compact)));
        std::fflush(stdout);
    }

    Exchange m_exchange;
    QTimer m_pause;
    QJsonObject m_now;
    QJsonObject m_shown;
    int m_nQuestion = 0;
    int m_nPushes = 0;
    bool m_bTerminal = isatty(STDOUT_FILENO) == 1;
};

} // namespace

int WatchPad(const Invocation &invocation)
{
    const Watch watch(invocation.target);
    return QCoreApplication::exec();
}
