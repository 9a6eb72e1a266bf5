#pragma once

#include <QString>
#include <QWidget>

class QLabel;

namespace bmr::kit {

class EmptyState;

/// A lock and the word, for a record that is private. It shows, and nobody can press it.
class PrivateMark final : public QWidget {
    Q_OBJECT

  public:
    explicit PrivateMark(QWidget* parent = nullptr);

  protected:
    void changeEvent(QEvent* event) override;

  private:
    void Draw();

    QLabel* lock_;
};

/// The right half of a section's screen: the pad of the chosen record or, while that is hidden, a sentence
/// that says what to do.
class PadPane final : public QWidget {
    Q_OBJECT

  public:
    /// `whole` is the pad or what scrolls it.
    PadPane(QWidget* pad, QWidget* whole, const char* icon, const QString& sentence);
    /// Whether there is anything to choose; without it the sentence would send the person to an empty list.
    void SetChoice(bool any);

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    void ShowState();

    bool choice_ = true;
    QWidget* pad_;
    QWidget* whole_;
    EmptyState* hint_;
};

}  // namespace bmr::kit
