#include "app/frmMenuDB.h"

#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include "app/choicebutton.h"
#include "kit/icons.h"
#include "kit/overparent.h"
#include "kit/theme.h"

namespace bmr::app {

frmMenuDB::frmMenuDB(Step newDatabase, Step oldDatabase, bool hadOne, QWidget* parent) : QDialog(parent) {
    setObjectName("frmMenuDB");
    setWindowTitle("Brindlemere");
    auto* heading = new QLabel(tr("Which database?"), this);
    MakeHeading(heading);
    auto* words = new QLabel(tr("Everything is kept in one encrypted file."), this);
    words->setForegroundRole(QPalette::PlaceholderText);

    auto* cmdNewDB = new ChoiceButton(kit::Icon("document-new"), tr("&New database…"),
                                      tr("Make an empty file behind a passphrase of your choice."), this);
    cmdNewDB->setObjectName("cmdNewDB");
    connect(cmdNewDB, &QPushButton::clicked, this, [this, newDatabase] { Try(newDatabase); });
    auto* cmdOldDB = new ChoiceButton(kit::Icon("document-open"), tr("&Open database…"),
                                      tr("Use a file that you have already."), this);
    cmdOldDB->setObjectName("cmdOldDB");
    connect(cmdOldDB, &QPushButton::clicked, this, [this, oldDatabase] { Try(oldDatabase); });
    auto* cmdCancel = new ChoiceButton(kit::Icon("application-exit"), tr("&Quit"),
                                       tr("Leave the program. Nothing is changed."), this);
    cmdCancel->setObjectName("cmdCancel");
    connect(cmdCancel, &QPushButton::clicked, this, &QDialog::reject);

    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(kit::Space::Group, kit::Space::Group, kit::Space::Group, kit::Space::Group);
    column->setSpacing(kit::Space::Row);
    column->addWidget(heading);
    column->addWidget(words);
    column->addSpacing(kit::Space::Tight);
    for (ChoiceButton* button : {cmdNewDB, cmdOldDB, cmdCancel})
        column->addWidget(button);
    column->setSizeConstraint(QLayout::SetFixedSize);
    ChoiceButton* likely = hadOne ? cmdOldDB : cmdNewDB;
    likely->setDefault(true);
    likely->setFocus();
    kit::KeepOverParent(*this);
}

void frmMenuDB::Try(const Step& step) {
    if (step()) accept();
}

}  // namespace bmr::app
