#include <algorithm>
#include <atomic>
#include <numeric>
#include <thread>

#include "crypto/blowfish.h"
#include "crypto/cry.h"
#include "crypto/fieldtext.h"

namespace bmr::cry {
namespace {

using KeyBytes = std::array<std::uint8_t, kBlowfishKeyBytes>;
using WipedBytes = std::vector<std::uint8_t, WipingAllocator<std::uint8_t>>;

/// Plain texts of one pass stand in memory together; a section of very long texts is worked in several
/// passes.
constexpr std::size_t kPassBytes = std::size_t{64} << 20;

/// Runs work(first, last) over [0, count) in steps, on up to `threads` threads (0: all cores).
template <class Work>
void InParallel(std::size_t count, std::size_t step, unsigned threads, Work work) {
    if (threads == 0) threads = std::max(1U, std::thread::hardware_concurrency());
    std::atomic<std::size_t> next = 0;
    const auto run = [&] {
        for (std::size_t first = next.fetch_add(step); first < count; first = next.fetch_add(step))
            work(first, std::min(first + step, count));
    };
    // A thread costs more than some hundred schedules are worth.
    const std::size_t useful = std::min<std::size_t>(threads, count / 512 + 1);
    std::vector<std::thread> helpers;
    for (std::size_t i = 1; i < useful; ++i)
        helpers.emplace_back(run);
    run();
    for (std::thread& helper : helpers)
        helper.join();
}

/// One field of a pass: where its plain text stands and how it came out.
struct Slot {
    std::uint32_t selector = 0;
    std::uint32_t index = 0;  ///< place in the caller's list, from the pass's first
    std::size_t offset = 0;   ///< of the plain text in the pass's buffer
};

/// Fields of one selector stand together: they share a schedule.
std::vector<std::size_t> GroupStarts(const std::vector<Slot>& slots) {
    std::vector<std::size_t> starts;
    for (std::size_t i = 0; i < slots.size(); ++i)
        if (i == 0 || slots[i].selector != slots[i - 1].selector) starts.push_back(i);
    starts.push_back(slots.size());
    return starts;
}

/// Makes the schedules of groups [first, last) side by side and calls use(schedule, group) for each.
template <class SelectorOfGroup, class Use>
void WithSchedules(std::span<const std::uint8_t> keystring, std::size_t first, std::size_t last,
                   std::array<BlowfishKey, kBlowfishLanes>& schedules, SelectorOfGroup selectorOf, Use use) {
    std::array<KeyBytes, kBlowfishLanes> keys{};
    for (std::size_t group = first; group < last; group += kBlowfishLanes) {
        const std::size_t lanes = std::min(kBlowfishLanes, last - group);
        for (std::size_t lane = 0; lane < lanes; ++lane)
            PickFieldKey(keystring, selectorOf(group + lane), std::span<std::uint8_t, 16>(keys[lane]));
        Schedule(std::span(keys).first(lanes), std::span(schedules).first(lanes));
        for (std::size_t lane = 0; lane < lanes; ++lane)
            use(schedules[lane], group + lane);
    }
    WipeMemory(keys.data(), sizeof(keys));
}

class DecipherPass {
  public:
    DecipherPass(std::span<const std::uint8_t> keystring, std::span<const std::string_view> texts)
        : keystring_(keystring), texts_(texts), sizes_(texts.size()) {
        std::size_t total = 0;
        for (std::size_t i = 0; i < texts.size(); ++i) {
            if (FieldTextForm(texts[i]) != FieldForm::Whole) continue;
            slots_.push_back(
                {static_cast<std::uint32_t>(SelectorOf(texts[i])), static_cast<std::uint32_t>(i), total});
            total += texts[i].size() - 10;
        }
        plain_.resize(total);
        offsets_.resize(texts.size());
        for (const Slot& slot : slots_)
            offsets_[slot.index] = slot.offset;
        std::stable_sort(slots_.begin(), slots_.end(),
                         [](const Slot& a, const Slot& b) { return a.selector < b.selector; });
    }

