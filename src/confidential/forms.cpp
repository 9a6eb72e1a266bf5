#include "confidential/forms.h"

#include "confidential/frmClassified.h"

namespace bmr::confidential {

void AddForms(SectionTable& table, const FormPorts& ports) {
    table[store::Section::Confidential] = [ports](store::Session& session, QWidget* parent) {
        return new frmClassified(session, ports.copySecret, parent);
    };
}

}  // namespace bmr::confidential
