#pragma once

#include "engine/FileTime.h"

#include <QByteArray>

/**
 * Dates in local time for the reports, appended to what is being written so that a report of
 * many dates makes no string for each. localtime_r is used rather than QDateTime: Qt re-reads
 * the time-zone file for every local-time conversion, which made a report of many dates spend
 * most of its time there. Call tzset() once before a report's first date.
 */
namespace LocalDate {

/**
 * Appends ISO 8601 with the local offset, the fraction only when there is one, to the
 * nanosecond ("2023-11-15T00:43:20.500000000+02:30"); false, appending nothing, for no date.
 */
bool appendIso(QByteArray &out, const FileTime &time);

/** Appends "2023-11-15 00:43:20", to the second, for people; false for no date. */
bool appendReadable(QByteArray &out, const FileTime &time);

} // namespace LocalDate
