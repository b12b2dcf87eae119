#pragma once

#include "engine/FileTime.h"

#include <QByteArray>

/**
 * Dates in local time for the reports. localtime_r is used rather than QDateTime: Qt re-reads
 * the time-zone file for every local-time conversion, which made a report of many dates spend
 * most of its time there. Call tzset() once before a report's first date.
 */
namespace LocalDate {

/**
 * ISO 8601 with the local offset, the fraction only when there is one, to the nanosecond
 * ("2023-11-15T00:43:20.5+02:30" is written with nine digits); empty for no date.
 */
QByteArray iso(const FileTime &time);

/** "2023-11-15 00:43:20", to the second, for people; empty for no date. */
QByteArray readable(const FileTime &time);

} // namespace LocalDate
