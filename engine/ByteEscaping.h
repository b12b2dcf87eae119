#pragma once

#include <QByteArray>
#include <QByteArrayView>

#include <optional>

/**
 * Any bytes as pure printable ASCII that gives them back exactly: a name that is not valid
 * UTF-8, or that holds a tab or a newline, survives a line-based text format.
 */
namespace ByteEscaping {

/**
 * Backslash as "\\", every byte outside printable ASCII (tab and newline included) as "\xHH"
 * with two lower-case hexadecimal digits; the rest, blanks included, as it is.
 */
QByteArray escape(QByteArrayView bytes);

/** Appends \a byte as escape() writes a byte outside printable ASCII: "\xHH". */
void appendHex(QByteArray &out, uchar byte);

/** The bytes escape() made \a text from; nothing when \a text could not have come from it. */
std::optional<QByteArray> unescape(QByteArrayView text);

} // namespace ByteEscaping
