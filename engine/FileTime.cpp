#include "engine/FileTime.h"

#include <ctime>

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

bool FileTime::toLocal(QDate *date, QTime *time, qint64 *offsetFromUtc) const {
    if (isNull())
        return false;
    // localtime_r reads the zone once per process, unlike a local QDateTime, which asks the C
    // library to re-check the zone file on every conversion.
    const time_t seconds = time_t(m_seconds);
    tm local{};
    if (!localtime_r(&seconds, &local))
        return false;
    if (date)
        *date = QDate(local.tm_year + 1900, local.tm_mon + 1, local.tm_mday);
    if (time)
        *time = QTime(local.tm_hour, local.tm_min, qMin(local.tm_sec, 59));
    if (offsetFromUtc)
        *offsetFromUtc = local.tm_gmtoff;
    return true;
}

double FileTime::toOleDate() const {
    qint64 offset = 0;
    if (!toLocal(nullptr, nullptr, &offset))
        return 0.0;
    // Whole days and the time of day apart, so the fraction keeps its digits.
    const qint64 local = m_seconds + offset;
    const qint64 perDay = qint64(SecondsPerDay);
    const qint64 days = local >= 0 ? local / perDay : -((-local + perDay - 1) / perDay);
    const double timeOfDay = double(local - days * perDay) + m_nanoseconds / 1e9;
    return OleEpochOffsetDays + double(days) + timeOfDay / SecondsPerDay;
}

qint64 FileTime::secondBoundariesBetween(const FileTime &a, const FileTime &b) {
    // Seconds are already floored: the nanoseconds are never negative.
    return b.m_seconds - a.m_seconds;
}
