#include "store/undolog.h"

namespace bmr::store {

void UndoLog::Reset() {
    const bool kept = recording;
    *this = UndoLog();
    recording = kept;
}

std::uint64_t UndoLog::StateOf(const PlaceKey& stretch) const {
    const auto found = places.find(stretch);
    return found == places.end() ? 0 : found->second;
}

void UndoLog::TellSpread(const PlaceKey& stretch) {
    spread.insert(stretch);
    NewState(stretch);
}

void UndoLog::TellMoved(std::int32_t fPK, const RowPlace& before) {
    if (!open) return TellSpread(before.stretch);
    if (!recording) return;
    open->places.try_emplace(before.stretch, PlaceChange{StateOf(before.stretch), 0});
    Append({.fPK = fPK, .moved = before});
}

void UndoLog::Append(UndoEntry entry) {
    if (open->tooLarge) return;
    open->size += SizeOf(entry);
    open->entries.push_back(std::move(entry));
    open->tooLarge = open->size > kMostBytes;
    if (!open->tooLarge) return;
    open->entries = std::vector<UndoEntry>();
    open->size = 0;
}

void UndoLog::Close() {
    UndoRecord step = std::move(*open);
    open.reset();
    for (auto& [stretch, change] : step.places) {
        change.after = NewState(stretch);
        if (spread.contains(stretch)) change.after = kNever;
    }
    UndoStacks& stacks = sections[step.section];
    Clear(stacks.undone);
    if (step.tooLarge) Clear(stacks.done);
    Push(stacks.done, std::move(step));
}

void UndoLog::Push(std::deque<UndoRecord>& stack, UndoRecord step) {
    step.number = ++lastNumber;
    size += step.size;
    stack.push_back(std::move(step));
    while (size > kMostBytes) {
        std::deque<UndoRecord>* oldest = nullptr;
        for (auto& [section, stacks] : sections)
            for (auto* each : {&stacks.done, &stacks.undone})
                if (!each->empty() && (!oldest || each->front().number < oldest->front().number))
                    oldest = each;
        size -= oldest->front().size;
        oldest->pop_front();
    }
}

void UndoLog::Clear(std::deque<UndoRecord>& stack) {
    for (const UndoRecord& step : stack)
        size -= step.size;
    stack.clear();
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
