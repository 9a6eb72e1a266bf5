#pragma once

#include <QDialog>

class QLabel;
class QLineEdit;
class QPushButton;

namespace bmr::kit {

/// One line of text behind a prompt. An empty line cannot be accepted, and neither can one with characters
/// that the file has no place for; the form says which.
class frmInputbox final : public QDialog {
    Q_OBJECT

  public:
    frmInputbox(const QString& title, const QString& prompt, const QString& initial,
                QWidget* parent = nullptr);

    QString Text() const;

  private:
    void Judge();

    QLineEdit* txtInput;
    QLabel* lblError;
    QPushButton* cmdOK;
};

}  // namespace bmr::kit
