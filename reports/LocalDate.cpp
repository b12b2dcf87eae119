#include "reports/LocalDate.h"

#include <cstdio>
#include <cstdlib>
#include <ctime>

namespace {

/** The date and time to the second, with \a separator between them; false for no date. */
bool local(const FileTime &time, char separator, tm &broken, char (&text)[80], int &length) {
    if (time.isNull())
        return false;
    const time_t seconds = time_t(time.seconds());
    if (!::localtime_r(&seconds, &broken))
        return false;
    length = std::snprintf(text, sizeof text, "%04d-%02d-%02d%c%02d:%02d:%02d",
                           broken.tm_year + 1900, broken.tm_mon + 1, broken.tm_mday, separator,
                           broken.tm_hour, broken.tm_min, broken.tm_sec);
    return true;
}

} // namespace

QByteArray LocalDate::iso(const FileTime &time) {
    tm broken{};
    char text[80];
    int length = 0;
    if (!local(time, 'T', broken, text, length))
        return {};
    if (time.nanoseconds() != 0)
        length += std::snprintf(text + length, sizeof text - size_t(length), ".%09d",
                                int(time.nanoseconds()));
    const long minutes = std::labs(broken.tm_gmtoff) / 60;
    length += std::snprintf(text + length, sizeof text - size_t(length), "%c%02ld:%02ld",
                            broken.tm_gmtoff < 0 ? '-' : '+', minutes / 60, minutes % 60);
    return QByteArray(text, length);
}

QByteArray LocalDate::readable(const FileTime &time) {
    tm broken{};
    char text[80];
    int length = 0;
    return local(time, ' ', broken, text, length) ? QByteArray(text, length) : QByteArray();
}
