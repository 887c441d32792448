/// Requests over a real connection through the service, dispatcher, manager and models, with a library whose answers
/// are part of the input: lines of requests, then a NUL, then the bytes that the library makes its answers from. A line
/// that does not begin with "ws:" gets the service's URL put in front. Each line is sent as a text and, as it is, as
/// bytes, which must come back unchanged.

#include "service/WebSocketService.h"
#include "tests/fuzz/AnswersFromBytes.h"
#include "tests/fuzz/FuzzHome.h"

#include <QGuiApplication>
#include <QLibrary>
#include <QWebSocket>
#include <QWebSocketServer>

#include <cstdlib>

namespace {

struct Fixture {
    FuzzHome home;
    int argc = 1;
    char name[16] = "fuzz_request";
    char *argv[2] = {name, nullptr};
    QGuiApplication application{argc, argv};
    QLibrary library{QStringLiteral("./libmvsignpadsdk.so")}; // stays loaded while the models come and go
    decltype(&HostileSdkFeed) feed = nullptr;

    Fixture()
    {
        qputenv("XDG_RUNTIME_DIR", "/tmp");
        QDir::setCurrent(QStringLiteral(FUZZ_SDK_DIR));
        feed = reinterpret_cast<decltype(feed)>(library.resolve("HostileSdkFeed"));
        if (!feed)
            qFatal("%s", qPrintable(library.errorString()));
    }
};

Fixture &fixture()
{
    static Fixture *const made = new Fixture;
    return *made;
}

/// Connected to the service over the system's loopback.
class FuzzClient
{
public:
    explicit FuzzClient(const WebSocketService &service)
    {
        QObject::connect(&m_socket, &QWebSocket::textMessageReceived, [this] { ++m_texts; });
        QObject::connect(&m_socket, &QWebSocket::binaryMessageReceived,
                         [this](const QByteArray &message) { m_echoes.append(message); });
        const quint16 port = service.findChild<QWebSocketServer *>()->serverPort();
        m_socket.open(QUrl(QStringLiteral("ws://127.0.0.1:%1/").arg(port)));
        while (m_socket.state() != QAbstractSocket::ConnectedState)
            waitForMore();
    }

    QWebSocket &socket() { return m_socket; }

    /// Waits until all is answered: each binary message with itself, each text with at least one.
    void compareEchoes(const QList<QByteArray> &sent)
    {
        while (m_echoes.size() < sent.size())
            waitForMore();
        if (m_echoes != sent || m_texts < sent.size())
            std::abort();
    }

private:
    /// The fuzzer's own time limit ends what waits in vain.
    void waitForMore()
    {
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        if (m_socket.state() == QAbstractSocket::UnconnectedState)
            std::abort();
    }

    QWebSocket m_socket;
    QList<QByteArray> m_echoes;
    int m_texts = 0;
};

} // namespace

/// Before the first input: the fuzzer counts the library's coverage only if it knows of it by then.
extern "C" int LLVMFuzzerInitialize(int * /*argc*/, char *** /*argv*/)
{
    fixture();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    Fixture &run = fixture();
    const QByteArray input = QByteArray::fromRawData(reinterpret_cast<const char *>(data), static_cast<int>(size));
    const int nul = input.indexOf('\0');
    const QByteArray requests = nul < 0 ? input : input.left(nul);
    const std::size_t answers = nul < 0 ? size : static_cast<std::size_t>(nul) + 1;
    run.feed(data + answers, size - answers);

    QFile::remove(run.home.settingsFile(QStringLiteral("MVeSign_WPS")));
    {
        WebSocketService service(0);
        if (!service.Manager())
            std::abort();
        FuzzClient client(service);
        const QList<QByteArray> lines = requests.split('\n');
        for (const QByteArray &line : lines) {
            const QByteArray url = line.startsWith("ws:") ? line : "ws://localhost:0/MVSignSDK/" + line;
            client.socket().sendTextMessage(QString::fromUtf8(url));
            client.socket().sendBinaryMessage(line);
        }
        client.compareEchoes(lines);
    }
    run.feed(nullptr, 0);
    return 0;
}
