#pragma once

#include <QDialog>
#include <QEventLoop>
#include <QKeyEvent>
#include <QLineEdit>
#include <QTimer>
#include <QVBoxLayout>
#include <functional>
#include <set>
#include <string>
#include <vector>

#include "kit/platform.h"

namespace bmr::test {

/// Lets the program live until `there` holds; false when it does not within the time. Unlike the test
/// library's own waiting it sleeps only as the event loop does, so that what happens in many small turns of
/// the loop takes the time that it takes in the program.
inline bool LiveUntil(const std::function<bool()>& there, int timeoutMs = 5000) {
    QEventLoop loop;
    QTimer look;
    bool held = there();
    QObject::connect(&look, &QTimer::timeout, &loop, [&] {
        held = there();
        if (held) loop.quit();
    });
    QTimer::singleShot(timeoutMs, &loop, &QEventLoop::quit);
    look.start(1);
    if (!held) loop.exec();
    return held;
}
inline void Live(int ms) {
    LiveUntil([] { return false; }, ms);
}

/// A keyboard of which the test says what is down and what the system does with each key.
class FakeKeyPort final : public kit::KeyPort {
  public:
    bool Usable() const override { return true; }
    bool InjectsIntoSystem() const override { return true; }
    bool Grab(QWindow*, bool on) override { return grabbed = on && grants; }
    unsigned ScanFor(int virtualKey) override {
        return missing.count(virtualKey) ? 0U : static_cast<unsigned>(virtualKey);
    }
    void Look() override { ++looks; }
    bool IsDown(unsigned scan) const override { return down.count(scan) > 0; }
    bool ShiftHeld() const override { return shiftHeld; }
    bool CommandHeld() const override { return commandAfter >= 0 && looks > commandAfter; }
    std::optional<bool> CapsLock() override { return false; }
    void Aim(QObject* box) override { box_ = box; }
    void Key(unsigned scan, bool isDown) override {
        EXPECT_TRUE(grabbed) << "a decoy without the grab could reach another window";
        sent.push_back({scan, isDown});
        if (!delivers || !box_) return;
        QCoreApplication::postEvent(
            box_, new QKeyEvent(isDown ? QEvent::KeyPress : QEvent::KeyRelease, static_cast<int>(scan),
                                Qt::NoModifier, scan, 0, 0, "d"));
    }
    void Flush() override { flushes.push_back(sent.size()); }
    bool Fence(QWindow*, std::function<void()> reached) override {
        if (fences)
            QMetaObject::invokeMethod(
                qApp, [reached] { reached(); }, Qt::QueuedConnection);
        return fences;
    }
    std::string Describe() const override { return "fake"; }

    struct Sent {
        unsigned scan;
        bool down;
    };
    std::vector<Sent> sent;
    std::vector<std::size_t> flushes;
    std::set<unsigned> down;
    std::set<int> missing;
    int looks = 0;
    int commandAfter = -1;  ///< a command key goes down after so many looks
    bool grabbed = false, grants = true, shiftHeld = false, delivers = true, fences = true;

  private:
    QObject* box_ = nullptr;
};

/// A dialog with the two boxes of a prompt.
struct GuardedDialog : QDialog {
    GuardedDialog() {
        auto* column = new QVBoxLayout(this);
        txtInput = new QLineEdit;
        column->addWidget(txtInput);
        txtBurst = new QLineEdit(this);
        txtBurst->setGeometry(0, 0, 1, 1);
        txtBurst->setEchoMode(QLineEdit::NoEcho);
        txtBurst->setEnabled(false);
        txtInput->setFocus();
    }
    QLineEdit* txtInput;
    QLineEdit* txtBurst;
};

}  // namespace bmr::test
