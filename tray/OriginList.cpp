#include "tray/OriginList.h"

#include "service/OriginAnswers.h"
#include "service/OriginDesk.h"
#include "service/OriginText.h"
#include "tray/TrayTexts.h"

#include <QHBoxLayout>
#include <QHeaderView>
#include <QIcon>
#include <QLabel>
#include <QPushButton>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace {

enum Column { Answer, Origin };

void AddRows(const QStringList &origins, const char *szAnswer, QTreeWidget &list)
{
    for (const QString &strOrigin : origins)
        list.addTopLevelItem(new QTreeWidgetItem({QString::fromUtf8(szAnswer), strOrigin}));
}

QTreeWidget *MakeList()
{
    auto *const pList = new QTreeWidget;
    pList->setColumnCount(2);
    pList->setHeaderHidden(true);
    pList->setRootIsDecorated(false);
    pList->setAllColumnsShowFocus(true);
    pList->setTextElideMode(Qt::ElideNone); // nothing of a host is left out
    pList->header()->setStretchLastSection(false);
    pList->setMinimumSize(30 * pList->fontMetrics().height(), 12 * pList->fontMetrics().height());
    return pList;
}

} // namespace

OriginList::OriginList(OriginDesk &desk, const OriginListTexts &texts)
    : QDialog(nullptr, Qt::Dialog | Qt::WindowTitleHint | Qt::WindowCloseButtonHint), m_desk(desk), m_texts(texts),
      m_pList(MakeList()), m_pNote(new QLabel), m_pButtons(new QWidget)
{
    setWindowTitle(QString::fromUtf8(texts.szTitle));
    setWindowIcon(QIcon(QStringLiteral("./mvsignpadsdk_wssvr.ico")));
    (new QHBoxLayout(m_pButtons))->setContentsMargins(0, 0, 0, 0);
    m_pAllow = AddButton(texts.szAllow, &OriginAnswers::Allow);
    m_pBlock = AddButton(texts.szBlock, &OriginAnswers::Block);
    m_pForget = AddButton(texts.szForget, &OriginAnswers::Forget);
    auto *const pClose = new QPushButton(QString::fromUtf8(texts.szClose));
    connect(pClose, &QPushButton::clicked, this, &QDialog::close);
    m_pButtons->layout()->addWidget(pClose);
    pClose->setDefault(true);

    m_pNote->setTextFormat(Qt::PlainText);
    m_pNote->setWordWrap(true);
    auto *const pColumn = new QVBoxLayout(this);
    pColumn->addWidget(new QLabel(QString::fromUtf8(texts.szExplanation)));
    pColumn->addWidget(m_pList);
    pColumn->addWidget(m_pNote);
    pColumn->addWidget(m_pButtons);

    connect(m_pList, &QTreeWidget::currentItemChanged, this, &OriginList::OfferWhatFits);
    connect(&desk, &OriginDesk::answered, this, &OriginList::Refresh); // what was answered is kept by then
    connect(&desk, &OriginDesk::answersChanged, this, &OriginList::Refresh);
    Refresh();
}

QPushButton *OriginList::AddButton(const char *szText, bool (*change)(const QString &strOrigin))
{
    auto *const pButton = new QPushButton(QString::fromUtf8(szText));
    connect(pButton, &QPushButton::clicked, this, [this, change] { Change(change); });
    m_pButtons->layout()->addWidget(pButton);
    return pButton;
}

void OriginList::Refresh()
{
    const QTreeWidgetItem *const pCurrent = m_pList->currentItem();
    const QString strCurrent = pCurrent ? pCurrent->text(Origin) : QString();
    m_pList->clear();
    const std::optional<OriginAnswers> answers = OriginAnswers::Read();
    if (answers) {
        AddRows(answers->Allowed(), m_texts.szAllowed, *m_pList);
        AddRows(answers->Blocked(), m_texts.szBlocked, *m_pList);
        SetNote(m_pList->topLevelItemCount() == 0 ? QString::fromUtf8(m_texts.szEmpty) : QString());
    } else {
        NoteThatTheFileFails();
    }
    m_pList->resizeColumnToContents(Answer);
    m_pList->resizeColumnToContents(Origin);
    const QList<QTreeWidgetItem *> same = m_pList->findItems(strCurrent, Qt::MatchExactly, Origin);
    m_pList->setCurrentItem(same.isEmpty() ? m_pList->topLevelItem(0) : same.first());
    OfferWhatFits();
}

void OriginList::Change(bool (*change)(const QString &strOrigin))
{
    if (change(m_pList->currentItem()->text(Origin)))
        Q_EMIT m_desk.answersChanged();
    else
        NoteThatTheFileFails();
    m_pList->setFocus();
}

void OriginList::SetNote(const QString &strNote)
{
    m_pNote->setText(strNote);
    m_pNote->setVisible(!strNote.isEmpty());
}

void OriginList::NoteThatTheFileFails()
{
    SetNote(QString::fromUtf8(m_texts.szFileFails).arg(OriginAnswers::Path()));
}

void OriginList::OfferWhatFits()
{
    const QTreeWidgetItem *const pCurrent = m_pList->currentItem();
    const bool bChosen = pCurrent != nullptr;
    const bool bAllowed = bChosen && pCurrent->text(Answer) == QString::fromUtf8(m_texts.szAllowed);
    m_pAllow->setEnabled(bChosen && !bAllowed && !IsSharedOrigin(pCurrent->text(Origin)));
    m_pBlock->setEnabled(bAllowed);
    m_pForget->setEnabled(bChosen);
}
