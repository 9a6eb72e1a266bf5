#pragma once

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <ctime>
#include <string>

namespace bmr::bench {

/// Seconds of the best of `runs` calls: what disturbs a run can only make it slower.
template <class Work>
double BestOf(int runs, Work work) {
    double best = 1e300;
    for (int run = 0; run < runs; ++run) {
        const auto begin = std::chrono::steady_clock::now();
        work();
        const std::chrono::duration<double> took = std::chrono::steady_clock::now() - begin;
        best = std::min(best, took.count());
    }
    return best;
}

/// Best processor seconds of two pieces of work for one core, taken in turns: the ratio then stands even
/// while other programs use the machine.
struct BestPair {
    double base = 1e300;
    double ours = 1e300;
};
template <class Base, class Ours>
BestPair BestInTurns(int runs, Base base, Ours ours) {
    const auto seconds = [](auto& work) {
        const std::clock_t begin = std::clock();
        work();
        return static_cast<double>(std::clock() - begin) / CLOCKS_PER_SEC;
    };
    BestPair best;
    for (int run = 0; run < runs; ++run) {
        best.base = std::min(best.base, seconds(base));
        best.ours = std::min(best.ours, seconds(ours));
    }
    return best;
}

/// Prints one figure and keeps whether any was over its limit.
class Report {
  public:
    void Ratio(const std::string& name, double ours, double base, double limit) {
        const double ratio = ours / base;
        const bool over = ratio > limit;
        failed_ = failed_ || over;
        std::printf("%-52s %10.3f ms  base %10.3f ms  ratio %6.3f  limit %5.2f  %s\n", name.c_str(),
                    ours * 1e3, base * 1e3, ratio, limit, over ? "OVER" : "ok");
    }
    void Figure(const std::string& name, double value, double limit, const char* unit) {
        const bool over = value > limit;
        failed_ = failed_ || over;
        std::printf("%-52s %10.3f %s  limit %.3f  %s\n", name.c_str(), value, unit, limit,
                    over ? "OVER" : "ok");
    }
    /// Exit status: 1 when a figure was over its limit.
    int Status() const { return failed_ ? 1 : 0; }

  private:
    bool failed_ = false;
};

}  // namespace bmr::bench
