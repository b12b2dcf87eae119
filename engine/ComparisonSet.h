#pragma once

#include <QString>

/**
 * Comparison bits: which properties of a pair are compared. A value is their sum; 0 compares
 * existence only.
 */
namespace ComparisonBits {
inline constexpr int Sizes = 1;
inline constexpr int Modified = 2;
inline constexpr int Created = 4;
inline constexpr int Accessed = 8;
inline constexpr int Attributes = 16;
inline constexpr int Checksums = 32;
inline constexpr int All = 63;
} // namespace ComparisonBits

/**
 * The words for a comparison set, "Compare File Sizes, Date Modified" for 3. The checksum is
 * named where it will run: first after sizes when \a doCRCLast is false, last otherwise.
 */
QString ComparisonDescription(int comparisons, bool doCRCLast);
