#pragma once

#include <QObject>
#include <cstdint>

class QTimer;

namespace bmr::store {
struct Session;
}

namespace bmr::kit {

class Strip;

/// The line in which a section's screen says what was done, and offers for ten seconds to take it back.
class StepStrip final : public QObject {
    Q_OBJECT

  public:
    StepStrip(store::Session& session, std::uint8_t section, QObject* parent);

    /// What is to be laid out.
    Strip* Line() const { return strip_; }
    /// Says that the section's last step was done and can be taken back.
    void TellStep() { TellStep(section_); }
    /// The same of another section, whose records the screen changes too.
    void TellStep(std::uint8_t section);
    /// Takes the offer back once another step is the last.
    void WithdrawStep();
    void Say(const QString& text);

  signals:
    /// The last step is to be taken back.
    void UndoWanted();

  private:
    store::Session& session_;
    std::uint8_t section_;
    Strip* strip_;
    QTimer* time_;
    std::uint8_t toldSection_ = 0;
    std::uint64_t toldStep_ = 0;  ///< number of the step that the strip offers to take back
    std::uint64_t toldLast_ = 0;  ///< that of the last one in any section then
};

}  // namespace bmr::kit
