#pragma once

#include <QDialog>
#include <optional>

#include "calendar/serieschange.h"
#include "kit/tabring.h"

namespace bmr::calendar {

/// Asks how far a change of one occurrence of a series reaches: this one, this and later, all. What cannot be
/// chosen is greyed, and the reason stands below.
class frmReach final : public QDialog {
    Q_OBJECT

  public:
    /// `verb`: what is done, "Delete", as the window's title; `question` names the appointment.
    frmReach(const QString& verb, const QString& question, const ReachOffer& offer,
             QWidget* parent = nullptr);

    /// Nothing when the change was given up.
    std::optional<Reach> Chosen() const { return chosen_; }

  protected:
    bool focusNextPrevChild(bool next) override { return kit::StepFocus(*this, next); }
    void keyPressEvent(QKeyEvent* event) override;

  private:
    void Choose(Reach reach);

    std::optional<Reach> chosen_;
};

}  // namespace bmr::calendar
