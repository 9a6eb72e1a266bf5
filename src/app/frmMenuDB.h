#pragma once

#include <QDialog>
#include <functional>

namespace bmr::app {

/// The choice when no database could be opened: make one, open another, or leave. Hides itself once a choice
/// has led somewhere.
class frmMenuDB final : public QDialog {
    Q_OBJECT

  public:
    /// What follows a choice; true hides the form, false leaves it for another choice.
    using Step = std::function<bool()>;

    /// Return opens another database where there has been one before, and makes one else.
    frmMenuDB(Step newDatabase, Step oldDatabase, bool hadOne, QWidget* parent = nullptr);

  private:
    void Try(const Step& step);
};

}  // namespace bmr::app
