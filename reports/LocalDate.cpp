#include "reports/LocalDate.h"

#include <cstdio>
#include <cstdlib>
#include <ctime>

namespace {

/** The date and time to the second, with \a separator between them; 0 for no date. */
int format(const FileTime &time, char separator, tm &broken, char (&text)[80]) {
    if (time.isNull())
        return 0;
    const time_t seconds = time_t(time.seconds());
    if (!::localtime_r(&seconds, &broken))
        return 0;
    return std::snprintf(text, sizeof text, "%04d-%02d-%02d%c%02d:%02d:%02d", broken.tm_year + 1900,
                         broken.tm_mon + 1, broken.tm_mday, separator, broken.tm_hour,
                         broken.tm_min, broken.tm_sec);
}

} // namespace

bool LocalDate::appendIso(QByteArray &out, const FileTime &time) {
    tm broken{};
    char text[80];
    int length = format(time, 'T', broken, text);
    if (length == 0)
        return false;
    if (time.nanoseconds() != 0)
        length += std::snprintf(text + length, sizeof text - size_t(length), ".%09d",
                                int(time.nanoseconds()));
    const long minutes = std::labs(broken.tm_gmtoff) / 60;
    length += std::snprintf(text + length, sizeof text - size_t(length), "%c%02ld:%02ld",
                            broken.tm_gmtoff < 0 ? '-' : '+', minutes / 60, minutes % 60);
    out.append(text, length);
    return true;
}

bool LocalDate::appendReadable(QByteArray &out, const FileTime &time) {
    tm broken{};
    char text[80];
    const int length = format(time, ' ', broken, text);
    out.append(text, length);
    return length != 0;
}
