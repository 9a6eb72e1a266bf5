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
    for (int i = 0; i < 100000; ++i)
        fields.push_back(cry::FieldCipher(state, 1, "Renew the library card of number " + std::to_string(i)));
    const std::vector<std::string_view> all(fields.begin(), fields.end());
    const std::vector<std::string_view> some(all.begin(), all.begin() + 10000);

    std::size_t total = 0;
    const auto batch = [&](const std::vector<std::string_view>& texts) {
        cry::DecipherBatch(
            state, texts, [&](std::size_t, std::string_view plain) { total += plain.size(); }, 1);
    };
    bench::Report report;
    const double base = bench::BestOf(9, [&] { total += OneByOne(state, some); });
    report.Ratio("batch10k", bench::BestOf(9, [&] { batch(some); }), base, 0.33);
    const double base100 = bench::BestOf(9, [&] { total += OneByOne(state, all); });
    report.Ratio("grouped100k", bench::BestOf(9, [&] { batch(all); }), base100, 0.2);
    return total == 0 ? 1 : report.Status();
}