    void Run(unsigned threads) {
        const std::vector<std::size_t> starts = GroupStarts(slots_);
        InParallel(starts.size() - 1, kBlowfishLanes * 16, threads, [&](std::size_t first, std::size_t last) {
            std::array<BlowfishKey, kBlowfishLanes> schedules;
            WithSchedules(
                keystring_, first, last, schedules,
                [&](std::size_t group) { return slots_[starts[group]].selector; },
                [&](const BlowfishKey& key, std::size_t group) {
                    for (std::size_t i = starts[group]; i < starts[group + 1]; ++i)
                        DecipherSlot(key, slots_[i]);
                });
        });
    }

    std::string_view PlainOf(std::size_t index) const {
        switch (FieldTextForm(texts_[index])) {
            case FieldForm::Malformed:
                return {"\0", 1};
            case FieldForm::NoBlock:
                return {};
            default:
                return {reinterpret_cast<const char*>(plain_.data()) + offsets_[index], sizes_[index]};
        }
    }

    std::size_t Deciphered() const { return slots_.size(); }

  private:
    void DecipherSlot(const BlowfishKey& key, const Slot& slot) {
        const std::string_view text = texts_[slot.index];
        const auto* bytes = reinterpret_cast<const std::uint8_t*>(text.data());
        const std::span<std::uint8_t> out(plain_.data() + slot.offset, text.size() - 10);
        std::copy(bytes + 10, bytes + text.size(), out.begin());
        DecryptCbc(key, bytes + 2, out);
        const std::size_t size = PlainSize({reinterpret_cast<const char*>(out.data()), out.size()});
        sizes_[slot.index] = size == std::string_view::npos ? out.size() : size;
    }

    std::span<const std::uint8_t> keystring_;
    std::span<const std::string_view> texts_;
    std::vector<Slot> slots_;
    std::vector<std::size_t> offsets_;
    std::vector<std::size_t> sizes_;
    WipedBytes plain_;
};

}  // namespace

void DecipherBatch(CipherState& state, std::span<const std::string_view> texts,
                   const std::function<void(std::size_t index, std::string_view plain)>& each,
                   unsigned threads) {
    for (std::size_t first = 0; first < texts.size();) {
        std::size_t last = first;
        for (std::size_t bytes = 0; last < texts.size() && (last == first || bytes < kPassBytes); ++last)
            bytes += texts[last].size();
        if (state.Keystring.empty()) {
            for (; first < last; ++first)
                each(first, {});
            continue;
        }
        DecipherPass pass(state.Keystring.span(), texts.subspan(first, last - first));
        pass.Run(threads);
        state.deciphered += pass.Deciphered();
        for (std::size_t i = first; i < last; ++i)
            each(i, pass.PlainOf(i - first));
        first = last;
    }
}

std::vector<Bytes> EncipherBatch(CipherState& state, std::span<const std::string_view> texts,
                                 unsigned threads) {
    std::vector<Bytes> out(texts.size());
    if (state.Keystring.empty()) return out;
    std::vector<std::uint32_t> selectors(texts.size());
    for (std::size_t i = 0; i < texts.size(); ++i) {
        selectors[i] = static_cast<std::uint32_t>(DrawBelow(*state.random, 65536));
        const std::size_t blanks =
            texts[i].empty() ? static_cast<std::size_t>(DrawBelow(*state.random, 13)) : 0;
        const std::size_t size = texts[i].size() + blanks;
        const std::size_t fill = kBlowfishBlock - (size + 1) % kBlowfishBlock;
        out[i].reserve(11 + size + fill);
        out[i] += {ByteChar(selectors[i] >> 8), ByteChar(selectors[i])};
        out[i] += RandomBytes(*state.random, kBlowfishBlock);
        out[i].append(texts[i]).append(blanks, ' ').append(1, '\x03').append(fill, static_cast<char>(fill));
    }
    InParallel(texts.size(), kBlowfishLanes * 16, threads, [&](std::size_t first, std::size_t last) {
        std::array<BlowfishKey, kBlowfishLanes> schedules;
        WithSchedules(
            state.Keystring.span(), first, last, schedules, [&](std::size_t i) { return selectors[i]; },
            [&](const BlowfishKey& key, std::size_t i) {
                auto* bytes = reinterpret_cast<std::uint8_t*>(out[i].data());
                EncryptCbc(key, bytes + 2, {bytes + 10, out[i].size() - 10});
            });
    });
    return out;
}

}  // namespace bmr::cry
