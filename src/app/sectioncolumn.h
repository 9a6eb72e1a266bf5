#pragma once

#include <QAbstractButton>
#include <QWidget>
#include <cstdint>
#include <functional>
#include <vector>

namespace bmr::app {

/// One row of the column: icon, name, a lock while the section wants its PIN.
class SectionButton final : public QAbstractButton {
    Q_OBJECT

  public:
    SectionButton(std::uint8_t code, const QString& name, QWidget* parent);

    std::uint8_t Code() const { return code_; }
    void SetLocked(bool locked);
    bool Locked() const { return locked_; }
    /// Folded rows show the icon alone.
    void SetFolded(bool folded);

    QSize sizeHint() const override;
    /// On a low screen the rows move together.
    QSize minimumSizeHint() const override {
        return {kIcon + 2 * kEdge, qMax(kIcon, fontMetrics().height()) + 4};
    }

    static constexpr int kIcon = 24;
    static constexpr int kEdge = 8;

  protected:
    void paintEvent(QPaintEvent*) override;
    void enterEvent(QEnterEvent*) override { update(); }
    void leaveEvent(QEvent*) override { update(); }

  private:
    std::uint8_t code_;
    bool locked_ = false;
    bool folded_ = false;
};

/// `optSection`: the buttons of the sections, one of them pressed or none, at the left edge of the main
/// window.
class SectionColumn final : public QWidget {
    Q_OBJECT

  public:
    explicit SectionColumn(QWidget* parent);

    /// A section that is not in the program stays in its place, greyed, and says so.
    void SetAvailable(std::uint8_t code, bool available);
    /// Presses the button of `code`; 0 presses none.
    void SetCurrent(std::uint8_t code);
    std::uint8_t Current() const { return current_; }
    void SetLocked(const std::function<bool(std::uint8_t)>& locked);
    /// No section can be chosen, as when no database is open.
    void SetOpenable(bool openable);
    /// What the person wants, for a wide window or a narrow one, whichever it is now.
    void SetFolded(bool folded);
    bool Folded() const { return folded_; }
    /// Folded in a wide window.
    bool FoldedWhenWide() const { return narrow_ ? otherwise_ : folded_; }
    /// In a narrow window the column is folded until the person unfolds it, and comes back in a wide one.
    void SetNarrow(bool narrow);

  signals:
    /// A button was pressed by the person. It shows as pressed only after SetCurrent.
    void Chosen(std::uint8_t code);
    void FoldChanged(bool folded);

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void paintEvent(QPaintEvent*) override;

  private:
    void Reenable();
    void UpdateWidth();
    void ChangeTabStop();

    std::vector<SectionButton*> buttons_;
    std::vector<bool> available_;
    class QToolButton* fold_ = nullptr;
    std::uint8_t current_ = 0;
    bool openable_ = false;
    bool folded_ = false;
    bool narrow_ = false;
    bool otherwise_ = true;  ///< folded when the window is not as it is now: narrow or wide
};

/// The section's name as the column and the menus show it.
QString SectionName(std::uint8_t code);

}  // namespace bmr::app
