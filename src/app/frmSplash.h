#pragma once

#include <QWidget>
#include <cstdint>
#include <vector>

class QLabel;
class QGridLayout;

namespace bmr::app {

class ChoiceButton;

/// What fills the window while no section is open: which file is open and where to go, or, without one, the
/// two ways to come to one.
class frmSplash final : public QWidget {
    Q_OBJECT

  public:
    explicit frmSplash(QWidget* parent = nullptr);

    /// Without a database; `locked` is the file that was locked last, which can be unlocked again, or empty.
    void ShowNoDatabase(const QString& locked = {});
    /// The program's name alone, behind the questions of an opening.
    void ShowOpening();
    /// `sections` are the codes that can be opened.
    void ShowDatabase(const QString& path, const std::vector<std::uint8_t>& sections);

    /// The first choice gets the focus, so that Return goes on.
    void FocusFirst();

  signals:
    void UnlockChosen();
    void NewChosen();
    void OpenChosen();
    void SectionChosen(std::uint8_t code);

  protected:
    void resizeEvent(QResizeEvent* event) override;

  private:
    void Clear();
    /// Two columns for many choices, where they have room.
    void Arrange();
    ChoiceButton* Add(const QString& name, const QIcon& icon, const QString& title, const QString& sentence);

    QLabel* lblHeading;
    QLabel* lblFile;
    QGridLayout* choices_;
};

/// What a section is for, in one short sentence.
QString SectionPurpose(std::uint8_t code);

}  // namespace bmr::app
