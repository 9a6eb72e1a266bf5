#include "app/helpwindow.h"

#include <QAction>
#include <QFile>
#include <QMessageBox>
#include <QTextBrowser>
#include <QToolBar>
#include <QVBoxLayout>

#include "kit/formparts.h"
#include "kit/icons.h"

// Outside every namespace, as the macro asks.
static void LoadHelpPages() {
    Q_INIT_RESOURCE(help);
}

namespace bmr::app {

namespace {

constexpr const char* kFirstPage = ":/help/index.md";

}  // namespace

bool HelpWindow::Available() {
    LoadHelpPages();
    return QFile::exists(kFirstPage);
}

HelpWindow::HelpWindow(QWidget* parent) : QWidget(parent, Qt::Window) {
    setObjectName("frmHelp");
    setWindowTitle(tr("User Guide — Brindlemere"));
    setAttribute(Qt::WA_DeleteOnClose);
    browser_ = new QTextBrowser(this);
    browser_->setFrameShape(QFrame::NoFrame);
    browser_->document()->setDocumentMargin(20);
    browser_->setAccessibleName(tr("User guide"));

    auto* bar = new QToolBar(this);
    bar->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    bar->setIconSize({16, 16});
    QAction* back = bar->addAction(kit::Icon("go-previous"), tr("Back"));
    back->setShortcut(QKeySequence::Back);
    back->setEnabled(false);
    QAction* first = bar->addAction(kit::Icon("go-home"), tr("First page"));
    auto* close = new QAction(this);
    close->setShortcut(Qt::Key_Escape);
    addAction(close);
    connect(back, &QAction::triggered, browser_, &QTextBrowser::backward);
    connect(first, &QAction::triggered, browser_, &QTextBrowser::home);
    connect(browser_, &QTextBrowser::backwardAvailable, back, &QAction::setEnabled);
    connect(close, &QAction::triggered, this, &QWidget::close);

    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addWidget(bar);
    column->addWidget(browser_);
    LoadHelpPages();
    browser_->setSource(QUrl("qrc:/help/index.md"));
    resize(680, 640);
    browser_->setFocus();
}

void HelpWindow::Open(const QString& page) {
    const QString path = "/help/" + page + ".md";
    browser_->setSource(QUrl("qrc:" + (QFile::exists(":" + path) ? path : QString("/help/index.md"))));
}

void ShowAbout(QWidget* parent, const QString& more) {
    QMessageBox box(parent);
    box.setObjectName("frmAbout");
    box.setWindowTitle(QMessageBox::tr("About Brindlemere"));
    box.setIconPixmap(kit::ProgramIcon().pixmap(QSize(64, 64), box.devicePixelRatioF()));
    box.setText(QMessageBox::tr("<b>Brindlemere %1</b>").arg(BMR_VERSION));
    box.setInformativeText(
        QMessageBox::tr("A personal information manager whose data lives in one encrypted file.\n\n"
                        "It works offline and keeps nothing elsewhere."));
    if (!more.isEmpty()) box.setInformativeText(box.informativeText() + "\n\n" + more);
    box.setStandardButtons(QMessageBox::Ok);
    kit::FinishBox(box);
    box.exec();
}

}  // namespace bmr::app
