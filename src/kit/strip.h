#pragma once

#include <QFrame>
#include <cstdint>

class QAbstractButton;
class QHBoxLayout;
class QLabel;

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
    void Clear();

  signals:
    void Acted();

  protected:
    void changeEvent(QEvent* event) override;

  private:
    void Colour();

    Kind kind_ = Kind::Note;
    QLabel* icon_;
    QLabel* text_;
    QAbstractButton* action_;
};

}  // namespace bmr::kit
