#pragma once

namespace bmr {

/// Error numbers that are the negated number of the message to show: what the logic itself refuses, beside
/// the engine's own numbers, which are positive.
struct MessageNumber {
    static constexpr int UpdateImpossible = -16;  ///< the row is another section's
    static constexpr int NoRecord = -31;          ///< the row is gone
    static constexpr int PassphraseTooShort = -40;
    static constexpr int InputError = -43;    ///< an entry with a fault, or too long to store
    static constexpr int NoFreeNumber = -52;  ///< as many categories as there can be
    static constexpr int NoSuchUser = -85;    ///< nobody has this passphrase
    static constexpr int Cancelled = -98;     ///< a prompt was given up: nothing is shown
    static constexpr int FileNotFound = -134;
};

}  // namespace bmr
