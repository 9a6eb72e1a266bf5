// batch10k     10,000 fields on one core against the library one by one      limit 0.33
// grouped100k  100,000 fields of random selectors, the same                   limit 0.2
#include <botan/block_cipher.h>

#include <array>
#include <vector>

#include "crypto/cry.h"
#include "crypto/fieldtext.h"
#include "crypto/systemrandom.h"
#include "ratio.h"

namespace {

using namespace bmr;

/// What a reader without the batch would do: the library's cipher, one schedule for each field.
std::size_t OneByOne(const cry::CipherState& state, const std::vector<std::string_view>& texts) {
    std::size_t total = 0;
    const auto cipher = Botan::BlockCipher::create_or_throw("Blowfish");
    std::array<std::uint8_t, 16> key{};
    std::vector<std::uint8_t> plain;
    for (const std::string_view text : texts) {
        cry::PickFieldKey(state.Keystring.span(), static_cast<std::uint32_t>(cry::SelectorOf(text)), key);
        cipher->set_key(key.data(), key.size());
        plain.assign(text.begin() + 10, text.end());
        cipher->decrypt_n(plain.data(), plain.data(), plain.size() / 8);
        for (std::size_t i = 0; i < plain.size(); ++i)
            plain[i] = static_cast<std::uint8_t>(plain[i] ^ static_cast<std::uint8_t>(text[i + 2]));
        total += plain.back();
    }
    return total;
}

}  // namespace

int main() {
    cry::SystemRandom random;
    cry::CipherState state(random);
    state.Keystring = Secret(cry::RandomBytes(random, 256));
    std::vector<Bytes> fields;
    // Payloads as records have them: a few tags and a line or two of text.
    for (std::size_t i = 0; i < 100000; ++i)
        fields.push_back(cry::FieldCipher(state, 1, Bytes(30 + i * 37 % 170, 'x')));
    const std::vector<std::string_view> all(fields.begin(), fields.end());
    const std::vector<std::string_view> some(all.begin(), all.begin() + 10000);

    std::size_t total = 0;
    bench::Report report;
    const auto measure = [&](const char* name, const std::vector<std::string_view>& texts, double limit) {
        const auto best = bench::BestInTurns(
            9, [&] { total += OneByOne(state, texts); },
            [&] {
                cry::DecipherBatch(
                    state, texts, [&](std::size_t, std::string_view plain) { total += plain.size(); }, 1);
            });
        report.Ratio(name, best.ours, best.base, limit);
    };
    measure("batch10k", some, 0.33);
    measure("grouped100k", all, 0.2);
    return total == 0 ? 1 : report.Status();
}
