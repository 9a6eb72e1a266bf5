#include "kit/listpane.h"

#include <QLocale>
#include <QPushButton>
#include <QStackedLayout>
#include <QVBoxLayout>

#include "kit/emptystate.h"
#include "kit/failure.h"
#include "kit/formparts.h"
#include "kit/recordlistmodel.h"
#include "kit/recordlistview.h"
#include "kit/stepstrip.h"
#include "kit/strip.h"
#include "store/session.h"

namespace bmr::kit {

ListPane::ListPane(store::Session& session, RecordListModel* model, ListParts parts)
    : session_(session),
      model_(model),
      parts_(std::move(parts)),
      beforeSearch_(RecordListView::kNoKey),
      list_(new RecordListView),
      empty_(new EmptyState),
      stack_(new QStackedLayout),
      strip_(new StepStrip(session, parts_.section, this)) {
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addLayout(stack_, 1);
    column->addWidget(strip_->Line());
    connect(strip_, &StepStrip::UndoWanted, this, &ListPane::UndoWanted);
    BuildRowActions();
    list_->setObjectName(parts_.name);
    list_->setAccessibleName(parts_.caption);
    list_->setFrameShape(QFrame::NoFrame);
    list_->setEnabled(false);
    list_->SetModel(model);
    stack_->addWidget(list_);
    stack_->addWidget(empty_);
    setFocusProxy(list_);
    connect(list_, &RecordListView::EditWanted, parts_.edit, &QAction::trigger);
    connect(list_, &RecordListView::DeleteWanted, parts_.remove, &QAction::trigger);
    connect(list_, &RecordListView::MenuWanted, this, parts_.menu);
    connect(list_, &RecordListView::RowsSelected, this, &ListPane::TellStatus);
}

ListPane::~ListPane() = default;

std::array<QPushButton*, 3> ListPane::MakeButtons() const {
    return {MakeButton("cmdAdd", parts_.add), MakeButton("cmdEdit", parts_.edit),
            MakeButton("cmdDelete", parts_.remove)};
}

void ListPane::Rebuild(std::int32_t key) {
    Rebuild(std::vector{key});
}

void ListPane::Rebuild(const std::vector<std::int32_t>& keys) {
    if (!session_.DatabaseOpen || session_.ending) return;
    read_ = true;
    int error = 0;
    list_->Rebuild([&] { error = parts_.read(search_); });
    TellFailure(session_, error, parts_.unread);
    ShowState();
    list_->SelectKeys(keys);
    TellStatus();
}

void ListPane::SetSearch(const QString& text) {
    const QString wanted = text.trimmed();
    if (wanted == search_) return;
    const std::int32_t key = list_->SelectedKey();
    if (search_.isEmpty()) beforeSearch_ = key;
    search_ = wanted;
    if (!read_) return;
    Rebuild(RecordListView::kNoKey);
    list_->SelectOneOf({key, beforeSearch_});
}

void ListPane::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    if (!read_) ShowState();
    TellStatus();
}

void ListPane::ShowState() {
    const bool any = model_->rowCount() > 0;
    const bool focused = list_->hasFocus();
    list_->setEnabled(any);
    stack_->setCurrentIndex(any ? 0 : 1);
    setFocusProxy(any ? list_ : parts_.whenEmpty ? parts_.whenEmpty : empty_);
    emit FilledChanged(any);
    if (focused && !any && parts_.whenEmpty) setFocus(Qt::OtherFocusReason);
    if (any) return;
    const bool searched = read_ && !search_.isEmpty();
    Emptiness empty = parts_.empty();
    if (!searched && parts_.add->isEnabled()) empty.wider.prepend(parts_.add);
    empty_->Set(searched ? "edit-find" : parts_.icon, searched ? parts_.unfound.arg(search_) : empty.sentence,
                empty.wider);
}

bool ListPane::Shows(std::int32_t key) const {
    return model_->RowOf(key) >= 0;
}

void ListPane::TellStatus() {
    strip_->WithdrawStep();
    if (!read_) return emit StatusChanged({});
    const int count = model_->RecordCount();
    QStringList words{count == 1 ? parts_.one : parts_.many.arg(QLocale().toString(count))};
    if (parts_.more) words += parts_.more();
    if (const int selected = list_->SelectedCount())
        words << tr("%1 selected").arg(QLocale().toString(selected));
    if (!session_.ShowPrivate) words += tr("private ones hidden");
    emit StatusChanged(words.join(", "));
}

}  // namespace bmr::kit
