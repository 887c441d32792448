#include "service/OriginDesk.h"

#include "service/OriginAnswers.h"

#include <QFile>
#include <QMetaMethod>

#include <cstdio>

namespace {

void Keep(const QString &strOrigin, OriginAnswer answer)
{
    const bool bKept = answer == OriginAnswer::AllowAlways ? OriginAnswers::Allow(strOrigin)
                       : answer == OriginAnswer::Never     ? OriginAnswers::Block(strOrigin)
                                                           : true;
    if (!bKept)
        std::fprintf(stderr, "mvsignpadsdk_wssvr: the answer is not kept: %s cannot be changed\n",
                     QFile::encodeName(OriginAnswers::Path()).constData());
}

} // namespace

OriginDesk::OriginDesk(QObject *parent) : QObject(parent)
{
    qRegisterMetaType<OriginAnswer>();
    connect(this, &OriginDesk::answered, this, Keep);
}

bool OriginDesk::CanAsk() const
{
    static const QMetaMethod question = QMetaMethod::fromSignal(&OriginDesk::asked);
    return isSignalConnected(question);
}
