#pragma once

#include <QWidget>
#include <cstdint>
#include <vector>

class QLabel;
class QVBoxLayout;

namespace bmr::app {

class ChoiceButton;

/// What fills the window while no section is open: which file is open and where to go, or, without one, the
/// two ways to come to one.
class frmSplash final : public QWidget {
    Q_OBJECT

  public:
    explicit frmSplash(QWidget* parent = nullptr);

    void ShowNoDatabase();
    /// `sections` are the codes that can be opened.
    void ShowDatabase(const QString& path, const std::vector<std::uint8_t>& sections);

  signals:
    void NewChosen();
    void OpenChosen();
    void SectionChosen(std::uint8_t code);

  private:
    void Clear();
    ChoiceButton* Add(const QString& name, const QIcon& icon, const QString& title, const QString& sentence);

    QLabel* lblHeading;
    QLabel* lblFile;
    QVBoxLayout* choices_;
};

/// What a section is for, in one short sentence.
QString SectionPurpose(std::uint8_t code);

}  // namespace bmr::app
