#include "store/undolog.h"

namespace bmr::store {

std::uint64_t UndoLog::StateOf(const PlaceKey& stretch) const {
    const auto found = places.find(stretch);
    return found == places.end() ? 0 : found->second;
}

void UndoLog::TellSpread(const PlaceKey& stretch) {
    spread.insert(stretch);
    NewState(stretch);
}

void UndoLog::Close() {
    UndoRecord step = std::move(*open);
    open.reset();
    for (auto& [stretch, change] : step.places) {
        change.after = NewState(stretch);
        if (spread.contains(stretch)) change.after = kNever;
    }
    UndoStacks& stacks = sections[step.section];
    stacks.undone.clear();
    if (step.tooLarge) stacks.done.clear();
    step.number = ++lastNumber;
    stacks.done.push_back(std::move(step));
    Trim();
}

void UndoLog::Trim() {
    std::size_t size = 0;
    for (const auto& [section, stacks] : sections)
        for (const auto* stack : {&stacks.done, &stacks.undone})
            for (const UndoRecord& step : *stack)
                size += step.size;
    while (size > kMostBytes) {
        std::vector<UndoRecord>* oldest = nullptr;
        for (auto& [section, stacks] : sections)
            for (auto* stack : {&stacks.done, &stacks.undone})
                if (!stack->empty() && (!oldest || stack->front().number < oldest->front().number))
                    oldest = stack;
        size -= oldest->front().size;
        oldest->erase(oldest->begin());
    }
}

std::size_t SizeOf(const UndoEntry& entry) {
    std::size_t size = sizeof(UndoEntry);
    if (!entry.before) return size;
    size += sizeof(RowImage);
    for (const auto& text : entry.before->texts)
        if (text) size += text->capacity();
    return size;
}

}  // namespace bmr::store
