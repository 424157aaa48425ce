// SPDX-License-Identifier: Apache-2.0
#include "bus/rows.hpp"

#include <systemd/sd-bus.h>

#include <bit>
#include <cmath>
#include <cstdio>
#include <limits>
#include <locale>
#include <random>
#include <sstream>

// Compares the texts of numbers with those of a text stream, which the library
// does without.

namespace
{

using Limits = std::numeric_limits<double>;

constexpr int randomValues = 2'000'000;

class Comparison
{
  public:
    Comparison()
    {
        stream.imbue(std::locale::classic());
        stream.setf(std::ios::fixed, std::ios::floatfield);
        stream.precision(2);
    }

    void compare(double number)
    {
        morvath::BasicValue value{};
        value.type = SD_BUS_TYPE_DOUBLE;
        value.real = number;
        const auto text = morvath::renderPropertyValue(value);
        stream.str({});
        stream << number;
        ++values;
        if (stream.view() != text.get())
        {
            ++differences;
            std::printf("%a: %s\n", number, text.get());
        }
    }

    void compareBothSigns(double number)
    {
        compare(number);
        compare(-number);
    }

    int report() const
    {
        std::printf("%ld values, %ld of them different\n", values, differences);
        return differences != 0;
    }

  private:
    std::ostringstream stream;
    long values = 0;
    long differences = 0;
};

void compareWithNeighbours(Comparison& comparison, double number)
{
    comparison.compareBothSigns(number);
    comparison.compareBothSigns(std::nextafter(number, 0));
    comparison.compareBothSigns(std::nextafter(number, Limits::infinity()));
}

/** Every power of two, down to the subnormal ones, and of ten. */
void comparePowers(Comparison& comparison)
{
    for (int exponent = -1074; exponent <= 1023; ++exponent)
    {
        compareWithNeighbours(comparison, std::ldexp(1.0, exponent));
    }
    for (int exponent = -323; exponent <= 308; ++exponent)
    {
        compareWithNeighbours(comparison, std::pow(10, exponent));
    }
}

/** Eighths lie exactly between two texts, thousandths next to it. */
void compareTies(Comparison& comparison)
{
    for (int number = 0; number < 200'000; ++number)
    {
        compareWithNeighbours(comparison, number / 8.0);
        compareWithNeighbours(comparison, number / 1000.0);
    }
}

void compareRandom(Comparison& comparison)
{
    std::mt19937_64 random;
    std::uniform_real_distribution reading(-1e6, 1e6);
    for (int count = 0; count < randomValues; ++count)
    {
        comparison.compare(reading(random));
        comparison.compare(std::bit_cast<double>(random()));
    }
}

} // namespace

int main()
{
    Comparison comparison;
    for (const double number :
         {0.0, Limits::infinity(), Limits::quiet_NaN(), Limits::max(),
          Limits::min(), Limits::denorm_min()})
    {
        comparison.compareBothSigns(number);
    }
    comparePowers(comparison);
    compareTies(comparison);
    compareRandom(comparison);
    return comparison.report();
}
