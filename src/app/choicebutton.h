#pragma once

#include <QPushButton>

namespace bmr::app {

/// A wide button that tells in one sentence what it leads to.
class ChoiceButton final : public QPushButton {
    Q_OBJECT

  public:
    /// `title` may hold a mnemonic.
    ChoiceButton(const QIcon& icon, const QString& title, const QString& sentence, QWidget* parent = nullptr);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

  protected:
    void paintEvent(QPaintEvent*) override;

  private:
    QFont TitleFont() const;
    QString sentence_;
};

/// `widget`'s text in the size and weight of a heading.
void MakeHeading(QWidget* widget);

}  // namespace bmr::app
