#include "kit/editorfields.h"

#include <QCheckBox>
#include <QLineEdit>
#include <QPlainTextEdit>

#include "kit/categoryfield.h"
#include "kit/drafttext.h"
#include "kit/formparts.h"
#include "kit/words.h"
#include "store/record_put.h"

namespace bmr::kit {

namespace {

/// What is too long is to be told, not cut while it is typed.
constexpr int kLongestLine = 2 * static_cast<int>(store::kLongestText);

/// The error line of "ctlTask" is "lblTaskError". The control owns it until it stands in a row: some never
/// do.
QLabel* ErrorLineOf(QWidget& control) {
    constexpr int kPrefix = 3;
    QLabel* line =
        MakeErrorLine(("lbl" + control.objectName().mid(kPrefix) + "Error").toLatin1().constData());
    line->setParent(&control);
    return line;
}

}  // namespace

QWidget* EditorFields::Text::Control() const {
    return line ? static_cast<QWidget*>(line) : block;
}

WipedLetters EditorFields::Text::Typed() const {
    return line ? line->text() : PlainText(*block);
}

void EditorFields::Text::Put(const QString& text) const {
    if (line) return line->setText(text);
    block->setPlainText(text);
}

WipedText EditorFields::Text::Taken() const {
    const WipedLetters typed = Typed();
    const WipedLetters before = line ? ShowWords(*member) : ShowLines(*member);
    if (!touched || typed == before) return *member;
    return line ? TakeWords(typed) : TakeLines(typed, *member);
}

EditorFields::~EditorFields() {
    for (const Text& text : texts_)
        WipeText(*text.member);
}

template <class Control>
void EditorFields::TieText(Text text, Control& control) {
    Text& tied = texts_.emplace_back(text);
    connect(&control, &Control::textChanged, this, [this, &tied] {
        tied.touched = true;
        if (!tied.error->text().isEmpty()) Tell(tied);
        emit Changed();
    });
}

void EditorFields::Tie(std::uint8_t number, QLineEdit& control, std::string& member) {
    control.setMaxLength(kLongestLine);
    TieText({number, &control, nullptr, &member, ErrorLineOf(control)}, control);
}

void EditorFields::Tie(std::uint8_t number, QPlainTextEdit& control, std::string& member) {
    TieText({number, nullptr, &control, &member, ErrorLineOf(control)}, control);
}

void EditorFields::Tie(std::uint8_t number, QCheckBox& control, bool& member) {
    private_ = {number, &control, &member};
    connect(&control, &QCheckBox::toggled, this, &EditorFields::Changed);
}

void EditorFields::Tie(CategoryField& control, std::int32_t& member) {
    category_ = &control;
    categoryMember_ = &member;
    connect(&control, &CategoryField::Chosen, this, &EditorFields::Changed);
}

QWidget* EditorFields::Row(const QWidget& control, QWidget* whole) const {
    for (const Text& text : texts_)
        if (text.Control() == &control) return WithError(whole, text.error);
    return whole;
}

void EditorFields::Show() {
    if (category_) category_->Fill(*categoryMember_);
    for (Text& text : texts_) {
        text.Put(text.line ? ShowWords(*text.member) : ShowLines(*text.member));
        text.touched = false;
    }
    if (!private_) return;
    private_->shown = *private_->member;
    private_->control->setChecked(private_->shown);
}

void EditorFields::Take() {
    for (Text& text : texts_) {
        WipedText taken = text.Taken();
        text.member->swap(taken);
    }
    if (private_) *private_->member = private_->control->isChecked();
    if (category_) *categoryMember_ = category_->Number();
}

bool EditorFields::Tell(const Text& text) {
    return kit::Tell(*text.error, TooLongOf(text.Taken()));
}

bool EditorFields::Judge() {
    QWidget* wrong = nullptr;
    for (const Text& text : texts_)
        if (!Tell(text) && !wrong) wrong = text.Control();
    if (wrong) wrong->setFocus(Qt::OtherFocusReason);
    return !wrong;
}

custody::Draft EditorFields::HalfWritten(std::uint8_t section, std::int32_t key) const {
    custody::Draft draft;
    draft.section = section;
    draft.key = key;
    draft.isPrivate = private_ && (private_->shown || private_->control->isChecked());
    if (category_) draft.category = category_->Number();
    if (!texts_.empty()) SetTitle(draft, texts_.front().Typed());
    for (const Text& text : texts_)
        PutText(draft, text.number, text.Typed());
    if (private_) PutFlag(draft, private_->number, private_->control->isChecked());
    return draft;
}

void EditorFields::Fill(const custody::Draft& draft) {
    if (category_) category_->Fill(draft.category);
    for (const Text& text : texts_) {
        text.Put(TextOf(draft, text.number));
        if (text.block) text.block->moveCursor(QTextCursor::End);
    }
    if (!texts_.empty() && texts_.front().line) ContinueAtEnd(*texts_.front().line);
    if (private_) private_->control->setChecked(FlagOf(draft, private_->number));
}

}  // namespace bmr::kit
