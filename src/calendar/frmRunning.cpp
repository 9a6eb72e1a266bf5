#include "calendar/frmRunning.h"

#include <QDialogButtonBox>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QTreeWidget>
#include <QVBoxLayout>

#include "base/shortdate.h"
#include "kit/formparts.h"
#include "kit/guards.h"
#include "kit/overparent.h"
#include "kit/recorddelegate.h"
#include "kit/theme.h"
#include "kit/words.h"

namespace bmr::calendar {

frmRunning::frmRunning(const std::vector<RunningSeries>& series, Day until, const LocaleFacts& locale,
                       QWidget* parent)
    : QDialog(parent), list_(new QTreeWidget) {
    setObjectName("frmRunning");
    setWindowTitle(tr("Series That Still Run"));
    const auto date = [&](Day day) { return QString::fromStdString(FormatShortDate(day, locale.shortDate)); };
    auto* text = new QLabel((series.size() == 1 ? tr("One series began before %1 and comes again after it. "
                                                     "It would go as a whole, with all that is "
                                                     "still to come.")
                                                : tr("These series began before %1 and come again after it. "
                                                     "They would go as a whole, with all that "
                                                     "is still to come."))
                                .arg(date(until)));
    text->setObjectName("lblText");
    text->setWordWrap(true);
    list_->setObjectName("lstSeries");
    list_->setAccessibleName(tr("Series"));
    list_->setColumnCount(3);
    list_->setHeaderLabels({tr("Series"), tr("First"), tr("Last")});
    list_->setRootIsDecorated(false);
    list_->setUniformRowHeights(true);
    list_->setAlternatingRowColors(true);
    list_->setItemDelegate(new kit::RecordDelegate(list_));
    for (const RunningSeries& each : series) {
        const QString subject = kit::ShowWords(each.subject);
        new QTreeWidgetItem(list_, {subject.isEmpty() ? tr("(no subject)") : subject, date(each.first),
                                    each.last ? date(*each.last) : tr("no end")});
    }
    list_->header()->setStretchLastSection(false);
    list_->header()->setSectionResizeMode(0, QHeaderView::Stretch);
    // The rows tell no widths.
    for (const int column : {1, 2}) {
        int width = list_->header()->sectionSizeHint(column);
        for (int row = 0; row < list_->topLevelItemCount(); ++row)
            width =
                qMax(width, list_->fontMetrics().horizontalAdvance(list_->topLevelItem(row)->text(column)) +
                                2 * kit::Space::Row);
        list_->header()->setSectionResizeMode(column, QHeaderView::Fixed);
        list_->header()->resizeSection(column, width);
    }
    constexpr int kRows = 10;
    list_->setMinimumSize(
        fontMetrics().averageCharWidth() * 60,
        list_->header()->sizeHint().height() + kRows * list_->sizeHintForRow(0) + 2 * list_->frameWidth());
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    QPushButton* cmdOK = buttons->button(QDialogButtonBox::Ok);
    cmdOK->setObjectName("cmdOK");
    cmdOK->setText(tr("Go on"));
    cmdOK->setAutoDefault(false);
    QPushButton* cancel = buttons->button(QDialogButtonBox::Cancel);
    cancel->setObjectName("cmdCancel");
    cancel->setDefault(true);
    cancel->setFocus();
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(kit::Space::Margin, kit::Space::Margin, kit::Space::Margin,
                               kit::Space::Margin);
    column->setSpacing(kit::Space::Row);
    column->addWidget(text);
    column->addWidget(list_, 1);
    column->addSpacing(kit::Space::Tight);
    column->addWidget(buttons);
    kit::GiveLetters(*this);
    kit::KeepOverParent(*this);
    kit::GuardDialog(*this);
}

}  // namespace bmr::calendar
