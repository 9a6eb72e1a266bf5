#include "kit/frmInputbox.h"

#include <QDialogButtonBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include "kit/fieldmenu.h"
#include "kit/guards.h"
#include "kit/theme.h"
#include "kit/words.h"

namespace bmr::kit {

frmInputbox::frmInputbox(const QString& title, const QString& prompt, const QString& initial, QWidget* parent)
    : QDialog(parent) {
    setObjectName("frmInputbox");
    setWindowTitle(title);

    auto* lblPrompt = new QLabel(prompt.isEmpty() ? title : prompt);
    lblPrompt->setObjectName("lblPrompt");
    lblPrompt->setWordWrap(true);
    txtInput = new QLineEdit(initial);
    txtInput->setObjectName("txtInput");
    txtInput->setMinimumWidth(fontMetrics().averageCharWidth() * 44);
    txtInput->selectAll();
    GiveFieldMenu(*txtInput);
    lblPrompt->setBuddy(txtInput);
    lblError = new QLabel;
    lblError->setObjectName("lblError");
    lblError->setWordWrap(true);
    QPalette red = lblError->palette();
    red.setColor(QPalette::WindowText, InkOf(Ink::Alarm, red));
    lblError->setPalette(red);

    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    cmdOK = buttons->button(QDialogButtonBox::Ok);
    cmdOK->setObjectName("cmdOK");
    buttons->button(QDialogButtonBox::Cancel)->setObjectName("cmdEsc");
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(txtInput, &QLineEdit::textChanged, this, &frmInputbox::Judge);

    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(Space::Margin, Space::Margin, Space::Margin, Space::Margin);
    column->setSpacing(Space::Row);
    column->addWidget(lblPrompt);
    column->addWidget(txtInput);
    column->addWidget(lblError);
    column->addSpacing(Space::Tight);
    column->addWidget(buttons);
    Judge();
    GuardDialog(*this);
}

QString frmInputbox::Text() const {
    return txtInput->text();
}

void frmInputbox::Judge() {
    const QString refusal = RefusalOf(txtInput->text());
    lblError->setText(refusal);
    lblError->setVisible(!refusal.isEmpty());
    cmdOK->setEnabled(refusal.isEmpty() && !txtInput->text().trimmed().isEmpty());
}

}  // namespace bmr::kit
