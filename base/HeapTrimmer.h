#pragma once

#include <QObject>

class QTimer;

/// Gives the heap's free memory back to the system. That takes a while, and the next text may want the memory again: so
/// it happens a second after it was asked for, at most once a second. For one thread.
class HeapTrimmer : public QObject
{
    Q_OBJECT

public:
    explicit HeapTrimmer(QObject *parent = nullptr);

    /// To be called when large texts have been freed, or are about to be.
    void TrimSoon();

private:
    QTimer *m_pTimer; // child
};
