#include "kit/stepstrip.h"

#include <QTimer>

#include "kit/steps.h"
#include "kit/strip.h"
#include "store/undo.h"

namespace bmr::kit {

namespace {

constexpr int kStripTime = 10'000;  ///< ms for which a step is offered to be taken back
constexpr int kHandTime = 1'000;    ///< ms until it is looked again whether the hand has left it

}  // namespace

StepStrip::StepStrip(store::Session& session, std::uint8_t section, QObject* parent)
    : QObject(parent), session_(session), section_(section), strip_(new Strip), time_(new QTimer(this)) {
    time_->setSingleShot(true);
    connect(time_, &QTimer::timeout, this, [this] {
        // Not from under a hand.
        if (strip_->InHand()) return time_->start(kHandTime);
        strip_->Clear();
    });
    connect(strip_, &Strip::Acted, this, [this] {
        WithdrawStep();
        if (toldStep_ != 0) emit UndoWanted();
    });
}

void StepStrip::TellStep(std::uint8_t section) {
    const auto* step = store::NextStep(session_, section, store::UndoWay::Undo);
    if (!step) return;
    const bool may = store::MayTake(session_, section, store::UndoWay::Undo);
    const QString done = StepDone(*step);
    toldSection_ = section;
    toldStep_ = step->number;
    toldLast_ = session_.undo.lastNumber;
    strip_->Say(may ? done : done + " " + tr("This cannot be undone."), Strip::Kind::Note,
                may ? tr("Undo") : QString());
    time_->start(kStripTime);
}

void StepStrip::WithdrawStep() {
    if (toldStep_ == 0) return;
    const auto* step = store::NextStep(session_, toldSection_, store::UndoWay::Undo);
    const bool last = step && step->number == toldStep_ && session_.undo.lastNumber == toldLast_;
    if (last && (step->tooLarge || store::MayTake(session_, toldSection_, store::UndoWay::Undo))) return;
    toldStep_ = 0;
    strip_->Clear();
}

void StepStrip::Say(const QString& text) {
    toldStep_ = 0;
    strip_->Say(text);
    time_->start(kStripTime);
}

}  // namespace bmr::kit
