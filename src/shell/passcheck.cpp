#include "shell/passcheck.h"

#include "custody/passphrase.h"

namespace bmr::shell {

CharacterCounts CountCharacters(std::string_view typed) {
    CharacterCounts counts;
    for (const char c : typed) {
        if (c >= '0' && c <= '9')
            ++counts.digits;
        else if (c >= 'A' && c <= 'Z')
            ++counts.capitals;
        else if ((c >= 'a' && c <= 'z') || c == ' ')
            ++counts.lower;
        else
            ++counts.punctuation;
    }
    return counts;
}

bool IsWeak(std::string_view typed) {
    const CharacterCounts counts = CountCharacters(typed);
    return counts.digits == 0 && counts.punctuation == 0;
}

SecretEntry::Step SecretEntry::Enter(Secret typed) {
    if (step_ != Step::Type && step_ != Step::Confirm) return step_;
    if (typed.empty()) return Cancel();
    if (step_ == Step::Confirm) {
        secondEntry_ = std::move(typed);
        if (firstEntry_.view() != secondEntry_.view()) return step_ = Step::AskMismatch;
        secondEntry_.Wipe();
        return step_ = Step::Done;
    }
    firstEntry_ = std::move(typed);
    if (checkQuality_ && firstEntry_.size() < custody::kShortestPassphrase) return step_ = Step::Done;
    if (checkQuality_ && IsWeak(firstEntry_.view())) return step_ = Step::AskWeak;
    return Take();
}

Box SecretEntry::Question() const {
    const bool weak = step_ == Step::AskWeak;
    Box box = MessageBox(weak ? 158 : 84, weak ? BoxIcon::Question : BoxIcon::Warning);
    box.buttons = weak ? Buttons::YesNo : Buttons::RetryCancel;
    box.standard = weak ? Answer::No : Answer::Retry;
    return box;
}

SecretEntry::Step SecretEntry::Reply(Answer answer) {
    if (step_ == Step::AskWeak) return answer == Answer::Yes ? Take() : Restart();
    if (step_ == Step::AskMismatch) return answer == Answer::Retry ? Restart() : Cancel();
    return step_;
}

SecretEntry::Step SecretEntry::Cancel() {
    Restart();
    return step_ = Step::Cancelled;
}

Secret SecretEntry::TakeResult() {
    if (step_ != Step::Done) return Secret();
    return std::move(firstEntry_);
}

SecretEntry::Step SecretEntry::Take() {
    return step_ = confirm_ ? Step::Confirm : Step::Done;
}

SecretEntry::Step SecretEntry::Restart() {
    firstEntry_.Wipe();
    secondEntry_.Wipe();
    return step_ = Step::Type;
}

}  // namespace bmr::shell
