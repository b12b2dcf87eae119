#pragma once

/**
 * The outcome of comparing a pair, carried by both records of the pair. When several
 * properties differ the engine stores the first difference found in its fixed order of tests.
 */
namespace DifferenceCode {
inline constexpr int FileDoesNotExist = -1;
inline constexpr int NotPaired = 0;
inline constexpr int Equal = 1;
inline constexpr int SourceMissing = 2;
inline constexpr int DestinationMissing = 3;
inline constexpr int Size = 4;
inline constexpr int Checksum = 5;
inline constexpr int Attributes = 6;
inline constexpr int SourceNewer = 7;
inline constexpr int DestinationNewer = 8;
inline constexpr int SourceCreatedLater = 9;
inline constexpr int DestinationCreatedLater = 10;
inline constexpr int SourceAccessedLater = 11;
inline constexpr int DestinationAccessedLater = 12;
/** The source's checksum could not be read (a read error, not a difference in content). */
inline constexpr int SourceUnreadable = 13;
/** The destination's checksum could not be read. */
inline constexpr int DestinationUnreadable = 14;
} // namespace DifferenceCode
