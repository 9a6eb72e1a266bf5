#include <algorithm>
#include <array>
#include <atomic>
#include <system_error>
#include <thread>

#include "crypto/cry.h"
#include "crypto/fieldtext.h"

namespace bmr::cry {
namespace {

/// Cipher text whose plain form stands in memory at once. Rows of one selector share a schedule only within a
/// chunk: at this size 100,000 ordinary records are one chunk, and long ones, of which fewer share, cost more
/// to decipher than a schedule anyway.
constexpr std::size_t kChunkBytes = 16 << 20;
/// Fewer keys are done before another thread has started.
constexpr std::size_t kKeysPerThread = 64;

/// Fields in the order of their selectors, so that those under one key stand together.
class KeyedFields {
  public:
    void Add(std::int32_t selector, std::size_t index) {
        order_.push_back(static_cast<std::uint64_t>(selector) << 32 | index);
    }
    std::size_t size() const { return order_.size(); }

    /// Calls `work(cipher, index)` once for each field, its key set, on `threads` threads at most. `work`
    /// touches nothing that another field's shares, and does not throw.
    template <class Work>
    void Run(std::span<const std::uint8_t> keystring, unsigned threads, const Work& work) {
        FindRuns();
        const std::size_t keys = runs_.size() - 1;
        const std::size_t useful = keys / kKeysPerThread + 1;
        // Asking for the cores opens a file, which a few fields are not worth.
        const std::size_t wanted =
            threads != 0 || useful == 1 ? threads : std::thread::hardware_concurrency();
        std::atomic<std::size_t> next{0};
        const auto worker = [&] { TakeRuns(keystring, next, work); };
        std::vector<std::jthread> others;
        for (std::size_t i = 1; i < std::min(wanted, useful); ++i) {
            try {
                others.emplace_back(worker);
            } catch (const std::system_error&) {
                break;  // no more threads to be had: those at work do the rest
            }
        }
        worker();
    }

  private:
    std::uint32_t Selector(std::size_t at) const { return static_cast<std::uint32_t>(order_[at] >> 32); }

    void FindRuns() {
        std::sort(order_.begin(), order_.end());
        for (std::size_t at = 0; at < order_.size(); ++at)
            if (at == 0 || Selector(at) != Selector(at - 1)) runs_.push_back(at);
        runs_.push_back(order_.size());
    }

    template <class Work>
    void TakeRuns(std::span<const std::uint8_t> keystring, std::atomic<std::size_t>& next,
                  const Work& work) const {
        std::array<Blowfish::Key, Blowfish::kLanes> keys{};
        std::array<Blowfish, Blowfish::kLanes> ciphers;
        const std::size_t last = runs_.size() - 1;
        for (std::size_t run = next.fetch_add(keys.size()); run < last; run = next.fetch_add(keys.size())) {
            const std::size_t count = std::min(keys.size(), last - run);
            for (std::size_t lane = 0; lane < count; ++lane)
                PickFieldKey(keystring, Selector(runs_[run + lane]), keys[lane]);
            Blowfish::SetKeys({keys.data(), count}, {ciphers.data(), count});
            for (std::size_t lane = 0; lane < count; ++lane)
                for (std::size_t at = runs_[run + lane]; at < runs_[run + lane + 1]; ++at)
                    work(ciphers[lane], static_cast<std::uint32_t>(order_[at]));
        }
        WipeMemory(keys.data(), sizeof(keys));
    }

    std::vector<std::uint64_t> order_;  ///< selector in the high half, index in the low
    std::vector<std::size_t> runs_;     ///< where in `order_` each selector begins, and the end
};

std::size_t ChunkSize(std::span<const std::string_view> texts) {
    std::size_t count = 0;
    for (std::size_t bytes = 0; count < texts.size() && bytes < kChunkBytes; ++count)
        bytes += texts[count].size();
    return count;
}

/// Where a field's plain text stands.
struct Slot {
    std::size_t at, size;
};

/// Deciphers one chunk into `plain`; the fields that have no block come out as mode 2 has them.
std::vector<Slot> DecipherChunk(std::span<const std::uint8_t> keystring,
                                std::span<const std::string_view> texts, unsigned threads, Secret& plain,
                                std::uint64_t& deciphered) {
    std::vector<Slot> slots;
    slots.reserve(texts.size());
    KeyedFields fields;
    std::size_t end = 0;
    for (std::size_t i = 0; i < texts.size(); ++i) {
        std::size_t size = 0;
        const FieldForm form = FieldTextForm(texts[i]);
        if (!keystring.empty() && form == FieldForm::Malformed) size = 1;
        if (!keystring.empty() && form == FieldForm::Whole) {
            size = texts[i].size() - 2 - Blowfish::kBlock;
            fields.Add(SelectorOf(texts[i]), i);
        }
        slots.push_back({end, size});
        end += size;
    }
    plain = Secret(end);
    deciphered += fields.size();
    fields.Run(keystring, threads, [&](const Blowfish& cipher, std::size_t i) {
        Slot& slot = slots[i];
        DecryptField(cipher, texts[i].substr(2), plain.span().subspan(slot.at, slot.size));
        const std::size_t size = PlainSize(plain.view().substr(slot.at, slot.size));
        if (size != std::string_view::npos) slot.size = size;
    });
    return slots;
}

}  // namespace

void DecipherBatch(CipherState& state, std::span<const std::string_view> texts,
                   const std::function<void(std::size_t index, std::string_view plain)>& each,
                   unsigned threads) {
    const Secret keystring = state.Keystring.Copy();  // `each` may close the database
    for (std::size_t first = 0; first < texts.size();) {
        const auto chunk = texts.subspan(first, ChunkSize(texts.subspan(first)));
        Secret plain;
        const auto slots = DecipherChunk(keystring.span(), chunk, threads, plain, state.deciphered);
        for (std::size_t i = 0; i < chunk.size(); ++i) {
            each(first + i, plain.view().substr(slots[i].at, slots[i].size));
            WipeMemory(plain.span().data() + slots[i].at, slots[i].size);
        }
        first += chunk.size();
    }
}

std::vector<Bytes> EncipherBatch(CipherState& state, std::span<const std::string_view> texts,
                                 unsigned threads) {
    std::vector<Bytes> out(texts.size());
    if (state.Keystring.empty()) return out;
    KeyedFields fields;
    for (std::size_t i = 0; i < texts.size(); ++i) {
        const std::int32_t selector = DrawBelow(*state.random, 65536);
        out[i] = PaddedField(*state.random, SelectorText(selector), texts[i]);
        fields.Add(selector, i);
    }
    fields.Run(state.Keystring.span(), threads,
               [&out](const Blowfish& cipher, std::size_t i) { EncryptField(cipher, 2, out[i]); });
    return out;
}

}  // namespace bmr::cry
