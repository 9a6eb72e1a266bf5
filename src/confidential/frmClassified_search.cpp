#include <QMenu>
#include <QScrollArea>
#include <QStackedWidget>
#include <utility>

#include "confidential/foundmodel.h"
#include "confidential/frmClassified.h"
#include "kit/recordlistview.h"

// The search through all kinds, and the question for one.
namespace bmr::confidential {

void frmClassified::SetSearch(const QString& text) {
    const QString wanted = text.trimmed();
    if (wanted.isEmpty()) {
        if (searching_) LeaveSearch();
        return;
    }
    searching_ = true;
    lists_->setCurrentWidget(found_);
    ShowRowActions();
    found_->SetSearch(wanted);
    if (!std::exchange(foundRead_, true)) found_->Rebuild(kit::RecordListView::kNoKey);
    if (ShownList()->SelectedRow() < 0) ShownList()->SelectFirst();
    AimFocus();
}

void frmClassified::LeaveSearch() {
    const std::int32_t key = ShownList()->SelectedKey();
    const std::int32_t kind = key == kit::RecordListView::kNoKey ? 0 : record_.kind;
    CloseFound();
    if (ConfidentialKindFields(kind))
        PressKind(kind, key);
    else if (currentKind != 0)
        PressKind(currentKind, ListSelect->SelectedKey());
    else
        HidePad();
}

void frmClassified::CloseFound() {
    searching_ = false;
    lists_->setCurrentWidget(pane_);
    ShowRowActions();
    found_->ClearSearch();
    foundModel_->Clear();
    AimFocus();
    emit SearchEnded();
}

void frmClassified::ShowRowActions() {
    for (QAction* action : pane_->RowActions())
        action->setVisible(!searching_);
    for (QAction* action : found_->RowActions())
        action->setVisible(searching_);
}

void frmClassified::mnuConfidentialAdd_Click() {
    if (round_.Open()) return;
    if (searching_) LeaveSearch();
    if (currentKind != 0 || AskKind()) cmdAdd_Click();
}

bool frmClassified::AskKind() {
    QMenu menu(this);
    menu.setObjectName("kindsMenu");
    std::string_view heading;
    for (const Kind& kind : ConfidentialKinds()) {
        const auto words = [](std::string_view text) {
            return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size())).trimmed();
        };
        if (kind.group != heading) menu.addSection(words(heading = kind.group));
        menu.addAction(words(kind.caption))->setData(kind.number);
    }
    menu.setActiveAction(menu.actions().at(1));  // below the first heading
    const QAction* chosen = menu.exec(lists_->mapToGlobal(QPoint(0, 0)));
    if (!chosen || session_.ending || !session_.DatabaseOpen) return false;
    cat_Click(chosen->data().toInt());
    return true;
}

}  // namespace bmr::confidential
