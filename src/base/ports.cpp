#include "base/ports.h"

#include "base/languageus.h"

namespace bmr {

Box MessageBox(int number, BoxIcon icon) {
    Box box;
    box.number = number;
    box.text = Msg(number);
    box.icon = icon;
    return box;
}

Box ConfirmDelete(int number, WipedText text) {
    Box box;
    box.number = number;
    box.text = std::move(text);
    box.buttons = Buttons::OkCancel;
    box.icon = BoxIcon::Warning;
    box.standard = Answer::Cancel;
    return box;
}

}  // namespace bmr
