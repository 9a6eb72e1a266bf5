#pragma once

#include <QLineEdit>
#include <QPlainTextEdit>
#include <functional>
#include <optional>

#include "base/ports.h"

namespace bmr::store {
struct Session;
}

namespace bmr::kit {

/// What a field's content can be used for outside the program, besides being copied.
struct FieldUse {
    bool web = false;
    bool mail = false;
    bool dial = false;
    std::function<QString()> person = {};  ///< whose number it is
    /// The content, where all of it is meant when nothing is selected.
    std::optional<QString> whole = {};
    bool masked = false;  ///< what the field shows only stands for `whole`
};

/// Gives a field our own pop-up menu in place of the toolkit's: Cut, Copy, Copy (no spaces), Paste, Select
/// All, and what `use` names. Web, mail and dial take the selected text, or all when nothing is selected.
/// Both ports must outlive the field.
void GiveFieldMenu(QLineEdit& field, Prompter& prompter, Desktop& desktop, FieldUse use = {});

/// The same for a field of many lines; web, mail and dial take the selected text only.
void GiveFieldMenu(QPlainTextEdit& field, Prompter& prompter, Desktop& desktop, FieldUse use = {});

/// For a field that copies all that it holds when nothing is selected: "Copy" of other menus is enabled then.
void SetCopiesWhole(QLineEdit& field);
bool CopiesWhole(const QLineEdit& field);

/// The menu for a field whose content is a name and nothing else.
void GiveFieldMenu(QLineEdit& field);

/// The menu for free text, which may hold an address or a number anywhere: web, mail and dial are there for
/// what is selected, as far as the session knows a desktop.
void GiveFieldMenu(QLineEdit& field, store::Session& session);
void GiveFieldMenu(QPlainTextEdit& field, store::Session& session);

/// The menu for a field that shows now this and now that: `use` is asked whenever the menu opens.
void GiveFieldMenu(QLineEdit& field, store::Session& session, std::function<FieldUse()> use);
void GiveFieldMenu(QPlainTextEdit& field, store::Session& session, std::function<FieldUse()> use);

}  // namespace bmr::kit
