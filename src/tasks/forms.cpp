#include "tasks/forms.h"

#include "tasks/frmTodo.h"

namespace bmr::tasks {

void AddForms(SectionTable& table, const FormPorts&) {
    table[store::Section::Todo] = [](store::Session& session, QWidget* parent) {
        return new frmTodo(session, parent);
    };
}

}  // namespace bmr::tasks
