#pragma once

#include "service/OriginRefusals.h"

#include <QMetaType>
#include <QObject>
#include <QString>

/// What the user says about the pages of one origin.
enum class OriginAnswer {
    AllowThisTime, ///< while a connection of that origin is open
    AllowAlways,
    NotNow, ///< also that no answer came in time
    Never,
};
Q_DECLARE_METATYPE(OriginAnswer)

/// Where the service has the user asked about origins, see OriginText.h for what counts as one. An object beside the
/// tray, the service and its thread, whose signals and slots stay as they are. Belongs to whoever owns the service's
/// thread, and outlives it. What is answered for good is kept in OriginAnswers by this object, before the service
/// hears of it.
class OriginDesk : public QObject
{
    Q_OBJECT

public:
    explicit OriginDesk(QObject *parent = nullptr);

    /// Whether anybody listens to questions. Any thread.
    bool CanAsk() const;

    /// For the thread of the running service alone; here since they outlive the service.
    OriginRefusals &Refusals() { return m_refusals; }

Q_SIGNALS:
    /// A page of this origin waits for an answer; not emitted again before it was answered or withdrawn. Emitted on the
    /// service's thread.
    void asked(const QString &strOrigin);
    /// Nobody of that origin waits any more. Emitted on the service's thread.
    void withdrawn(const QString &strOrigin);
    /// Nobody waits any more: the service has ended.
    void allWithdrawn();

    /// The user has answered. Emitted on the main thread.
    void answered(const QString &strOrigin, OriginAnswer answer);
    /// OriginAnswers was changed by other means: the service reads it anew, and connections whose origin is blocked now
    /// end. Emitted on the main thread.
    void answersChanged();

private:
    OriginRefusals m_refusals;
};
