#include "tray/OriginQuestion.h"

#include "base/QtCompat.h"
#include "service/AccessPolicy.h"
#include "service/OriginText.h"
#include "tray/TrayTexts.h"

#include <QEvent>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QIcon>
#include <QLabel>
#include <QPushButton>
#include <QRegularExpression>
#include <QScreen>
#include <QTextCursor>
#include <QTextEdit>
#include <QVBoxLayout>
#include <QWindow>

namespace {

/// Of a window's texts, in Latin letters of its font: fonts with Chinese characters call these their average.
int ColumnWidth(const QFontMetrics &metrics)
{
    const int nWanted = TextWidth(metrics, QString(76, QLatin1Char('x')));
    return qMin(nWanted, QGuiApplication::primaryScreen()->availableGeometry().width() * 4 / 5);
}

/// One in which letters and figures that are alike elsewhere differ. That of the desktop's settings need not be.
QFont FixedFont(QFont font)
{
    font.setFamily(QStringLiteral("monospace"));
    font.setStyleHint(QFont::TypeWriter);
    return font;
}

QLabel *MakeLabel(const QString &strText, int nWidth)
{
    auto *const pLabel = new QLabel;
    pLabel->setTextFormat(Qt::PlainText);
    pLabel->setWordWrap(true);
    pLabel->setText(strText);
    pLabel->setFixedWidth(nWidth);
    return pLabel;
}

QLabel *MakeHeadline(const char *szText, int nWidth)
{
    QLabel *const pLabel = MakeLabel(QString::fromUtf8(szText), nWidth);
    QFont font = pLabel->font();
    font.setPointSizeF(QFontInfo(font).pointSizeF() * 1.2);
    font.setBold(true);
    pLabel->setFont(font);
    return pLabel;
}

/// Puts the origin into the document as it is, its host in bold; one that has no host is bold as a whole.
void InsertOrigin(const QString &strOrigin, QTextCursor cursor)
{
    static const QRegularExpression parts(QStringLiteral(R"(\A([a-z][a-z0-9+.-]*://)(\[[^\]]*\]|[^:]+)(.*)\z)"));
    QTextCharFormat bold;
    bold.setFontWeight(QFont::Bold);
    const QRegularExpressionMatch match = parts.match(strOrigin);
    cursor.insertText(match.captured(1), QTextCharFormat());
    cursor.insertText(match.hasMatch() ? match.captured(2) : strOrigin, bold);
    cursor.insertText(match.captured(3), QTextCharFormat());
}

/// The origin in full. It breaks anywhere, so that a long one hides nothing and takes no more than its lines.
QTextEdit *MakeOriginField(const QString &strOrigin, int nWidth)
{
    auto *const pField = new QTextEdit;
    pField->setReadOnly(true);
    pField->setFocusPolicy(Qt::NoFocus); // the keyboard is for the answers
    pField->setWordWrapMode(QTextOption::WrapAnywhere);
    pField->setLayoutDirection(Qt::LeftToRight);
    pField->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    pField->setFont(FixedFont(pField->font()));
    pField->setAccessibleName(strOrigin);
    InsertOrigin(strOrigin, pField->textCursor());
    const int nFrame = 2 * pField->frameWidth();
    pField->document()->setTextWidth(nWidth - nFrame);
    pField->setFixedSize(nWidth, qRound(pField->document()->size().height()) + nFrame);
    return pField;
}

QStringList ElidedFolders(const QStringList &folders, const QFontMetrics &metrics, int nWidth)
{
    QStringList elided;
    for (const QString &strFolder : folders)
        elided.append(metrics.elidedText(strFolder, Qt::ElideMiddle, nWidth));
    return elided;
}

QStringList Abilities(const OriginQuestionTexts &texts, const AccessPolicy &policy, const QStringList &folders)
{
    QStringList abilities = {QString::fromUtf8(texts.szReads), QString::fromUtf8(texts.szDisturbs)};
    if (!policy.saveFolders)
        abilities.append(QString::fromUtf8(texts.szWritesAnywhere));
    else if (folders.isEmpty())
        abilities.append(QString::fromUtf8(texts.szWritesNothing));
    else
        abilities.append(QString::fromUtf8(texts.szWritesBelow).arg(folders.join(QStringLiteral(", "))));
    return abilities;
}

void AddAbilities(const QStringList &abilities, int nWidth, QVBoxLayout &column)
{
    for (const QString &strAbility : abilities) {
        auto *const pBullet = new QLabel(QStringLiteral("\u2022"));
        const int nIndent = 2 * pBullet->sizeHint().width();
        pBullet->setFixedWidth(nIndent);
        auto *const pRow = new QHBoxLayout;
        pRow->setSpacing(0);
        pRow->addWidget(pBullet, 0, Qt::AlignTop);
        pRow->addWidget(MakeLabel(strAbility, nWidth - nIndent));
        column.addLayout(pRow);
    }
}

bool IsInput(QEvent::Type type)
{
    return type == QEvent::KeyPress || type == QEvent::MouseButtonPress || type == QEvent::MouseButtonDblClick;
}

} // namespace

