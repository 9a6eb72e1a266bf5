#pragma once

#include <QObject>
#include <cstdint>
#include <list>
#include <optional>
#include <string>

#include "custody/drafts.h"
#include "kit/words.h"

class QCheckBox;
class QLabel;
class QLineEdit;
class QPlainTextEdit;
class QWidget;

namespace bmr::kit {

class CategoryField;

/// The controls of an editor, each tied to a member of the record that the editor holds, and to the number
/// under which a draft keeps its content. The numbers are format: files in the field carry them. Record and
/// controls must outlive the ties; the record's texts are overwritten at the end of them.
class EditorFields final : public QObject {
    Q_OBJECT

  public:
    EditorFields() = default;
    ~EditorFields() override;

    /// The first line that is tied is what a list would show of the record.
    void Tie(std::uint8_t number, QLineEdit& control, std::string& member);
    void Tie(std::uint8_t number, QPlainTextEdit& control, std::string& member);
    /// The mark of a private record.
    void Tie(std::uint8_t number, QCheckBox& control, bool& member);
    /// The category, or its like, for which a draft has a place of its own.
    void Tie(CategoryField& control, std::int32_t& member);

    /// One row of a form: a tied text's control, or what it stands in, and below it the line that says what
    /// is wrong with it.
    QWidget* Row(const QWidget& control, QWidget* whole) const;
    QWidget* Row(QWidget* control) const { return Row(*control, control); }

    /// Record to controls.
    void Show();
    /// Controls to record. A text that nobody has changed stays as it is to the byte.
    void Take();
    /// True when a record can hold all texts. Otherwise what it cannot is marked in words, which go with
    /// their cause, and the first such field gets the focus.
    bool Judge();

    /// A draft of the record as the controls hold it.
    custody::Draft HalfWritten(std::uint8_t section, std::int32_t key) const;
    /// Puts a draft into the controls, as if it had been typed.
    void Fill(const custody::Draft& draft);

  signals:
    /// A control's content changed, by whatever way.
    void Changed();

  private:
    struct Text {
        std::uint8_t number;
        QLineEdit* line;        ///< one of both
        QPlainTextEdit* block;  ///< the other null
        std::string* member;
        QLabel* error;
        bool touched = false;  ///< since the record was shown

        QWidget* Control() const;
        WipedLetters Typed() const;
        void Put(const QString& text) const;
        WipedText Taken() const;
    };
    struct Mark {
        std::uint8_t number;
        QCheckBox* control;
        bool* member;
        bool shown = false;  ///< what the record said
    };

    template <class Control>
    void TieText(Text text, Control& control);
    static bool Tell(const Text& text);

    std::list<Text> texts_;  ///< what is connected with a control stays in its place
    std::optional<Mark> private_;
    CategoryField* category_ = nullptr;
    std::int32_t* categoryMember_ = nullptr;
};

}  // namespace bmr::kit
