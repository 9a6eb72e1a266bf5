#include "calendar/forms.h"

#include "calendar/frmCalendar.h"

namespace bmr::calendar {

void AddForms(SectionTable& table, const FormPorts& ports) {
    table[store::Section::Calendar] = [ports](store::Session& session, QWidget* parent) {
        return new frmCalendar(session, ports, parent);
    };
}

}  // namespace bmr::calendar
