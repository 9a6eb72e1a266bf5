#pragma once

#include <QDialog>

#include "confidential/generator.h"

class QCheckBox;
class QLabel;
class QLineEdit;
class QRadioButton;
class QSpinBox;

namespace bmr::confidential {

/// Makes a password: characters of chosen classes, or words. Shows what it would give and how strong that is.
class frmGenerate final : public QDialog {
    Q_OBJECT

  public:
    explicit frmGenerate(RandomSource& random, QWidget* parent = nullptr);

    QString Password() const;

  private:
    PasswordRecipe Recipe() const;
    void Draw();

    RandomSource& random_;
    QRadioButton* optCharacters;
    QRadioButton* optWords;
    QSpinBox* numLength;
    QSpinBox* numWords;
    QCheckBox* chkLower;
    QCheckBox* chkUpper;
    QCheckBox* chkDigits;
    QCheckBox* chkPunctuation;
    QCheckBox* chkReadable;
    QLineEdit* txtPassword;
    QLabel* lblEntropy;
};

}  // namespace bmr::confidential
