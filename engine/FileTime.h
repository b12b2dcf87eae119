#pragma once

#include <QDateTime>
#include <QtGlobal>

#include <compare>

/**
 * A file time at full precision (seconds and nanoseconds since the Unix epoch), or "no date"
 * (a time the file system does not keep, such as a missing birth time). "No date" is shown as
 * "", sorts as zeros and equals only another "no date".
 */
class FileTime {
public:
    /** "No date". */
    constexpr FileTime() = default;
    constexpr FileTime(qint64 seconds, qint32 nanoseconds)
        : m_seconds(seconds)
        , m_nanoseconds(nanoseconds) {}

    /** The time of \a dateTime (millisecond precision), or "no date" when it is invalid. */
    static FileTime fromDateTime(const QDateTime &dateTime);

    constexpr bool isNull() const { return m_nanoseconds < 0; }
    constexpr qint64 seconds() const { return m_seconds; }
    /** 0..999,999,999; -1 for "no date". */
    constexpr qint32 nanoseconds() const { return m_nanoseconds; }

    /** Local time, millisecond precision; invalid for "no date". */
    QDateTime toDateTime() const;
    /**
     * The local calendar date and time of day (whole seconds) and the offset from UTC in
     * seconds, without building a QDateTime: listings convert every row, and this is the cheap
     * way. False for "no date" or a time the C library cannot convert.
     */
    bool toLocal(QDate *date, QTime *time, qint64 *offsetFromUtc = nullptr) const;
    /** Days since 1899-12-30 in local time, the fraction being the time of day; 0 for "no date". */
    double toOleDate() const;

    /**
     * The number of whole-second boundaries between \a a and \a b (each floored to the second,
     * then subtracted): b - a. Both must be dates.
     */
    static qint64 secondBoundariesBetween(const FileTime &a, const FileTime &b);

    friend constexpr bool operator==(const FileTime &, const FileTime &) = default;
    /** "No date" orders before every date. */
    friend constexpr auto operator<=>(const FileTime &a, const FileTime &b) {
        if (a.isNull() || b.isNull())
            return !a.isNull() <=> !b.isNull();
        if (a.m_seconds != b.m_seconds)
            return a.m_seconds <=> b.m_seconds;
        return a.m_nanoseconds <=> b.m_nanoseconds;
    }

private:
    qint64 m_seconds = 0;
    qint32 m_nanoseconds = -1;
};
