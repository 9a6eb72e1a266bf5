#include "store/bucketsearch.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <map>

#include "crypto/conversion.h"
#include "crypto/cry.h"

namespace bmr::store {
namespace {

constexpr int kDigits = 27;               ///< the letters, and all else before them
constexpr std::size_t kRankLetters = 10;  ///< as many as a double tells apart
constexpr std::size_t kGuessRows = 64;    ///< below, guesses are no better than even steps
constexpr std::size_t kAtOnce = 3;

int Digit(char c) {
    const int letter = (c | 0x20) - 'a' + 1;
    return letter >= 1 && letter < kDigits ? letter : 0;
}

/// Where the text stands among all texts, 0 to 1, if its letters were spread evenly. Only a guess: no order
/// depends on it.
double Rank(std::string_view text) {
    double rank = 0;
    double weight = 1;
    for (const char c : text.substr(0, kRankLetters))
        rank += Digit(c) * (weight /= kDigits);
    return rank;
}

struct Ranks {
    double low = 1;
    double high = 0;
};

/// Where each bucket begins and ends: the texts of one share what comes of their first two letters.
std::map<int, Ranks> RanksOfBuckets() {
    std::map<int, Ranks> buckets;
    for (int pair = 0; pair < kDigits * kDigits; ++pair) {
        const char letters[] = {static_cast<char>('@' + pair / kDigits),
                                static_cast<char>('@' + pair % kDigits)};
        const double rank = Rank({letters, 2});
        Ranks& ranks = buckets[conversion::NameKey({letters, 2}, false)];
        ranks.low = std::min(ranks.low, rank);
        ranks.high = std::max(ranks.high, rank + 1.0 / (kDigits * kDigits));
    }
    return buckets;
}

Ranks RanksOfBucket(std::string_view text) {
    static const std::map<int, Ranks> kBuckets = RanksOfBuckets();
    const auto found = kBuckets.find(conversion::NameKey(text, false));
    return found == kBuckets.end() ? Ranks{0, 1} : found->second;
}

class Search {
  public:
    Search(std::size_t rows, std::string_view text)
        : rank_(Rank(text)),
          high_(rows),
          left_(static_cast<std::size_t>(std::bit_width(rows)) + 1),
          ranks_(RanksOfBucket(text)) {}

    bool Done() const { return low_ == high_; }
    std::size_t low() const { return low_; }

    /// The places to look at next.
    std::vector<std::size_t> Places() const {
        const std::size_t rows = high_ - low_;
        if (rows > kGuessRows) {
            const std::size_t place = Guess();
            return {Affords(1, std::max(place - low_, high_ - place - 1)) ? place : low_ + rows / 2};
        }
        std::size_t count = std::min(kAtOnce, rows);
        while (count > 1 && !Affords(count, rows / (count + 1)))
            --count;
        std::vector<std::size_t> places;
        for (std::size_t i = 1; i <= count; ++i)
            places.push_back(low_ + (rows * i) / (count + 1));
        return places;
    }

    void Learn(std::size_t place, std::string_view found, bool notAbove) {
        if (notAbove) {
            low_ = place + 1;
            ranks_.low = Rank(found);
        } else {
            high_ = place;
            ranks_.high = Rank(found);
        }
    }
    void Spent(std::size_t texts) { left_ -= texts; }

  private:
    /// Whether `texts` may be deciphered now when at worst `rows` remain to be halved.
    bool Affords(std::size_t texts, std::size_t rows) const {
        return texts + static_cast<std::size_t>(std::bit_width(rows)) <= left_;
    }

    /// By the letters, moved towards the middle by as much as such guesses usually miss: then the smaller
    /// part is the one that remains.
    std::size_t Guess() const {
        const auto rows = static_cast<double>(high_ - low_);
        const double width = ranks_.high - ranks_.low;
        const double share = width > 0 ? std::clamp((rank_ - ranks_.low) / width, 0.0, 1.0) : 0.5;
        const double miss = std::sqrt(rows) / 2 + 1;
        const double moved = share * rows + (share < 0.5 ? miss : -miss);
        return low_ + static_cast<std::size_t>(std::clamp(moved, 0.0, rows - 1));
    }

    double rank_;
    std::size_t low_ = 0;
    std::size_t high_;
    std::size_t left_;  ///< texts that may still be deciphered
    Ranks ranks_;       ///< of what stands before and behind the part that remains
};

}  // namespace

std::size_t FindBucketPlace(std::size_t rows, std::string_view text, const TextsOfPlaces& textsOf) {
    Search search(rows, text);
    while (!search.Done()) {
        const std::vector<std::size_t> places = search.Places();
        std::vector<Bytes> texts = textsOf(places);
        search.Spent(places.size());
        bool below = true;
        for (std::size_t i = 0; i < places.size() && below; ++i) {
            below = texts[i] <= text;
            search.Learn(places[i], texts[i], below);
        }
        for (Bytes& found : texts)
            cry::WipeString(found);
    }
    return search.low();
}

}  // namespace bmr::store
