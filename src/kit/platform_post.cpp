#include <QCoreApplication>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QPointer>
#include <QWindow>

#include "kit/platform.h"

namespace bmr::kit {
namespace {

/// Calls a function from the event loop, behind all that was posted before.
class FenceEvent final : public QEvent {
  public:
    explicit FenceEvent(std::function<void()> reached)
        : QEvent(static_cast<Type>(registerEventType())), reached_(std::move(reached)) {}
    ~FenceEvent() override = default;
    void Reach() { reached_(); }

  private:
    std::function<void()> reached_;
};

class Fencepost final : public QObject {
  public:
    bool event(QEvent* event) override {
        auto* fence = dynamic_cast<FenceEvent*>(event);
        if (!fence) return QObject::event(event);
        fence->Reach();
        return true;
    }
};

/// Decoys for platforms that let no program write into the system's queue: they are posted to the box that
/// takes them, and reach those who listen inside this program only.
class PostKeyPort final : public KeyPort {
  public:
    bool Usable() const override { return true; }
    bool InjectsIntoSystem() const override { return false; }
    bool Grab(QWindow* window, bool on) override {
        // Of the platforms that end here only this one, when it lacks the means for decoys, can do it.
        return QGuiApplication::platformName() == "xcb" && window && window->setKeyboardGrabEnabled(on) && on;
    }
    unsigned ScanFor(int virtualKey) override { return static_cast<unsigned>(virtualKey); }
    void Look() override {}
    bool IsDown(unsigned) const override { return false; }
    bool ShiftHeld() const override { return false; }
    bool CommandHeld() const override { return false; }
    std::optional<bool> CapsLock() override { return std::nullopt; }
    void Aim(QObject* box) override { box_ = box; }
    void Key(unsigned scan, bool down) override;
    void Flush() override {}
    bool Fence(QWindow*, std::function<void()> reached) override {
        QCoreApplication::removePostedEvents(&fencepost_);
        QCoreApplication::postEvent(&fencepost_, new FenceEvent(std::move(reached)));
        return true;
    }
    std::string Describe() const override;

  private:
    QPointer<QObject> box_;
    Fencepost fencepost_;
    bool shift_ = false;
};

void PostKeyPort::Key(unsigned scan, bool down) {
    if (!box_) return;
    const bool isShift = scan == kShift;
    if (isShift) shift_ = down;
    const auto modifiers = shift_ ? Qt::ShiftModifier : Qt::NoModifier;
    QString text;
    if (!isShift && scan < 128) {
        const QChar typed(static_cast<char16_t>(scan));
        text = shift_ ? typed.toUpper() : typed.toLower();
    }
    QCoreApplication::postEvent(
        box_, new QKeyEvent(down ? QEvent::KeyPress : QEvent::KeyRelease,
                            isShift ? Qt::Key_Shift : static_cast<int>(scan), modifiers, scan, 0, 0, text));
}

std::string PostKeyPort::Describe() const {
    if (QGuiApplication::platformName().startsWith("wayland"))
        return "Wayland: the compositor shows keystrokes to no other window by itself, and lets no program "
               "take the "
               "keyboard or add keys to it. Decoys stay inside this program.";
    return "This platform lets no program take the keyboard or add keys to it. Decoys stay inside this "
           "program; other "
           "programs that listen to the keyboard are not hindered.";
}

}  // namespace

std::unique_ptr<KeyPort> MakePostKeyPort() {
    return std::make_unique<PostKeyPort>();
}

}  // namespace bmr::kit
