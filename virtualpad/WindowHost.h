// Brings the pad's window up and takes it away.
#pragma once

#include <QObject>
#include <QTimer>

#include <atomic>
#include <memory>

namespace virtualpad {

class PadWindow;

/// Whether a pad that is initialised now shows its window: the environment asks for it, or there is a desktop. Only a
/// program with widgets can show one.
bool windowIsWanted();

/// Makes the window agree with the shared pad before long, on the GUI thread; never waits for that thread, which may
/// be waiting for the caller's. Does nothing where no window was ever wanted. Any thread.
void updateWindow();

/// Owns the window on the GUI thread, from the first update to the end of the application.
class WindowHost : public QObject
{
    Q_OBJECT

public:
    WindowHost();
    ~WindowHost() override;

    /// Any thread.
    void requestUpdate();

private Q_SLOTS:
    void update();

private:
    void dropWindow();

    std::atomic<bool> m_updateRequested{false};
    bool m_endsWithApplication = false;
    std::unique_ptr<PadWindow> m_pWindow;
    QTimer m_dropTimer;
};

} // namespace virtualpad
