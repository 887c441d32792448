#pragma once

#include "service/OriginDesk.h"

#include <QDialog>
#include <QTimer>

struct AccessPolicy;
struct OriginQuestionTexts;
class QPushButton;

/// The times of a question, in milliseconds.
struct OriginPatience {
    /// After the window has come up, or has become the active one, no answer counts for so long: what is clicked or
    /// typed then was meant for what had been there before. Each click or key in that time begins it anew.
    int nBlindMs = 500;
    /// From when the window shows; no answer by then is "not now".
    int nAnswerMs = 60000;
};

/// The window that asks whether the pages of an origin may use the service. Main thread only.
class OriginQuestion : public QDialog
{
    Q_OBJECT

public:
    /// Says what the policy lets a client do.
    OriginQuestion(const QString &strOrigin, const OriginQuestionTexts &texts, const AccessPolicy &policy,
                   const OriginPatience &patience = {});

    /// The keys that mean "not now", and the closing of the window.
    void reject() override;

Q_SIGNALS:
    /// Once; the window is hidden by then.
    void answered(OriginAnswer answer);

protected:
    bool event(QEvent *pEvent) override;
    bool eventFilter(QObject *pWatched, QEvent *pEvent) override;
    void showEvent(QShowEvent *pEvent) override;

private:
    void AddAnswers(const OriginQuestionTexts &texts, const QString &strOrigin);
    QPushButton *AddAnswer(const char *szText, OriginAnswer answer);
    void Give(OriginAnswer answer);
    void TurnBlind();
    void TurnSeeing();

    QWidget *m_pAnswers; // the buttons' parent; child
    QPushButton *m_pNotNow = nullptr;
    QTimer m_blindness;
    QTimer m_patience;
    bool m_bExposed = false;
};