OriginQuestion::OriginQuestion(const QString &strOrigin, const OriginQuestionTexts &texts, const AccessPolicy &policy,
                               const OriginPatience &patience)
    : QDialog(nullptr, Qt::Dialog | Qt::WindowTitleHint | Qt::WindowCloseButtonHint | Qt::WindowStaysOnTopHint),
      m_pAnswers(new QWidget(this))
{
    setWindowTitle(QString::fromUtf8(texts.szTitle));
    setWindowIcon(QIcon(QStringLiteral("./mvsignpadsdk_wssvr.ico")));
    m_blindness.setSingleShot(true);
    m_blindness.setInterval(patience.nBlindMs);
    m_blindness.setTimerType(Qt::PreciseTimer); // others come up to a twentieth early
    connect(&m_blindness, &QTimer::timeout, this, &OriginQuestion::TurnSeeing);
    m_patience.setSingleShot(true);
    m_patience.setInterval(patience.nAnswerMs);
    connect(&m_patience, &QTimer::timeout, this, [this] { Give(OriginAnswer::NotNow); });

    const int nWidth = ColumnWidth(fontMetrics());
    auto *const pColumn = new QVBoxLayout(this);
    pColumn->addWidget(MakeHeadline(texts.szHeadline, nWidth));
    pColumn->addWidget(MakeOriginField(strOrigin, nWidth));
    if (IsSharedOrigin(strOrigin))
        pColumn->addWidget(MakeLabel(QString::fromUtf8(texts.szShared), nWidth));
    pColumn->addWidget(MakeLabel(QString::fromUtf8(texts.szCan), nWidth));
    const QStringList folders = ElidedFolders(policy.saveFolders.value_or(QStringList()), fontMetrics(), nWidth / 2);
    AddAbilities(Abilities(texts, policy, folders), nWidth, *pColumn);
    pColumn->addWidget(MakeLabel(QString::fromUtf8(texts.szPatience), nWidth));
    AddAnswers(texts, strOrigin);
    pColumn->addWidget(m_pAnswers);
    pColumn->setSizeConstraint(QLayout::SetFixedSize);
    TurnBlind();
}

void OriginQuestion::AddAnswers(const OriginQuestionTexts &texts, const QString &strOrigin)
{
    auto *const pRow = new QHBoxLayout(m_pAnswers);
    pRow->setContentsMargins(0, 0, 0, 0);
    AddAnswer(texts.szAllowThisTime, OriginAnswer::AllowThisTime);
    if (!IsSharedOrigin(strOrigin))
        AddAnswer(texts.szAllowAlways, OriginAnswer::AllowAlways);
    AddAnswer(texts.szNever, OriginAnswer::Never);
    m_pNotNow = AddAnswer(texts.szNotNow, OriginAnswer::NotNow);
    m_pNotNow->setDefault(true);
}

QPushButton *OriginQuestion::AddAnswer(const char *szText, OriginAnswer answer)
{
    auto *const pButton = new QPushButton(QString::fromUtf8(szText));
    connect(pButton, &QPushButton::clicked, this, [this, answer] { Give(answer); });
    m_pAnswers->layout()->addWidget(pButton);
    return pButton;
}

void OriginQuestion::Give(OriginAnswer answer)
{
    m_patience.stop();
    hide();
    Q_EMIT answered(answer);
}

void OriginQuestion::reject()
{
    if (m_pAnswers->isEnabled())
        Give(OriginAnswer::NotNow);
}

void OriginQuestion::TurnBlind()
{
    m_pAnswers->setEnabled(false);
    m_pAnswers->setAttribute(Qt::WA_TransparentForMouseEvents); // their clicks become the window's
    if (m_bExposed)
        m_blindness.start();
}

void OriginQuestion::TurnSeeing()
{
    m_pAnswers->setEnabled(true);
    m_pAnswers->setAttribute(Qt::WA_TransparentForMouseEvents, false);
    m_pNotNow->setFocus();
}

void OriginQuestion::showEvent(QShowEvent *pEvent)
{
    QDialog::showEvent(pEvent);
    windowHandle()->installEventFilter(this);
    m_patience.start();
}

bool OriginQuestion::eventFilter(QObject *pWatched, QEvent *pEvent)
{
    if (pEvent->type() == QEvent::Expose && windowHandle()->isExposed() != m_bExposed) {
        m_bExposed = windowHandle()->isExposed();
        TurnBlind();
    }
    return QDialog::eventFilter(pWatched, pEvent);
}

bool OriginQuestion::event(QEvent *pEvent)
{
    const bool bStrayInput = IsInput(pEvent->type()) && !m_pAnswers->isEnabled();
    if (bStrayInput || pEvent->type() == QEvent::WindowActivate)
        TurnBlind();
    return bStrayInput || QDialog::event(pEvent);
}
