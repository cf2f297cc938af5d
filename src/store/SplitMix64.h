#pragma once

#include "store/services.h"

namespace varnholt {

/// SplitMix64 (Steele, Lea and Flood, "Fast splittable pseudorandom number generators",
/// 2014); 53 random bits a number. Several times as fast as the standard library's
/// generators of that width, and a draw from a large library takes millions of numbers.
class SplitMix64 final : public RandomGenerator
{
public:
    void seed(std::uint64_t value) override { state_ = value; }
    [[nodiscard]] std::uint64_t state() const override { return state_; }
    [[nodiscard]] double next() override
    {
        state_ += 0x9e3779b97f4a7c15;
        std::uint64_t mixed = state_;
        mixed = (mixed ^ (mixed >> 30)) * 0xbf58476d1ce4e5b9;
        mixed = (mixed ^ (mixed >> 27)) * 0x94d049bb133111eb;
        mixed ^= mixed >> 31;
        // Signed, because that conversion is a single instruction.
        return static_cast<double>(static_cast<std::int64_t>(mixed >> 11)) * 0x1p-53;
    }
    void fill(std::span<double> numbers) override
    {
        for (double& number : numbers) {
            number = next();
        }
    }

private:
    std::uint64_t state_ = 0;
};

} // namespace varnholt
