#pragma once

#include "service/AccessPolicy.h"
#include "tray/OriginQuestion.h"

#include <QObject>
#include <QStringList>

#include <memory>

class OriginDesk;
struct OriginQuestionTexts;

/// Asks the user what the desk has asked: one window after the other. Main thread only.
class OriginQuestions : public QObject
{
    Q_OBJECT

public:
    /// Desk and texts outlive it. The policy is that of the service which asks.
    OriginQuestions(OriginDesk &desk, const OriginQuestionTexts &texts, AccessPolicy policy,
                    const OriginPatience &patience = {});
    /// Closes the window; the service gets no answer.
    ~OriginQuestions() override;

private:
    void Ask(const QString &strOrigin);
    void Withdraw(const QString &strOrigin);
    void WithdrawAll();
    void ShowNext();

    OriginDesk &m_desk;
    const OriginQuestionTexts &m_texts;
    const AccessPolicy m_policy;
    const OriginPatience m_patience;
    QStringList m_origins; // the first is the one whose window is open
    std::unique_ptr<OriginQuestion> m_pWindow;
};
