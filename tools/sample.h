#pragma once

#include <cstdint>
#include <random>
#include <span>
#include <string>
#include <string_view>

#include "base/random.h"
#include "base/serialdate.h"
#include "store/session.h"

namespace bmr::tools {

/// The same numbers for the same seed, on every machine: only what records say is drawn from it. Keys,
/// selectors and noise come from the system's source.
class SeededSource final : public RandomSource {
  public:
    explicit SeededSource(std::uint64_t seed) : engine_(seed) {}
    void Fill(std::span<std::uint8_t> out) override {
        for (auto& byte : out)
            byte = static_cast<std::uint8_t>(engine_());
    }
    double Uniform() override { return static_cast<double>(engine_() >> 11) * 0x1.0p-53; }

  private:
    std::mt19937_64 engine_;
};

struct SampleContext {
    store::Session& session;
    SeededSource& random;
    /// The day around which dates lie.
    Day today;
    /// Some of the texts in other scripts than Latin.
    bool unicode = false;
};

/// One entry of a list.
std::string_view Pick(SampleContext& context, std::span<const std::string_view> list);

/// True in `percent` of 100 draws.
bool Chance(SampleContext& context, int percent);

/// Between the two, both included.
std::int32_t Between(SampleContext& context, std::int32_t low, std::int32_t high);

/// One to three sentences of a household's notes.
std::string SampleNote(SampleContext& context);

/// The same text, or with `unicode` now and then one of another script.
std::string AnyScript(SampleContext& context, std::string text);

/// UTF-8 of this source to the page of category names.
Bytes Page(std::string_view utf8);

/// A section that can be filled: one file, sample_<section>.cpp, and one entry of `SampleSections`.
struct SampleSection {
    std::uint8_t section = 0;
    std::string_view name;
    /// Writes `records` records inside the caller's transaction. 0 or an error number.
    int (*fill)(SampleContext& context, std::int32_t records) = nullptr;
};

std::span<const SampleSection> SampleSections();

int FillAddresses(SampleContext& context, std::int32_t records);
int FillCalendar(SampleContext& context, std::int32_t records);
int FillTasks(SampleContext& context, std::int32_t records);
int FillMemos(SampleContext& context, std::int32_t records);
int FillConfidential(SampleContext& context, std::int32_t records);
int FillDiary(SampleContext& context, std::int32_t records);
/// Divides them among the three budgets.
int FillBudgets(SampleContext& context, std::int32_t records);

}  // namespace bmr::tools
