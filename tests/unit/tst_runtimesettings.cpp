// What the program sets for itself before anything else: descriptors, event loops, the heap.
#include "base/RuntimeSettings.h"

#include <QTest>
#include <QXmlStreamReader>

#include <cstdio>
#include <cstdlib>
#include <malloc.h>
#include <memory>
#include <sys/resource.h>
#include <thread>
#include <unistd.h>

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool hasHeapOfItsOwn = true; // the sanitizer's, which is set otherwise
#else
constexpr bool hasHeapOfItsOwn = false;
#endif

namespace {

const size_t oneMiB = 1024 * 1024;
const rlim_t few = 200; // descriptors

/// The heap as the C library tells of it.
struct Heap {
    int arenas = 0;
    int piecesFromTheSystem = -1; // each by itself, outside of the arenas
    qulonglong bytes = 0;         // of the arenas
};

Heap heap()
{
    char *text = nullptr;
    size_t size = 0;
    FILE *stream = open_memstream(&text, &size);
    malloc_info(0, stream);
    fclose(stream);
    QXmlStreamReader reader(QByteArray(text, static_cast<int>(size)));
    free(text);
    Heap heap;
    int depth = 0;
    while (!reader.atEnd()) {
        const QXmlStreamReader::TokenType token = reader.readNext();
        depth += token == QXmlStreamReader::StartElement ? 1 : token == QXmlStreamReader::EndElement ? -1 : 0;
        if (token != QXmlStreamReader::StartElement)
            continue;
        const QXmlStreamAttributes attributes = reader.attributes();
        const QStringRef type = attributes.value(QLatin1String("type"));
        if (reader.name() == QLatin1String("heap"))
            ++heap.arenas;
        else if (reader.name() == QLatin1String("total") && type == QLatin1String("mmap"))
            heap.piecesFromTheSystem = attributes.value(QLatin1String("count")).toInt();
        else if (depth == 2 && reader.name() == QLatin1String("system") && type == QLatin1String("current"))
            heap.bytes = attributes.value(QLatin1String("size")).toULongLong();
    }
    return heap;
}

using Piece = std::unique_ptr<void, decltype(&free)>;

Piece piece(size_t size)
{
    return {malloc(size), &free};
}

} // namespace

class RuntimeSettingsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void asManyDescriptorsAsTheSystemPermits();
    void threadsDoWithoutGlib();
    void noDriversOfOpenGlUnlessWanted();
    void oneHeapForAllThreads();
    void roomOfAPictureComesFromTheHeap();
    void roomOfAPictureStaysInTheHeap();
};

void RuntimeSettingsTest::asManyDescriptorsAsTheSystemPermits()
{
    rlimit now{};
    QCOMPARE(getrlimit(RLIMIT_NOFILE, &now), 0);
    QVERIFY(now.rlim_max > few);
    QCOMPARE(now.rlim_cur, now.rlim_max);
}

void RuntimeSettingsTest::threadsDoWithoutGlib()
{
    QCOMPARE(qgetenv("QT_NO_THREADED_GLIB"), QByteArray("1"));
}

void RuntimeSettingsTest::noDriversOfOpenGlUnlessWanted()
{
    QCOMPARE(qgetenv("QT_XCB_GL_INTEGRATION"), QByteArray("none"));
    qputenv("QT_XCB_GL_INTEGRATION", "xcb_egl");
    ApplyRuntimeSettings();
    QCOMPARE(qgetenv("QT_XCB_GL_INTEGRATION"), QByteArray("xcb_egl"));
}

void RuntimeSettingsTest::oneHeapForAllThreads()
{
    if (hasHeapOfItsOwn)
        QSKIP("the sanitizer brings a heap of its own");
    for (int i = 0; i < 4; ++i)
        std::thread([] { piece(1000); }).join();
    QCOMPARE(heap().arenas, 1);
}

void RuntimeSettingsTest::roomOfAPictureComesFromTheHeap()
{
    if (hasHeapOfItsOwn)
        QSKIP("the sanitizer brings a heap of its own");
    const int before = heap().piecesFromTheSystem;
    QVERIFY(before >= 0);
    const Piece picture = piece(31 * oneMiB);
    QCOMPARE(heap().piecesFromTheSystem, before);
    const Piece huge = piece(32 * oneMiB);
    QCOMPARE(heap().piecesFromTheSystem, before + 1);
}

void RuntimeSettingsTest::roomOfAPictureStaysInTheHeap()
{
    if (hasHeapOfItsOwn)
        QSKIP("the sanitizer brings a heap of its own");
    const Piece inAnyGap = piece(31 * oneMiB); // the next ones come from the heap's end
    const qulonglong before = heap().bytes;
    const void *const end = sbrk(0);
    if (const Piece picture = piece(31 * oneMiB); sbrk(0) == end)
        QSKIP("the heap of an emulated program is in pieces, which have no end to be given back");
    QVERIFY(heap().bytes >= before + 30 * oneMiB);
    {
        const Piece pictures[] = {piece(25 * oneMiB), piece(25 * oneMiB), piece(25 * oneMiB), piece(25 * oneMiB)};
        QVERIFY(pictures[3]);
    }
    QVERIFY(heap().bytes < before + 64 * oneMiB); // more was free at its end
}

/// The program's first act, when there is no other thread yet.
int main(int argc, char *argv[])
{
    rlimit descriptors{};
    getrlimit(RLIMIT_NOFILE, &descriptors);
    descriptors.rlim_cur = few;
    setrlimit(RLIMIT_NOFILE, &descriptors);
    qunsetenv("QT_NO_THREADED_GLIB");
    qunsetenv("QT_XCB_GL_INTEGRATION");
    ApplyRuntimeSettings();
    QCoreApplication application(argc, argv);
    RuntimeSettingsTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_runtimesettings.moc"
