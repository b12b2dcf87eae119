#pragma once

#include <QByteArray>
#include <QString>

/**
 * Ways of writing a file name's own bytes (any bytes but "/" and NUL, not necessarily UTF-8)
 * so that each output format stays unambiguous.
 */
namespace NameEscaping {

/** For tab-separated lines: tab, newline and backslash as "\t", "\n" and "\\"; bytes as they are.
 */
QByteArray tsv(const QByteArray &name);

/**
 * Pure printable ASCII that gives back the exact bytes: backslash as "\\", every byte outside
 * printable ASCII as "\xHH" (two lower-case hexadecimal digits).
 */
QByteArray bytes(const QByteArray &name);

/**
 * For people: valid UTF-8 shown as text; bytes that are not valid UTF-8 and control characters
 * as "\xHH" (tab and newline as "\t" and "\n"), so that a name never breaks a row, and a
 * backslash as "\\", so that two different names never read the same.
 */
QString readable(const QByteArray &name);

} // namespace NameEscaping
