#include <cmath>
#include <iostream>

#include "commands.h"
#include "crypto/systemrandom.h"
#include "sitting.h"

namespace bmr::tools {

void RunGenerate(const Options& options) {
    cry::SystemRandom random;
    const Secret password = confidential::GeneratePassword(options.recipe, random);
    if (password.empty()) throw Failure("No kind of character is left.");
    std::cout << password.view() << std::endl;
    // Apart from the password, so that a script can take it as it stands. Rounded down.
    std::cerr << std::floor(confidential::EntropyBits(options.recipe)) << " bits of entropy\n";
}

}  // namespace bmr::tools
