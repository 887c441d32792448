#pragma once

#include <QObject>
#include <QPointer>

#include <memory>

class OriginDesk;
class OriginList;
class OriginQuestions;
class QAction;
class QMenu;
struct AccessPolicy;
struct TrayTexts;

/// What the user sees of the asking about origins: the questions, and the list with its entry in the menu. Nothing
/// where the policy does not have him asked. Main thread only.
class OriginWindows : public QObject
{
    Q_OBJECT

public:
    /// The desk outlives it.
    explicit OriginWindows(OriginDesk &desk);
    ~OriginWindows() override;

    /// The list's entry is to stand before this one of the menu.
    void UseMenu(QMenu &menu, QAction &before);
    /// Shows the list's entry, or takes it away, as the policy says.
    void OfferList(const AccessPolicy &policy, const TrayTexts &texts);

    /// From now on the questions of a service with this policy are shown.
    void StartAsking(const AccessPolicy &policy, const TrayTexts &texts);
    /// Closes the question that is open.
    void StopAsking();

private:
    void OpenList(const TrayTexts &texts);

    OriginDesk &m_desk;
    QPointer<QMenu> m_pMenu;
    QPointer<QAction> m_pBefore;
    QPointer<QAction> m_pEntry; // like its separator a child of the menu, null while it is not offered
    QPointer<QAction> m_pSeparator;
    std::unique_ptr<OriginQuestions> m_pQuestions;
    std::unique_ptr<OriginList> m_pList;
};
