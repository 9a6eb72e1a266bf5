#pragma once

#include <QApplication>
#include <functional>
#include <vector>

class QAccessibleEvent;
class QKeyEvent;
class QWindow;

namespace bmr::kit {

class Guards;

/// The application object of the program. It sees each event before anybody else in the process: it counts
/// the user's activity, and keeps the typing of guarded dialogs from the desktop's accessibility bus, on
/// which any program of the user can listen.
class GuardedApplication final : public QApplication {
    Q_OBJECT

  public:
    GuardedApplication(int& argc, char** argv);
    ~GuardedApplication() override;

    /// Called for each mouse, keyboard, touch or pen event of this program's windows; must be cheap.
    void SetOnActivity(std::function<void()> onActivity) { onActivity_ = std::move(onActivity); }

    /// What dialogs attach themselves to; null while the program has none.
    void SetGuards(Guards* guards) { guards_ = guards; }
    Guards* guards() const { return guards_; }

    /// Shows each key of the system to `takes` before anybody else, popups included; true takes it out.
    void AddKeyFilter(const QObject& owner, std::function<bool(const QKeyEvent&)> takes);
    void RemoveKeyFilter(const QObject& owner);

    bool notify(QObject* receiver, QEvent* event) override;

    /// Keys typed into `window` are handed to the field that has the focus by ourselves.
    static void SetGuarded(QWindow& window);
    static bool IsGuarded(const QWindow& window);

  private:
    std::function<void()> onActivity_;
    Guards* guards_ = nullptr;
    struct KeyFilter {
        const QObject* owner;
        std::function<bool(const QKeyEvent&)> takes;
    };
    std::vector<KeyFilter> keyFilters_;
};

/// True for events that a hand has caused.
bool IsActivity(QEvent::Type type);

/// True for an announcement to screen readers that would tell what stands in a masked field.
bool TellsMaskedText(const QAccessibleEvent& event);

}  // namespace bmr::kit
