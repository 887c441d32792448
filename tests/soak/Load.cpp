#include "tests/soak/Load.h"

#include <QJsonDocument>
#include <QJsonObject>

#include <iterator>

namespace {

const char *const requests[] = {
    "InitialDevice?id=2&width=480&height=320",
    "InitialDevice?id=5&width=480&height=320",
    "InitialDevice?id=7&width=480&height=320",
    "InitialDevice?id=3&width=480&height=320",
    "InitialDevice?id=4&width=480&height=320",
    "InitialDevice?id=9&width=480&height=320",
    "UninitialDevice",
    "OpenLCD",
    "CloseLCD",
    "Clear",
    "IsValid",
    "GetSize",
    "GetPointer",
    "GetInks",
    "GetOpaqueInks",
    "WPSGetInks",
    "GetSVGImageBase64Data",
    "GetFingerPrintImage?FPImageOnly=1",
    "SetDisplayedFPImageAt?CanvasWidth=480&CanvasHeight=320&Left=10&Top=10&Width=90&Height=120",
    "Encode?type=1",
    "Encode?type=3",
    "Encode?type=4",
    "Encode?type=5",
    "Encode?type=6",
    "GetDeviceInfo?type=2",
    "GetDeviceInfo?type=5",
    "GetDeviceInfo?type=7",
    "GetAboutInfo",
    "GetDecodeFilePath",
    "GetDeviceConfirmOrCancelKeyStatus",
    "DisplayDeviceInfoInLCD?show=1",
    "PadID",
    "PenID",
    "VersionID",
    "SetClip?width=5&height=5",
    "SetPenColor?R=0&G=0&B=255",
    "SetPenStyle?Style=1",
    "SetPenWidth?Width=3",
    "SaveDrawingImage?type=2&dpi=300&path=soak.png",
    "InitialWPSSignCanvas?width=400&height=200",
    "EnableRealtimeSigningNotification?type=2",
    "UpdateWPSSettings?id=1&dt=1&af=0&pw=4&name=Lin",
    "GetWPSSettings?id=1",
    "WPSSignConfirmed?id=1",
    "Decode?type=6&path=soak.dat&data=",
    "SetPenWidth",
    "NoSuchCommand?x=1",
};

QString nameOf(const QString &request)
{
    return request.section(QLatin1Char('?'), 0, 0);
}

} // namespace

LoadClient::LoadClient(quint16 port, unsigned seed, LoadCounts &counts) : m_port(port), m_random(seed), m_counts(counts)
{
    m_patience.setSingleShot(true);
    m_patience.setInterval(20000);
    connect(&m_patience, &QTimer::timeout, this, [this] { ++m_counts.overdue; });
    connect(&m_socket, &QWebSocket::connected, this, [this] {
        ++m_counts.connections;
        askNext();
    });
    connect(&m_socket, &QWebSocket::textMessageReceived, this, [this](const QString &reply) {
        check(reply);
        askNext();
    });
    connect(&m_socket, &QWebSocket::disconnected, this, [this] {
        m_patience.stop();
        QTimer::singleShot(200, this, &LoadClient::connectAgain);
    });
    connectAgain();
}

void LoadClient::connectAgain()
{
    m_socket.open(QUrl(QStringLiteral("ws://127.0.0.1:%1/").arg(m_port)));
}

QString LoadClient::nextRequest()
{
    std::uniform_int_distribution<std::size_t> any(0, std::size(requests) - 1);
    const QString request = QString::fromLatin1(requests[any(m_random)]);
    return request.endsWith(QLatin1String("&data=")) ? request + m_inkData : request;
}

void LoadClient::askNext()
{
    const QString request = nextRequest();
    m_asked = nameOf(request);
    m_counts.initialisations += m_asked == QLatin1String("InitialDevice") ? 1 : 0;
    m_patience.start();
    m_socket.sendTextMessage(QStringLiteral("ws://localhost:%1/MVSignSDK/").arg(m_port) + request);
}

void LoadClient::check(const QString &reply)
{
    m_patience.stop();
    ++m_counts.requests;
    const QJsonObject object = QJsonDocument::fromJson(reply.toUtf8()).object();
    const QString name = object.value(QLatin1String("API")).toString();
    const QString result = object.value(QLatin1String("Result")).toString();
    const bool isRefusal = name == QLatin1String("Invalid API request") && result == QLatin1String("-1");
    if (object.size() != 2 || (name != m_asked && !isRefusal))
        ++m_counts.wrongReplies;
    if (name == QLatin1String("Encode") && result.startsWith(QLatin1String("W3s"))) // ink data begins with "[{"
        m_inkData = result;
}
