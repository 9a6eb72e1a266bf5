#include "app/frmSplash.h"

#include <QDir>
#include <QFileInfo>
#include <QGridLayout>
#include <QLabel>
#include <QScrollArea>
#include <QVBoxLayout>

#include "app/choicebutton.h"
#include "app/sectioncolumn.h"
#include "kit/icons.h"
#include "kit/theme.h"
#include "store/sections.h"

namespace bmr::app {

QString SectionPurpose(std::uint8_t code) {
    const auto* facts = store::FactsOf(code);
    return facts ? QString::fromUtf8(facts->purpose.data(), static_cast<qsizetype>(facts->purpose.size()))
                 : QString();
}

frmSplash::frmSplash(QWidget* parent) : QWidget(parent) {
    setObjectName("frmSplash");
    auto* picture = new QLabel(this);
    picture->setPixmap(kit::ProgramIcon().pixmap(QSize(72, 72), devicePixelRatioF()));
    lblHeading = new QLabel(this);
    lblHeading->setObjectName("lblHeading");
    lblHeading->setTextFormat(Qt::PlainText);
    MakeHeading(lblHeading);
    lblFile = new QLabel(this);
    lblFile->setObjectName("lblFile");
    lblFile->setTextFormat(Qt::PlainText);
    lblFile->setWordWrap(true);
    lblFile->setAlignment(Qt::AlignHCenter | Qt::AlignTop);
    lblFile->setForegroundRole(QPalette::PlaceholderText);
    choices_ = new QGridLayout;
    choices_->setSpacing(kit::Space::Row);

    auto* panel = new QWidget(this);
    auto* column = new QVBoxLayout(panel);
    column->addStrut(480);
    column->setSpacing(kit::Space::Row);
    column->addWidget(picture, 0, Qt::AlignHCenter);
    column->addWidget(lblHeading, 0, Qt::AlignHCenter);
    column->addWidget(lblFile);
    column->addSpacing(kit::Space::Row);
    column->addLayout(choices_);

    // Large letters and nine sections may want more room than a small screen has.
    auto* area = new QScrollArea(this);
    area->setFrameShape(QFrame::NoFrame);
    area->setWidgetResizable(true);
    area->setFocusPolicy(Qt::NoFocus);
    auto* content = new QWidget;
    auto* middle = new QGridLayout(content);
    middle->setRowStretch(0, 2);  // a little above the middle is where the eye looks first
    middle->addWidget(panel, 1, 0, Qt::AlignHCenter);
    middle->setRowStretch(2, 3);
    area->setWidget(content);
    auto* outer = new QVBoxLayout(this);
    outer->setContentsMargins(0, 0, 0, 0);
    outer->addWidget(area);
    ShowNoDatabase();
}

void frmSplash::Clear() {
    while (QLayoutItem* item = choices_->takeAt(0)) {
        // It may be the very button whose press brought us here.
        QWidget* old = item->widget();
        old->setObjectName(QString());
        old->hide();
        old->deleteLater();
        delete item;
    }
}

ChoiceButton* frmSplash::Add(const QString& name, const QIcon& icon, const QString& title,
                             const QString& sentence) {
    auto* button = new ChoiceButton(icon, title, sentence, this);
    button->setObjectName(name);
    choices_->addWidget(button, choices_->count(), 0);
    button->show();  // at once: a button that is not yet to be seen cannot take the focus
    return button;
}

void frmSplash::FocusFirst() {
    if (QLayoutItem* first = choices_->itemAt(0)) first->widget()->setFocus(Qt::OtherFocusReason);
}

void frmSplash::ShowOpening() {
    Clear();
    lblHeading->setText("Brindlemere");
    lblFile->clear();
}

void frmSplash::ShowNoDatabase(const QString& locked) {
    Clear();
    lblHeading->setText(tr("No database open"));
    lblFile->setText(tr("Everything is kept in one encrypted file."));
    if (!locked.isEmpty()) {
        // An ampersand in the file's name is no mnemonic.
        const QString name = QFileInfo(locked).completeBaseName().replace("&", "&&");
        connect(Add("cmdSplashUnlock", kit::Icon("object-unlocked"), tr("&Unlock %1…").arg(name),
                    tr("Its passphrase is asked for.")),
                &QPushButton::clicked, this, &frmSplash::UnlockChosen);
    }
    connect(Add("cmdSplashNew", kit::Icon("document-new"), tr("&New database…"),
                tr("An empty file behind a passphrase of your choice.")),
            &QPushButton::clicked, this, &frmSplash::NewChosen);
    connect(Add("cmdSplashOpen", kit::Icon("document-open"), tr("&Open database…"),
                tr("A file that you have already.")),
            &QPushButton::clicked, this, &frmSplash::OpenChosen);
}

void frmSplash::ShowDatabase(const QString& path, const std::vector<std::uint8_t>& sections) {
    Clear();
    const QFileInfo file(path);
    lblHeading->setText(file.completeBaseName());
    lblFile->setText(QDir::toNativeSeparators(file.absolutePath()));
    for (const std::uint8_t code : sections) {
        auto* button = Add(QString("cmdSplash%1").arg(code), kit::SectionIcon(code), SectionName(code),
                           SectionPurpose(code));
        connect(button, &QPushButton::clicked, this, [this, code] { emit SectionChosen(code); });
    }
    Arrange();
}

void frmSplash::Arrange() {
    QList<QWidget*> buttons;
    int widest = 0;
    while (QLayoutItem* item = choices_->takeAt(0)) {
        buttons << item->widget();
        widest = qMax(widest, item->widget()->sizeHint().width());
        delete item;
    }
    const bool room = 2 * widest + kit::Space::Row <= width() - 2 * kit::Space::Group;
    const qsizetype columns = buttons.size() > 4 && room ? 2 : 1;
    for (qsizetype at = 0; at < buttons.size(); ++at)
        choices_->addWidget(buttons[at], static_cast<int>(at / columns), static_cast<int>(at % columns));
}

void frmSplash::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    Arrange();
}

}  // namespace bmr::app
