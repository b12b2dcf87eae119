#include "SettingsText.h"

#include <charconv>
#include <climits>
#include <cmath>
#include <limits>
#include <string>

namespace {

bool isDigit(QChar c) {
    return c >= QLatin1Char('0') && c <= QLatin1Char('9');
}

bool isBlank(QChar c) {
    return c == QLatin1Char(' ') || c == QLatin1Char('\t');
}

// Length of the number at the start of text, 0 when there is none. Only ASCII characters
// are accepted, so the span can be handed to from_chars as Latin-1.
qsizetype numberLength(QStringView text) {
    qsizetype i = 0;
    const qsizetype n = text.size();
    if (i < n && (text[i] == QLatin1Char('+') || text[i] == QLatin1Char('-')))
        ++i;
    qsizetype digits = 0;
    while (i < n && isDigit(text[i])) {
        ++i;
        ++digits;
    }
    if (i < n && text[i] == QLatin1Char('.')) {
        ++i;
        while (i < n && isDigit(text[i])) {
            ++i;
            ++digits;
        }
    }
    if (digits == 0)
        return 0;
    // An exponent counts only when digits follow it: "2e" is 2 followed by text.
    if (i < n && (text[i] == QLatin1Char('e') || text[i] == QLatin1Char('E'))) {
        qsizetype j = i + 1;
        if (j < n && (text[j] == QLatin1Char('+') || text[j] == QLatin1Char('-')))
            ++j;
        if (j < n && isDigit(text[j])) {
            while (j < n && isDigit(text[j]))
                ++j;
            i = j;
        }
    }
    return i;
}

// Parses exactly the number numberLength() found; false when it is out of double's range.
bool parseNumber(QStringView number, double &result) {
    std::string ascii = number.toLatin1().toStdString();
    // from_chars takes no leading '+'.
    if (!ascii.empty() && ascii.front() == '+')
        ascii.erase(0, 1);
    const auto [end, error] = std::from_chars(ascii.data(), ascii.data() + ascii.size(), result);
    return error == std::errc() && end == ascii.data() + ascii.size();
}

bool inIntRange(double value) {
    return std::isfinite(value) && value >= double(std::numeric_limits<int>::min()) &&
           value <= double(std::numeric_limits<int>::max());
}

// The whole text, without surrounding blanks, as a number; false when it is anything else.
bool wholeNumber(QStringView text, double &result) {
    const QStringView trimmed = text.trimmed();
    const qsizetype length = numberLength(trimmed);
    return length > 0 && length == trimmed.size() && parseNumber(trimmed, result);
}

} // namespace

namespace SettingsText {

double lenientNumber(QStringView text, double fallback) {
    qsizetype start = 0;
    while (start < text.size() && isBlank(text[start]))
        ++start;
    const QStringView rest = text.mid(start);
    const qsizetype length = numberLength(rest);
    if (length == 0)
        return 0;
    double value = 0;
    if (!parseNumber(rest.left(length), value) || !inIntRange(value))
        return fallback;
    return value;
}

int lenientInteger(QStringView text, int fallback) {
    const double value = lenientNumber(text, fallback);
    // Rounding can carry 2147483647.6 past the range; such a value is the fallback too.
    const double rounded = std::nearbyint(value);
    return inIntRange(rounded) ? int(rounded) : fallback;
}

float lenientFloat(QStringView text, float fallback) {
    return float(lenientNumber(text, double(fallback)));
}

int strictInteger(QStringView text, int fallback) {
    const QStringView trimmed = text.trimmed();
    qsizetype i = 0;
    if (i < trimmed.size() && (trimmed[i] == QLatin1Char('+') || trimmed[i] == QLatin1Char('-')))
        ++i;
    if (i == trimmed.size())
        return fallback;
    for (qsizetype j = i; j < trimmed.size(); ++j) {
        if (!isDigit(trimmed[j]))
            return fallback;
    }
    double value = 0;
    if (!parseNumber(trimmed, value) || !inIntRange(value))
        return fallback;
    return int(value);
}

bool toBoolean(QStringView text, bool fallback) {
    const QStringView trimmed = text.trimmed();
    if (trimmed.compare(QLatin1String("true"), Qt::CaseInsensitive) == 0)
        return true;
    if (trimmed.compare(QLatin1String("false"), Qt::CaseInsensitive) == 0)
        return false;
    double value = 0;
    if (wholeNumber(trimmed, value))
        return value != 0;
    return fallback;
}

bool canBePath(QStringView text) {
    // PATH_MAX counts bytes, and a character takes at least one byte in the file name.
    return text.size() < PATH_MAX && !text.contains(QChar(0));
}

QString booleanText(bool value) {
    return value ? QStringLiteral("True") : QStringLiteral("False");
}

QString integerText(int value) {
    return QString::number(value);
}

QString floatText(float value) {
    if (!std::isfinite(value))
        return QStringLiteral("0");
    char buffer[64];
    // to_chars without a precision gives the shortest text that reads back to the same
    // float, and it never uses the locale's decimal separator.
    const auto result = std::to_chars(buffer, buffer + sizeof buffer, value);
    return QString::fromLatin1(buffer, result.ptr - buffer);
}

} // namespace SettingsText
