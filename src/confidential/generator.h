#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "base/random.h"
#include "crypto/secret.h"

namespace bmr::confidential {

/// What a generated password is made of.
struct PasswordRecipe {
    int length = 20;  ///< characters, 4 to 128; used without `words`
    bool lower = true;
    bool upper = true;
    bool digits = true;
    bool punctuation = true;
    bool readable = false;  ///< leaves out what is easily mistaken: 0 O o 1 l I |
    int words = 0;          ///< above 0: that many words of the list (2 to 20), in place of characters
    char separator = '-';   ///< between the words
};

/// The characters that a recipe draws from, each once.
std::string_view AlphabetOf(const PasswordRecipe& recipe, std::string& storage);

/// A password by the recipe, from strong random bytes without bias. With several classes each occurs at least
/// once. Empty when the recipe has no class at all.
Secret GeneratePassword(const PasswordRecipe& recipe, RandomSource& random);

/// Bits of entropy of what `GeneratePassword` gives.
double EntropyBits(const PasswordRecipe& recipe);

/// The bundled words: short, common, each once.
std::span<const std::string_view> WordList();

/// Uniform below `count` (1 to 2^31), by rejection: no value comes more often than another.
std::uint32_t UniformBelow(RandomSource& random, std::uint32_t count);

}  // namespace bmr::confidential
