#include "kit/emptycontrols.h"

#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QSignalBlocker>

#include "kit/recordlistmodel.h"

namespace bmr::kit {

void EmptyControls(QWidget& form) {
    for (auto* edit : form.findChildren<QLineEdit*>()) {
        const QSignalBlocker quiet(edit);
        edit->setText({});  // unlike clear, nothing is left to be undone
    }
    for (auto* edit : form.findChildren<QPlainTextEdit*>()) {
        const QSignalBlocker quiet(edit);
        edit->clear();  // its steps to undo go with it
    }
    for (auto* label : form.findChildren<QLabel*>())
        label->clear();
    for (auto* model : form.findChildren<RecordListModel*>())
        model->ForgetAll();
}

}  // namespace bmr::kit
