#include <QComboBox>
#include <QLocale>
#include <QMenu>

#include "base/languageus.h"
#include "base/ports.h"
#include "kit/categorycombo.h"
#include "kit/categorydrop.h"
#include "kit/categoryfield.h"
#include "kit/failure.h"
#include "kit/formparts.h"
#include "kit/icons.h"
#include "kit/listpane.h"
#include "kit/recordlistmodel.h"
#include "kit/recordlistview.h"
#include "kit/steps.h"
#include "kit/stepstrip.h"
#include "kit/words.h"
#include "store/undo.h"

// What can be done with several rows of a section's list, and the line that says what was done.
namespace bmr::kit {

void ListPane::BuildRowActions() {
    const auto* facts = store::FactsOf(parts_.section);
    if (facts->move && parts_.categories) {
        auto* menu = new QMenu(tr("Mo&ve to Category"), this);
        menu->setObjectName("mnuRowsCategory");
        menu->setIcon(Icon("tag"));
        connect(menu, &QMenu::aboutToShow, this, [this, menu] { FillCategoryMenu(*menu); });
        rowActions_ << menu->menuAction();
        list_->setDragEnabled(true);
        connect(list_, &RecordListView::DragBegun, this, &ListPane::UnfoldCategories);
        connect(list_, &RecordListView::DragEnded, this, [this] {
            if (drop_) drop_->hide();
        });
    }
    if (!facts->hide) return;
    const auto hide = [this, facts](bool isPrivate) {
        ChangeSelected([&](store::Keys keys) { return facts->hide(session_, keys, isPrivate); });
    };
    auto* isPrivate = MakeAction(*this, {"mnuRowsPrivate", tr("Make P&rivate"), "object-locked"});
    connect(isPrivate, &QAction::triggered, this, [hide] { hide(true); });
    auto* isPublic = MakeAction(*this, {"mnuRowsPublic", tr("No &Longer Private"), "object-unlocked"});
    connect(isPublic, &QAction::triggered, this, [hide] { hide(false); });
    rowActions_ << isPrivate << isPublic;
}

void ListPane::FillCategoryMenu(QMenu& menu) {
    menu.clear();
    for (const store::CategoryEntry& entry : parts_.categories->Entries()) {
        const std::int32_t number = entry.number;
        if (number == store::Category::All || number == store::Category::Edit) continue;
        // An ampersand of the person's own is no mnemonic.
        const QString name = ToQString(TrimBlanks(entry.text)).replace("&", "&&");
        menu.addAction(CategoryIcon(number, palette()), name, this, [this, number] { MoveSelected(number); });
    }
}

void ListPane::UnfoldCategories() {
    if (!drop_) {
        drop_ = new CategoryDrop(window());
        connect(this, &QObject::destroyed, drop_, &QObject::deleteLater);
        // The drag is still under way: the list must not change beneath it.
        connect(drop_, &CategoryDrop::Dropped, this, &ListPane::MoveSelected, Qt::QueuedConnection);
    }
    drop_->Unfold(parts_.categories->Entries(), *parts_.categories->Combo());
}

void ListPane::MoveSelected(std::int32_t category) {
    std::size_t moved = 0;
    ChangeSelected([&](store::Keys keys) {
        const auto outcome = store::FactsOf(parts_.section)->move(session_, keys, category);
        moved = outcome.error == 0 ? outcome.changed : 0;
        return outcome;
    });
    if (moved == 1) TellStep();  // a slip of the hand is told as well
}

void ListPane::ChangeSelected(const std::function<store::SeveralOutcome(store::Keys keys)>& change) {
    const std::vector<std::int32_t> keys = list_->SelectedKeys();
    if (keys.empty() || !session_.DatabaseOpen) return;
    const int row = model_->RowOf(keys.front());
    const store::SeveralOutcome outcome = change(keys);
    const QString what = keys.size() == 1 ? tr("The %1 was not stored.") : tr("The %1 were not stored.");
    TellFailure(session_, outcome.error, what.arg(CountOf(parts_.section, keys.size())));
    if (outcome.error != 0 || !session_.DatabaseOpen) return;
    ShowAfter(keys, row);
    if (outcome.changed > 0 && keys.size() > 1) TellStep();
    TellUnread(outcome.unread);
}

void ListPane::DeleteSelected(int number) {
    const std::vector<std::int32_t> keys = list_->SelectedKeys();
    const int row = model_->RowOf(keys.front());
    QString count = CountOf(parts_.section, keys.size());
    std::string text = Msg(number) + " \r\n\r\n   " + count.toStdString();
    if (store::TooLargeToUndo(session_, keys)) text += store::kCannotBeUndone;
    if (session_.ports.prompter.Ask(ConfirmDelete(number, text)) != Answer::Ok) return;
    if (!session_.DatabaseOpen || session_.ending) return;
    const auto outcome = store::FactsOf(parts_.section)->remove(session_, keys);
    TellFailure(session_, outcome.error, tr("The %1 were not deleted.").arg(count));
    if (outcome.error != 0) return;
    ShowAfter(keys, row);
    if (outcome.changed > 0) TellStep();
    TellUnread(outcome.unread);
}

void ListPane::ShowAfter(const std::vector<std::int32_t>& keys, int row) {
    Rebuild(keys);
    if (list_->SelectedRow() < 0) list_->SelectRow(row);
}

void ListPane::TellStep() {
    strip_->TellStep();
}

void ListPane::Say(const QString& text) {
    strip_->Say(text);
}

void ListPane::TellUnread(std::size_t unread) {
    if (unread == 0) return;
    Box box;
    box.text = (unread == 1 ? tr("One that cannot be read was left as it is.")
                            : tr("%1 that cannot be read were left as they are.")
                                  .arg(QLocale().toString(static_cast<qulonglong>(unread))))
                   .toStdString();
    session_.ports.prompter.Ask(box);
}

}  // namespace bmr::kit
