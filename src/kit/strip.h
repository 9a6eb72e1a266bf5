#pragma once

#include <QFrame>
#include <QPointer>
#include <cstdint>

class QHBoxLayout;
class QLabel;
class QPushButton;

namespace bmr::kit {

/// A line over the content for what needs no answer: words, perhaps a link to act, a cross to close. Hidden
/// until it has something to say.
class Strip final : public QFrame {
    Q_OBJECT

  public:
    enum class Kind : std::uint8_t { Good, Note, Warning, Alarm };

    explicit Strip(QWidget* parent = nullptr);

    void Say(const QString& text, Kind kind = Kind::Note);
    /// With one thing to do about it; pressing it emits `Acted`.
    void Say(const QString& text, Kind kind, const QString& action);
    /// The focus, if it is in the line, goes back to where it came from.
    void Clear();
    /// True while the mouse or the focus is in it.
    bool InHand() const;

  signals:
    void Acted();
    /// The cross was pressed, and the line is gone.
    void Closed();

  protected:
    void changeEvent(QEvent* event) override;

  private:
    void Colour();

    Kind kind_ = Kind::Note;
    QLabel* icon_;
    QLabel* text_;
    QPushButton* action_;
    QPointer<QWidget> from_;  ///< had the focus before it came into the line
};

}  // namespace bmr::kit
