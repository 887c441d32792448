// Interface newer than Qt 5.9: the check must report each marked line with the marked version, and no other line.
#include <QColor>
#include <QDateTime>
#include <QDeadlineTimer>
#include <QFontMetrics>
#include <QImage>
#include <QLabel>
#include <QMap>
#include <QMetaObject>
#include <QObject>
#include <QProcess>
#include <QRandomGenerator>
#include <QSet>
#include <QStringList>
#include <QTextStream>
#include <QThread>
#include <QTimer>
#include <QWebSocket>
#include <QWebSocketServer>

class Uncopied
{
public:
    Uncopied() = default;
    Q_DISABLE_COPY_MOVE(Uncopied) // Qt 5.13
};

template<typename Pad>
int WidthOf(const Pad &pad, const QFontMetrics &metrics)
{
    return metrics.horizontalAdvance(pad.name()); // Qt 5.11
}

int UseNewer(QObject *object, const QString &text, QThread *thread, QWebSocketServer *server, QWebSocket *socket)
{
    QMetaObject::invokeMethod(object, [] {}); // Qt 5.10
    QMetaObject::invokeMethod(object, [] {}, Qt::QueuedConnection); // Qt 5.10
    const QStringList parts = text.split(QLatin1Char(','), Qt::SkipEmptyParts); // Qt 5.14
    const QString shorter = text.chopped(1); // Qt 5.10
    const bool upper = text.isUpper(); // Qt 5.12
    const QStringView view(text); // Qt 5.10
    const QString filled = shorter.arg(view); // Qt 5.10
    const bool starts = text.startsWith(view); // Qt 5.10
    const quint32 number = QRandomGenerator::global()->generate(); // Qt 5.10
    server->setHandshakeTimeout(1000); // Qt 5.14
    socket->setMaxAllowedIncomingFrameSize(1024); // Qt 5.15
    QObject::connect(object, &QObject::destroyed, thread, [thread] { thread->wait(QDeadlineTimer(5)); }); // Qt 5.15
    thread->setObjectName(qEnvironmentVariable("HOME")); // Qt 5.10
    const QSet<QString> set(parts.begin(), parts.end()); // Qt 5.14
    const qsizetype bytes = QImage(1, 1, QImage::Format_Grayscale16).sizeInBytes(); // Qt 5.13 // Qt 5.10
    QTextStream(stdout) << filled << Qt::endl; // Qt 5.14
    const QDateTime day = QDate(2020, 1, 1).startOfDay(); // Qt 5.14
    QMap<int, int> map;
    map.insert(QMap<int, int>()); // Qt 5.15
    const auto limit = &QWebSocket::setMaxAllowedIncomingMessageSize; // Qt 5.15
    (socket->*limit)(1024);
    return int(number) + set.size() + int(bytes) + day.date().day() + starts + upper;
}
