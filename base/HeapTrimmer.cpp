#include "base/HeapTrimmer.h"

#include <QTimer>

#include <malloc.h>

namespace {

constexpr int nDelayMs = 1000;

} // namespace

HeapTrimmer::HeapTrimmer(QObject *parent) : QObject(parent), m_pTimer(new QTimer(this))
{
    m_pTimer->setSingleShot(true);
    m_pTimer->setInterval(nDelayMs);
    connect(m_pTimer, &QTimer::timeout, this, [] { malloc_trim(0); });
}

void HeapTrimmer::TrimSoon()
{
    if (!m_pTimer->isActive())
        m_pTimer->start();
}
