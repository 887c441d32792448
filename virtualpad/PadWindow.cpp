#include "virtualpad/PadWindow.h"

#include "virtualpad/PadKey.h"
#include "virtualpad/PadSurface.h"
#include "virtualpad/PadTexts.h"
#include "virtualpad/QtCompat.h"

#include <QCloseEvent>
#include <QGuiApplication>
#include <QPainter>
#include <QPainterPath>
#include <QScreen>

#include <algorithm>

using namespace sdk;

namespace virtualpad {

namespace {

const QColor kBodyTop(0x3b, 0x41, 0x47);
const QColor kBodyBottom(0x29, 0x2d, 0x32);
const QColor kBezel(0x12, 0x14, 0x16);
const QColor kLabel(0xc6, 0xcc, 0xd2);
const QColor kCancel(0xc2, 0x4b, 0x46);
const QColor kConfirm(0x2f, 0x8f, 0x5b);
const QColor kLampReady(0x6c, 0xb8, 0xf0);
const QColor kLampOff(0x5c, 0x63, 0x6a);

constexpr int kMargin = 26;
constexpr int kHeader = 46;
constexpr int kFooter = 80;
constexpr int kBezelWidth = 4;
constexpr int kNarrowestInside = 330;
constexpr int kKeyGap = 20;

struct Status {
    PadText text;
    QColor lamp;
};

Status statusOf(const PadView &view)
{
    switch (view.key) {
    case SIGNPAD_ENTER_BUTTON:
        return {PadText::Confirmed, shaded(kConfirm, 130)};
    case SIGNPAD_CANCEL_BUTTON:
        return {PadText::Cancelled, shaded(kCancel, 120)};
    case SIGNPAD_NO_BUTTON:
        break;
    }
    return view.lcdOn ? Status{PadText::Ready, kLampReady} : Status{PadText::LcdOff, kLampOff};
}

/// A small pad with a stroke on it.
QIcon padIcon()
{
    QPixmap picture(64, 64);
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(kBodyBottom);
    painter.drawRoundedRect(2, 8, 60, 48, 7, 7);
    painter.setBrush(Qt::white);
    painter.drawRoundedRect(8, 14, 48, 30, 2, 2);
    QPainterPath stroke(QPointF(13, 34));
    stroke.cubicTo(24, 4, 27, 52, 35, 30);
    stroke.cubicTo(40, 18, 40, 46, 51, 26);
    painter.strokePath(stroke, QPen(kBodyBottom, 4, Qt::SolidLine, Qt::RoundCap));
    painter.setPen(QPen(kConfirm, 4, Qt::SolidLine, Qt::RoundCap));
    painter.drawLine(24, 50, 40, 50);
    return QIcon(picture);
}

/// Window pixels to the pad pixel: one, or less where the pad is larger than the screen.
qreal scaleFor(const QSize &padSize)
{
    const QScreen *const pScreen = QGuiApplication::primaryScreen();
    if (!pScreen)
        return 1.0;
    constexpr int kRoomForTheFrame = 60;
    const QSize room = pScreen->availableGeometry().size() - QSize(2 * kMargin, kHeader + kFooter + kRoomForTheFrame);
    return qBound(0.05, std::min(room.width() / qreal(padSize.width()), room.height() / qreal(padSize.height())), 1.0);
}

} // namespace

PadWindow::PadWindow()
    : QWidget(nullptr, Qt::Window | Qt::WindowStaysOnTopHint), m_pSurface(new PadSurface(this)),
      m_pCancel(new PadKey(kCancel, {QLineF(0.1, 0.1, 0.9, 0.9), QLineF(0.9, 0.1, 0.1, 0.9)}, this)),
      m_pConfirm(new PadKey(kConfirm, {QLineF(0.0, 0.55, 0.35, 0.9), QLineF(0.35, 0.9, 1.0, 0.15)}, this))
{
    // The program lives on without this window, and the page keeps the keyboard when the pad comes up.
    setAttribute(Qt::WA_QuitOnClose, false);
    setAttribute(Qt::WA_ShowWithoutActivating);
    setWindowIcon(padIcon());
    // The screen has the focus first: a stray space bar presses no key.
    m_pSurface->setFocusPolicy(Qt::ClickFocus);
    m_pSurface->setFocus();
    m_pCancel->setText(padText(PadText::Cancel));
    m_pConfirm->setText(padText(PadText::Confirm));
    m_pCancel->setShortcut(Qt::Key_Escape);
    m_pConfirm->setShortcut(Qt::Key_Return);
    connect(m_pCancel, &PadKey::clicked, this, [this] { press(SIGNPAD_CANCEL_BUTTON); });
    connect(m_pConfirm, &PadKey::clicked, this, [this] { press(SIGNPAD_ENTER_BUTTON); });
}

void PadWindow::showPad(const PadView &view)
{
    m_view = view;
    setWindowTitle(padText(PadText::Title).arg(QString::fromLatin1(view.model.name)));
    arrange(view.drawing.padSize);
    showKey(view.key);
}

void PadWindow::arrange(const QSize &padSize)
{
    m_pSurface->showPad(m_view, scaleFor(padSize));
    const int inside = std::max(m_pSurface->width(), kNarrowestInside);
    setFixedSize(inside + 2 * kMargin, kHeader + m_pSurface->height() + kFooter);
    m_pSurface->move((width() - m_pSurface->width()) / 2, kHeader);
    const QSize key = m_pCancel->sizeHint();
    const int keyTop = height() - (kFooter + key.height()) / 2;
    m_pCancel->setGeometry(QRect(QPoint(width() / 2 - kKeyGap / 2 - key.width(), keyTop), key));
    m_pConfirm->setGeometry(QRect(QPoint(width() / 2 + kKeyGap / 2, keyTop), key));
}

void PadWindow::press(KeyEvent key)
{
    PadHand(m_view.session).pressKey(key);
    showKey(key);
}

void PadWindow::showKey(KeyEvent key)
{
    m_view.key = key;
    m_pCancel->setChecked(key == SIGNPAD_CANCEL_BUTTON);
    m_pConfirm->setChecked(key == SIGNPAD_ENTER_BUTTON);
    update();
}

void PadWindow::closeEvent(QCloseEvent *pEvent)
{
    PadHand(m_view.session).unplug();
    pEvent->accept();
    Q_EMIT closed();
}

void PadWindow::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    QLinearGradient body(0, 0, 0, height());
    body.setColorAt(0, kBodyTop);
    body.setColorAt(1, kBodyBottom);
    painter.fillRect(rect(), body);
    painter.setPen(Qt::NoPen);
    painter.setBrush(kBezel);
    painter.drawRoundedRect(m_pSurface->geometry().adjusted(-kBezelWidth, -kBezelWidth, kBezelWidth, kBezelWidth), 5,
                            5);

    QFont labelFont = font();
    labelFont.setPixelSize(13);
    labelFont.setLetterSpacing(QFont::AbsoluteSpacing, 1.5);
    painter.setFont(labelFont);
    painter.setPen(kLabel);
    const QRect header(kMargin, 0, width() - 2 * kMargin, kHeader - kBezelWidth);
    painter.drawText(header, Qt::AlignLeft | Qt::AlignVCenter, QString::fromLatin1(m_view.model.name).toUpper());

    const Status status = statusOf(m_view);
    labelFont.setLetterSpacing(QFont::AbsoluteSpacing, 0);
    painter.setFont(labelFont);
    QRect text;
    painter.drawText(header, Qt::AlignRight | Qt::AlignVCenter, padText(status.text), &text);
    constexpr qreal kLampRadius = 4.0;
    painter.setPen(Qt::NoPen);
    painter.setBrush(status.lamp);
    painter.drawEllipse(QPointF(text.left() - 12, header.center().y() + 0.5), kLampRadius, kLampRadius);
}

} // namespace virtualpad
