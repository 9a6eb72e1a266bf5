#include "kit/stepstrip.h"

#include <QTimer>

#include "kit/steps.h"
#include "kit/strip.h"
#include "store/undo.h"

namespace bmr::kit {

namespace {

constexpr int kStripTime = 10'000;  ///< ms for which a step is offered to be taken back

}  // namespace

StepStrip::StepStrip(store::Session& session, std::uint8_t section, QObject* parent)
    : QObject(parent), session_(session), section_(section), strip_(new Strip), time_(new QTimer(this)) {
    time_->setSingleShot(true);
    time_->setInterval(kStripTime);
    connect(time_, &QTimer::timeout, strip_, &Strip::Clear);
    connect(strip_, &Strip::Acted, this, [this] {
        WithdrawStep();
        if (toldStep_ != 0) emit UndoWanted();
    });
}

void StepStrip::TellStep() {
    const auto* step = store::NextStep(session_, section_, store::UndoWay::Undo);
    if (!step) return;
    const bool may = store::MayTake(session_, section_, store::UndoWay::Undo);
    const QString done = StepDone(*step);
    toldStep_ = step->number;
    strip_->Say(may ? done : done + " " + tr("This cannot be undone."), Strip::Kind::Note,
                may ? tr("Undo") : QString());
    time_->start();
}

void StepStrip::WithdrawStep() {
    if (toldStep_ == 0) return;
    const auto* step = store::NextStep(session_, section_, store::UndoWay::Undo);
    const bool last = step && step->number == toldStep_;
    if (last && (step->tooLarge || store::MayTake(session_, section_, store::UndoWay::Undo))) return;
    toldStep_ = 0;
    strip_->Clear();
}

void StepStrip::Say(const QString& text) {
    toldStep_ = 0;
    strip_->Say(text);
    time_->start();
}

}  // namespace bmr::kit
