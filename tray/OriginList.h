#pragma once

#include <QDialog>

class OriginDesk;
class QLabel;
class QPushButton;
class QTreeWidget;
struct OriginListTexts;

/// The window that shows which origins the user has allowed or blocked for good, and takes that back. Main thread only.
class OriginList : public QDialog
{
    Q_OBJECT

public:
    /// Desk and texts outlive it.
    OriginList(OriginDesk &desk, const OriginListTexts &texts);

private:
    QPushButton *AddButton(const char *szText, bool (*change)(const QString &strOrigin));
    void Refresh();
    void Change(bool (*change)(const QString &strOrigin));
    void SetNote(const QString &strNote);
    void NoteThatTheFileFails();
    void OfferWhatFits();

    OriginDesk &m_desk;
    const OriginListTexts &m_texts;
    QTreeWidget *m_pList; // these are children
    QLabel *m_pNote;
    QWidget *m_pButtons;
    QPushButton *m_pAllow;
    QPushButton *m_pBlock;
    QPushButton *m_pForget;
};
