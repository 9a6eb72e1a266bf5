#include "notes/forms.h"

#include "notes/frmNotepad.h"

namespace bmr::notes {

void AddForms(SectionTable& table, const FormPorts&) {
    table[store::Section::Memo] = [](store::Session& session, QWidget* parent) {
        return new frmNotepad(session, parent);
    };
}

}  // namespace bmr::notes
