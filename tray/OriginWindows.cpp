#include "tray/OriginWindows.h"

#include "service/AccessPolicy.h"
#include "tray/OriginList.h"
#include "tray/OriginQuestions.h"
#include "tray/TrayTexts.h"

#include <QAction>
#include <QMenu>

OriginWindows::OriginWindows(OriginDesk &desk) : m_desk(desk) {}

OriginWindows::~OriginWindows() = default;

void OriginWindows::UseMenu(QMenu &menu, QAction &before)
{
    m_pMenu = &menu;
    m_pBefore = &before;
}

void OriginWindows::OfferList(const AccessPolicy &policy, const TrayTexts &texts)
{
    delete m_pEntry;
    delete m_pSeparator;
    if (!m_pMenu || !policy.AsksTheUser())
        return;
    m_pEntry = new QAction(QString::fromUtf8(texts.szOriginList), m_pMenu);
    connect(m_pEntry, &QAction::triggered, this, [this, &texts] { OpenList(texts); });
    m_pMenu->insertAction(m_pBefore, m_pEntry);
    m_pSeparator = m_pMenu->insertSeparator(m_pBefore);
}

void OriginWindows::OpenList(const TrayTexts &texts)
{
    m_pList = std::make_unique<OriginList>(m_desk, texts.list);
    m_pList->show();
    m_pList->raise();
    m_pList->activateWindow();
}

void OriginWindows::StartAsking(const AccessPolicy &policy, const TrayTexts &texts)
{
    OfferList(policy, texts);
    if (policy.AsksTheUser())
        m_pQuestions = std::make_unique<OriginQuestions>(m_desk, texts.question, policy);
}

void OriginWindows::StopAsking()
{
    m_pQuestions.reset();
}
