#include "confidential/generator.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <string>
#include <vector>

namespace bmr::confidential {
namespace {

constexpr std::string_view kLower = "abcdefghijklmnopqrstuvwxyz";
constexpr std::string_view kUpper = "ABCDEFGHIJKLMNOPQRSTUVWXYZ";
constexpr std::string_view kDigits = "0123456789";
constexpr std::string_view kPunctuation = "!#$%&()*+,-./:;<=>?@[]^_{|}~";
constexpr std::string_view kMistakable = "0Oo1lI|";

std::string Cleared(std::string_view characters, bool readable) {
    std::string out(characters);
    if (readable) std::erase_if(out, [](char c) { return kMistakable.find(c) != std::string_view::npos; });
    return out;
}

std::vector<std::string> ClassesOf(const PasswordRecipe& recipe) {
    std::vector<std::string> classes;
    if (recipe.lower) classes.push_back(Cleared(kLower, recipe.readable));
    if (recipe.upper) classes.push_back(Cleared(kUpper, recipe.readable));
    if (recipe.digits) classes.push_back(Cleared(kDigits, recipe.readable));
    if (recipe.punctuation) classes.push_back(Cleared(kPunctuation, recipe.readable));
    return classes;
}

int LengthOf(const PasswordRecipe& recipe) {
    return std::clamp(recipe.length, 4, 128);
}
int WordsOf(const PasswordRecipe& recipe) {
    return std::clamp(recipe.words, 2, 20);
}

bool HoldsEveryClass(std::string_view text, const std::vector<std::string>& classes) {
    return std::all_of(classes.begin(), classes.end(), [text](const std::string& characters) {
        return text.find_first_of(characters) != std::string_view::npos;
    });
}

}  // namespace

std::uint32_t UniformBelow(RandomSource& random, std::uint32_t count) {
    if (count < 2) return 0;
    const std::uint32_t mask = std::bit_ceil(count) - 1;
    for (;;) {
        std::array<std::uint8_t, 4> bytes{};
        random.Fill(bytes);
        const std::uint32_t drawn = (std::uint32_t{bytes[0]} | std::uint32_t{bytes[1]} << 8 |
                                     std::uint32_t{bytes[2]} << 16 | std::uint32_t{bytes[3]} << 24) &
                                    mask;
        WipeMemory(bytes.data(), bytes.size());
        if (drawn < count) return drawn;
    }
}

std::string_view AlphabetOf(const PasswordRecipe& recipe, std::string& storage) {
    storage.clear();
    for (const std::string& characters : ClassesOf(recipe))
        storage += characters;
    return storage;
}

Secret GeneratePassword(const PasswordRecipe& recipe, RandomSource& random) {
    Secret out;
    if (recipe.words > 0) {
        const auto words = WordList();
        for (int i = 0; i < WordsOf(recipe); ++i) {
            if (i > 0) out.Append(std::string_view(&recipe.separator, 1));
            out.Append(words[UniformBelow(random, static_cast<std::uint32_t>(words.size()))]);
        }
        return out;
    }
    std::string storage;
    const std::string_view alphabet = AlphabetOf(recipe, storage);
    if (alphabet.empty()) return out;
    const auto classes = ClassesOf(recipe);
    // Drawn whole until every class occurs: mending single places would favour some passwords.
    do {
        out.Resize(static_cast<std::size_t>(LengthOf(recipe)));
        for (std::uint8_t& place : out.span())
            place = static_cast<std::uint8_t>(
                alphabet[UniformBelow(random, static_cast<std::uint32_t>(alphabet.size()))]);
    } while (!HoldsEveryClass(out.view(), classes));
    return out;
}

double EntropyBits(const PasswordRecipe& recipe) {
    if (recipe.words > 0) return WordsOf(recipe) * std::log2(static_cast<double>(WordList().size()));
    const auto classes = ClassesOf(recipe);
    std::size_t all = 0;
    for (const std::string& characters : classes)
        all += characters.size();
    if (all == 0) return 0;
    // Texts that hold every class, by inclusion and exclusion over the classes left out, as a share of all
    // texts.
    const int length = LengthOf(recipe);
    double share = 0;
    for (unsigned left = 0; left < (1U << classes.size()); ++left) {
        std::size_t size = all;
        for (std::size_t i = 0; i < classes.size(); ++i)
            if ((left >> i) & 1U) size -= classes[i].size();
        const double part = std::pow(static_cast<double>(size) / static_cast<double>(all), length);
        share += std::popcount(left) % 2 == 0 ? part : -part;
    }
    return length * std::log2(static_cast<double>(all)) + std::log2(share);
}

}  // namespace bmr::confidential
