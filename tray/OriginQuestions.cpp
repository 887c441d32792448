#include "tray/OriginQuestions.h"

#include "service/OriginDesk.h"

#include <utility>

OriginQuestions::OriginQuestions(OriginDesk &desk, const OriginQuestionTexts &texts, AccessPolicy policy,
                                 const OriginPatience &patience)
    : m_desk(desk), m_texts(texts), m_policy(std::move(policy)), m_patience(patience)
{
    connect(&desk, &OriginDesk::asked, this, &OriginQuestions::Ask);
    connect(&desk, &OriginDesk::withdrawn, this, &OriginQuestions::Withdraw);
    connect(&desk, &OriginDesk::allWithdrawn, this, &OriginQuestions::WithdrawAll);
}

OriginQuestions::~OriginQuestions() = default;

void OriginQuestions::Ask(const QString &strOrigin)
{
    m_origins.append(strOrigin);
    if (!m_pWindow)
        ShowNext();
}

void OriginQuestions::Withdraw(const QString &strOrigin)
{
    const bool bShown = m_pWindow && m_origins.constFirst() == strOrigin;
    m_origins.removeAll(strOrigin); // none when it was answered in the meantime
    if (bShown)
        ShowNext();
}

void OriginQuestions::WithdrawAll()
{
    m_origins.clear();
    m_pWindow.reset();
}

void OriginQuestions::ShowNext()
{
    m_pWindow.reset();
    if (m_origins.isEmpty())
        return;
    m_pWindow = std::make_unique<OriginQuestion>(m_origins.constFirst(), m_texts, m_policy, m_patience);
    connect(m_pWindow.get(), &OriginQuestion::answered, this, [this](OriginAnswer answer) {
        m_pWindow.release()->deleteLater(); // it is the one that tells
        const QString strOrigin = m_origins.takeFirst();
        Q_EMIT m_desk.answered(strOrigin, answer);
        ShowNext();
    });
    m_pWindow->show();
    m_pWindow->raise();
    m_pWindow->activateWindow();
}
