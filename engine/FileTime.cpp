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
    const int offset = toDateTime().offsetFromUtc();
    return (double(m_seconds + offset) + m_nanoseconds / 1e9) / SecondsPerDay + OleEpochOffsetDays;
}

qint64 FileTime::secondBoundariesBetween(const FileTime &a, const FileTime &b) {
    // Seconds are already floored: the nanoseconds are never negative.
    return b.m_seconds - a.m_seconds;
}
