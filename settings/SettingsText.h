#pragma once

#include <QString>
#include <QStringView>

/**
 * The conversions between stored text and values. Every reader of a setting uses one of
 * these, so that a file edited by hand reads the same way everywhere: nonsense falls back to
 * the key's default, never to an exception or a giant value.
 */
namespace SettingsText {

/**
 * Lenient number: leading blanks are skipped, then an optional sign, digits, an optional
 * '.' with digits and an optional exponent are read; the rest of the text is ignored ("12px"
 * is 12). Text with no leading number gives 0. A result that is not finite or lies outside
 * the 32-bit integer range gives \a fallback.
 */
double lenientNumber(QStringView text, double fallback);

/** lenientNumber() rounded to a whole number (half to even). */
int lenientInteger(QStringView text, int fallback);

/** lenientNumber() as a single-precision value. */
float lenientFloat(QStringView text, float fallback);

/**
 * Strict integer: the text without surrounding blanks must be a whole decimal number (an
 * optional sign and digits) in the 32-bit range; anything else gives \a fallback.
 */
int strictInteger(QStringView text, int fallback);

/**
 * Boolean: "True" or "False" in any letter case, or a number (non-zero is true); anything
 * else gives \a fallback.
 */
bool toBoolean(QStringView text, bool fallback);

/**
 * Whether \a text could name a file: no NUL character and no longer than the system's path
 * limit. A longer value (a hand-edited megabyte of text) is no path at all.
 */
bool canBePath(QStringView text);

/** "True" or "False". */
QString booleanText(bool value);

/** The decimal text of \a value ("-1", "65536"). */
QString integerText(int value);

/**
 * The shortest text that reads back as the same float, with '.' as the decimal point
 * whatever the locale ("200", "87.5", "0.1"). A value that is not finite is written as "0".
 */
QString floatText(float value);

} // namespace SettingsText
