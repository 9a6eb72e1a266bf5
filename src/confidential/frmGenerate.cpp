#include "confidential/frmGenerate.h"

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QSpinBox>

#include "kit/fieldmenu.h"
#include "kit/formparts.h"
#include "kit/guards.h"
#include "kit/icons.h"
#include "kit/theme.h"

namespace bmr::confidential {

using kit::Space;

frmGenerate::frmGenerate(RandomSource& random, QWidget* parent) : QDialog(parent), random_(random) {
    setObjectName("frmGenerate");
    setWindowTitle(tr("Make a Password"));
    const auto option = [this](const char* name, const QString& text) {
        auto* button = new QRadioButton(text);
        button->setObjectName(name);
        connect(button, &QRadioButton::toggled, this, &frmGenerate::Draw);
        return button;
    };
    const auto box = [this](const char* name, const QString& text, bool on) {
        auto* check = new QCheckBox(text);
        check->setObjectName(name);
        check->setChecked(on);
        connect(check, &QCheckBox::toggled, this, &frmGenerate::Draw);
        return check;
    };
    const auto number = [this](const char* name, const QString& caption, int low, int high, int value) {
        auto* spin = new QSpinBox;
        spin->setObjectName(name);
        spin->setAccessibleName(caption);
        spin->setRange(low, high);
        spin->setValue(value);
        connect(spin, &QSpinBox::valueChanged, this, &frmGenerate::Draw);
        return spin;
    };
    txtPassword = new QLineEdit;
    txtPassword->setObjectName("txtPassword");
    txtPassword->setReadOnly(true);
    kit::GiveFieldMenu(*txtPassword);
    txtPassword->setAccessibleName(tr("Password"));
    kit::SetMonospaced(*txtPassword);
    lblEntropy = new QLabel;
    lblEntropy->setObjectName("lblEntropy");
    lblEntropy->setForegroundRole(QPalette::PlaceholderText);
    optCharacters = option("optCharacters", tr("C&haracters"));
    optWords = option("optWords", tr("&Words"));
    numLength = number("numLength", tr("Length"), 4, 128, 20);
    numWords = number("numWords", tr("Number of words"), 2, 20, 6);
    chkLower = box("chkLower", "a &b c", true);
    chkUpper = box("chkUpper", "A B &C", true);
    chkDigits = box("chkDigits", "&1 2 3", true);
    chkPunctuation = box("chkPunctuation", "&! ? #", true);
    chkReadable = box("chkReadable", tr("&Leave out what is easily mistaken (0 O 1 l I)"), false);
    auto* again = new QPushButton(kit::Icon("view-refresh"), tr("Make &another"));
    again->setObjectName("cmdAgain");
    connect(again, &QPushButton::clicked, this, &frmGenerate::Draw);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    buttons->button(QDialogButtonBox::Ok)->setText(tr("Use It"));
    buttons->button(QDialogButtonBox::Ok)->setObjectName("cmdOK");
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);

    auto* classes = new QHBoxLayout;
    classes->setSpacing(Space::Group);
    for (QCheckBox* check : {chkLower, chkUpper, chkDigits, chkPunctuation})
        classes->addWidget(check);
    classes->addStretch();
    auto* grid = new QGridLayout;
    grid->setHorizontalSpacing(Space::Row);
    grid->setVerticalSpacing(Space::Row);
    grid->addWidget(optCharacters, 0, 0);
    grid->addWidget(numLength, 0, 1);
    grid->addLayout(classes, 1, 1, 1, 2);
    grid->addWidget(chkReadable, 2, 1, 1, 2);
    grid->addWidget(optWords, 3, 0);
    grid->addWidget(numWords, 3, 1);
    grid->setColumnStretch(2, 1);
    auto* strength = new QHBoxLayout;
    strength->addWidget(lblEntropy, 1);
    strength->addWidget(again);
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(Space::Margin, Space::Margin, Space::Margin, Space::Margin);
    column->setSpacing(Space::Row);
    column->addWidget(txtPassword);
    column->addLayout(strength);
    column->addSpacing(Space::Row);
    column->addLayout(grid);
    column->addStretch();
    column->addWidget(buttons);
    kit::GiveLetters(*this);
    setMinimumWidth(fontMetrics().averageCharWidth() * 72);
    kit::GuardDialog(*this);
    optCharacters->setChecked(true);
}

QString frmGenerate::Password() const {
    return txtPassword->text();
}

PasswordRecipe frmGenerate::Recipe() const {
    PasswordRecipe recipe;
    recipe.length = numLength->value();
    recipe.lower = chkLower->isChecked();
    recipe.upper = chkUpper->isChecked();
    recipe.digits = chkDigits->isChecked();
    recipe.punctuation = chkPunctuation->isChecked();
    recipe.readable = chkReadable->isChecked();
    recipe.words = optWords->isChecked() ? numWords->value() : 0;
    return recipe;
}

void frmGenerate::Draw() {
    const bool words = optWords->isChecked();
    numWords->setEnabled(words);
    for (QWidget* widget : std::initializer_list<QWidget*>{numLength, chkLower, chkUpper, chkDigits,
                                                           chkPunctuation, chkReadable})
        widget->setEnabled(!words);
    const PasswordRecipe recipe = Recipe();
    const Secret password = GeneratePassword(recipe, random_);
    txtPassword->setText(
        QString::fromLatin1(password.view().data(), static_cast<qsizetype>(password.size())));
    txtPassword->setCursorPosition(0);
    lblEntropy->setText(password.empty()
                            ? tr("Choose at least one kind of character.")
                            : tr("%1 bits of entropy").arg(QLocale().toString(EntropyBits(recipe), 'f', 0)));
    if (auto* use = findChild<QPushButton*>("cmdOK")) use->setEnabled(!password.empty());
}

}  // namespace bmr::confidential
