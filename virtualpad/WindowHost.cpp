#include "virtualpad/WindowHost.h"

#include "virtualpad/Environment.h"
#include "virtualpad/PadWindow.h"

#include <QGuiApplication>
#include <QThread>

#include <mutex>

namespace virtualpad {

namespace {

/// Guards the host against the application's end while another thread asks it for an update. Never destroyed: calls
/// may still come while the process ends.
struct HostSlot {
    std::mutex mutex;
    WindowHost *pHost = nullptr;
};

HostSlot &hostSlot()
{
    static HostSlot *const pSlot = new HostSlot;
    return *pSlot;
}

void deleteHost()
{
    HostSlot &slot = hostSlot();
    WindowHost *pHost = nullptr;
    {
        const std::lock_guard<std::mutex> lock(slot.mutex);
        std::swap(pHost, slot.pHost);
    }
    delete pHost;
}

bool hasWidgets()
{
    const QCoreApplication *const pApplication = QCoreApplication::instance();
    return pApplication != nullptr && pApplication->inherits("QApplication") && !QCoreApplication::closingDown();
}

bool isOnDesktop()
{
    const QString platform = QGuiApplication::platformName();
    return platform != QLatin1String("offscreen") && platform != QLatin1String("minimal");
}

} // namespace

bool windowIsWanted()
{
    switch (environmentWindow()) {
    case WindowSetting::Off:
        return false;
    case WindowSetting::On:
        if (!hasWidgets())
            complain(QStringLiteral("this program shows no windows; the pad writes by itself"));
        return hasWidgets();
    case WindowSetting::Automatic:
        break;
    }
    return hasWidgets() && isOnDesktop() && !environmentNamesInk();
}

void updateWindow()
{
    HostSlot &slot = hostSlot();
    const std::lock_guard<std::mutex> lock(slot.mutex);
    if (!slot.pHost) {
        if (!hasWidgets() || !currentPadView())
            return;
        slot.pHost = new WindowHost;
        slot.pHost->moveToThread(QCoreApplication::instance()->thread());
    }
    slot.pHost->requestUpdate();
}

WindowHost::WindowHost() : m_dropTimer(this)
{
    constexpr int kPatienceMs = 250;
    // A page that initialises its pad again gets it a moment after the old one went: the window stays for it.
    m_dropTimer.setInterval(kPatienceMs);
    m_dropTimer.setSingleShot(true);
    connect(&m_dropTimer, &QTimer::timeout, this, &WindowHost::dropWindow);
}

WindowHost::~WindowHost() = default;

void WindowHost::requestUpdate()
{
    if (!m_updateRequested.exchange(true))
        QMetaObject::invokeMethod(this, "update", Qt::QueuedConnection);
}

void WindowHost::update()
{
    m_updateRequested = false;
    if (!m_endsWithApplication) {
        m_endsWithApplication = true;
        // A window must be gone before the application is.
        qAddPostRoutine(deleteHost);
    }
    const std::optional<PadView> view = currentPadView();
    if (!view) {
        if (m_pWindow)
            m_dropTimer.start();
        return;
    }
    m_dropTimer.stop();
    if (!m_pWindow) {
        m_pWindow.reset(new PadWindow);
        // Closing leaves no pad: the next update drops the window.
        connect(m_pWindow.get(), &PadWindow::closed, this, &WindowHost::requestUpdate);
    }
    m_pWindow->showPad(*view);
    m_pWindow->show();
}

void WindowHost::dropWindow()
{
    m_pWindow.reset();
}

} // namespace virtualpad
