/// Requests through the real service, dispatcher, manager and models, with a library whose answers are part of the
/// input: lines of requests, then a NUL, then the bytes that the library makes its answers from. A line that does not
/// begin with "ws:" gets the service's URL put in front.

#include "service/WebSocketService.h"
#include "tests/fuzz/AnswersFromBytes.h"
#include "tests/fuzz/FuzzHome.h"

#include <QGuiApplication>
#include <QLibrary>
#include <QWebSocket>

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
        QWebSocket client; // never connected: the replies to it go nowhere
        // By name: the slot is the service's own affair, and it asks who has sent.
        if (!QObject::connect(&client, SIGNAL(textMessageReceived(QString)), &service,
                              SLOT(processTextMessage(QString)))
            || !QObject::connect(&client, SIGNAL(binaryMessageReceived(QByteArray)), &service,
                                 SLOT(processBinaryMessage(QByteArray))))
            std::abort();
        const QList<QByteArray> lines = requests.split('\n');
        for (const QByteArray &line : lines) {
            const QByteArray url = line.startsWith("ws:") ? line : "ws://localhost:0/MVSignSDK/" + line;
            Q_EMIT client.textMessageReceived(QString::fromUtf8(url));
            Q_EMIT client.binaryMessageReceived(line);
        }
        QCoreApplication::processEvents();
    }
    run.feed(nullptr, 0);
    return 0;
}
