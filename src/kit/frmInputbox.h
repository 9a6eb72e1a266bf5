#pragma once

#include <QDialog>

class QLineEdit;

namespace bmr::kit {

/// One line of text behind a prompt. An empty line cannot be accepted.
class frmInputbox final : public QDialog {
    Q_OBJECT

  public:
    frmInputbox(const QString& title, const QString& prompt, const QString& initial,
                QWidget* parent = nullptr);

    QString Text() const;

  private:
    QLineEdit* txtInput;
};

}  // namespace bmr::kit
