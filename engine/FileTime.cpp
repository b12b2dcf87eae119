#include "engine/FileTime.h"

#include <QTimeZone>

namespace {
constexpr double SecondsPerDay = 86400.0;
/** Days from 1899-12-30 to 1970-01-01. */
constexpr double OleEpochOffsetDays = 25569.0;
} // namespace

FileTime FileTime::fromDateTime(const QDateTime &dateTime) {
    if (!dateTime.isValid())
        return {};
    const qint64 ms = dateTime.toMSecsSinceEpoch();
    const qint64 seconds = ms >= 0 ? ms / 1000 : -((-ms + 999) / 1000);
    return FileTime(seconds, qint32((ms - seconds * 1000) * 1000000));
}

QDateTime FileTime::toDateTime() const {
    if (isNull())
        return {};
    return QDateTime::fromMSecsSinceEpoch(m_seconds * 1000 + m_nanoseconds / 1000000);
}

double FileTime::toOleDate() const {
    if (isNull())
        return 0.0;
    // Whole days and the time of day apart, so the fraction keeps its digits.
    const qint64 local = m_seconds + toDateTime().offsetFromUtc();
    const qint64 perDay = qint64(SecondsPerDay);
    const qint64 days = local >= 0 ? local / perDay : -((-local + perDay - 1) / perDay);
    const double timeOfDay = double(local - days * perDay) + m_nanoseconds / 1e9;
    return OleEpochOffsetDays + double(days) + timeOfDay / SecondsPerDay;
}

qint64 FileTime::secondBoundariesBetween(const FileTime &a, const FileTime &b) {
    // Seconds are already floored: the nanoseconds are never negative.
    return b.m_seconds - a.m_seconds;
}
