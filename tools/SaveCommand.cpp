#include "tools/Subcommands.h"
#include "tools/Text.h"

#include <QSaveFile>

namespace {

struct Format {
    const char *szEnding;
    const char *szCall; ///< the request that brings the drawing in this format
    bool bBase64;       ///< whether its result is in base64
};

// Not GetInks: it hands a picture out once, and whoever else waits for it would miss it.
const Format formats[] = {
    {".png", "Encode?type=3", true},
    {".svg", "GetSVGImageBase64Data", true},
    {".json", "GetPointer", false},
};

const Format *FormatOf(const QString &path)
{
    for (const Format &format : formats) {
        if (path.endsWith(QLatin1String(format.szEnding), Qt::CaseInsensitive))
            return &format;
    }
    return nullptr;
}

} // namespace

int SaveDrawing(const Invocation &invocation)
{
    const QString path = invocation.arguments.constFirst();
    const Format *const format = FormatOf(path);
    if (!format)
        return WrongUsage(Text::tr("neither .png nor .svg nor .json: %1").arg(path));
    Exchange exchange(invocation.target);
    QObject::connect(&exchange, &Exchange::failed, [](const QString &why) { Fail(why); });
    Reply reply;
    if (!exchange.AskAndWait(QString::fromLatin1(format->szCall), reply))
        return NoAnswer;
    const QByteArray content =
        format->bBase64 ? QByteArray::fromBase64(reply.result.toLatin1()) : reply.result.toUtf8() + '\n';
    if (reply.bInvalid || content.isEmpty() || reply.result == QLatin1String("[]")) {
        Fail(Text::tr("there is nothing on the pad, or no pad"));
        return InvalidRequest;
    }
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size() || !file.commit()) {
        Fail(Fill(Text::tr("cannot write %1: %2"), {path, file.errorString()}));
        return InvalidRequest;
    }
    return Success;
}
