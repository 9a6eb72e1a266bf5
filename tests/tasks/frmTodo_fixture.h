#pragma once

#include <QComboBox>

#include "kit/emptystate.h"
#include "kit/recordlistview.h"
#include "support/forms.h"
#include "support/store.h"
#include "tasks/frmTodo.h"
#include "tasks/todomodel.h"

namespace bmr::tasks {

using kit::RecordListView;
using test::Click;
using test::Named;
using test::Visitor;

/// The task screen over a database of its own, driven as a person would.
struct FormTodo : testing::Test {
    FormTodo() { Open(); }
    void Open() {
        form.reset();  // stores what it keeps before the next one reads it
        form = std::make_unique<frmTodo>(db.session);
        form->resize(900, 600);
        form->show();
        EXPECT_TRUE(QTest::qWaitForWindowActive(form.get()));
        list = &Named<RecordListView>(*form, "TodoList");
        model = form->findChild<TodoModel*>();
    }
    std::int32_t Add(const Bytes& text, const std::function<void(Task&)>& change = {}) {
        Task task = ClearRecord(store::Category::All);
        task.task = text;
        if (change) change(task);
        EXPECT_EQ(WriteRecord(db.session, task).error, 0);
        return task.key;
    }
    QString Cell(int row, int column) { return model->index(row, column).data().toString(); }
    QStringList Shown() {
        QStringList all;
        for (int row = 0; row < model->rowCount(); ++row)
            all << Cell(row, SubItem::Task);
        return all;
    }
    void Press(Qt::Key key) {
        QTest::keyClick(list, key);
        QCoreApplication::processEvents();
    }
    void TickByMouse(int row) {
        const QRect cell = list->visualRect(model->index(row, 0));
        QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, QPoint(cell.left() + 12, cell.center().y()));
        QCoreApplication::processEvents();
    }
    QAction& Entry(const char* name) { return Named<QAction>(*form, name); }
    Task Stored(std::int32_t key) { return FetchRecord(db.session, key).value(); }
    QString Sentence() {
        auto& empty = Named<kit::EmptyState>(*form, "emptyState");
        return empty.isVisible() ? empty.Sentence() : QString();
    }
    void ChooseCategory(std::int32_t number) {
        auto& combo = Named<QComboBox>(*form, "cboCategories");
        combo.setCurrentIndex(combo.findData(number));
        emit combo.activated(combo.currentIndex());
    }

    test::TempStore db;
    Day today = db.clock.Today();
    std::unique_ptr<frmTodo> form;
    RecordListView* list = nullptr;
    TodoModel* model = nullptr;
};

}  // namespace bmr::tasks
