#include "kit/frmInputbox.h"

#include <QDialogButtonBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include "kit/fieldmenu.h"
#include "kit/formparts.h"
#include "kit/guards.h"
#include "kit/overparent.h"
#include "kit/theme.h"

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
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    QPushButton* cmdOK = buttons->button(QDialogButtonBox::Ok);
    cmdOK->setObjectName("cmdOK");
    buttons->button(QDialogButtonBox::Cancel)->setObjectName("cmdEsc");
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    const auto judge = [this, cmdOK] { cmdOK->setEnabled(!txtInput->text().trimmed().isEmpty()); };
    connect(txtInput, &QLineEdit::textChanged, cmdOK, judge);
    judge();

    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(Space::Margin, Space::Margin, Space::Margin, Space::Margin);
    column->setSpacing(Space::Row);
    column->addWidget(lblPrompt);
    column->addWidget(txtInput);
    column->addSpacing(Space::Tight);
    column->addWidget(buttons);
    GiveLetters(*this);
    KeepOverParent(*this);
    GuardDialog(*this);
}

QString frmInputbox::Text() const {
    return txtInput->text();
}

}  // namespace bmr::kit
