#include "engine/ByteEscaping.h"

namespace {

int hexValue(char c) {
    if (c >= '0' && c <= '9')
        return c - '0';
    if (c >= 'a' && c <= 'f')
        return c - 'a' + 10;
    if (c >= 'A' && c <= 'F')
        return c - 'A' + 10;
    return -1;
}

} // namespace

void ByteEscaping::appendHex(QByteArray &out, uchar byte) {
    static const char digits[] = "0123456789abcdef";
    out += "\\x";
    out += digits[byte >> 4];
    out += digits[byte & 0xF];
}

QByteArray ByteEscaping::escape(QByteArrayView bytes) {
    QByteArray out;
    out.reserve(bytes.size() + 8);
    for (const char c : bytes) {
        const uchar byte = uchar(c);
        if (c == '\\') {
            out += "\\\\";
        } else if (byte >= 0x20 && byte < 0x7F) {
            out += c;
        } else {
            appendHex(out, byte);
        }
    }
    return out;
}

std::optional<QByteArray> ByteEscaping::unescape(QByteArrayView text) {
    QByteArray out;
    out.reserve(text.size());
    for (qsizetype i = 0; i < text.size(); ++i) {
        const uchar byte = uchar(text[i]);
        // A raw byte that escape() would have written escaped means the text was not made by it
        // (an editor that turned an escape into a tab, say): refused rather than guessed.
        if (byte < 0x20 || byte >= 0x7F)
            return std::nullopt;
        if (byte != '\\') {
            out += char(byte);
            continue;
        }
        if (i + 1 < text.size() && text[i + 1] == '\\') {
            out += '\\';
            ++i;
            continue;
        }
        if (i + 3 >= text.size() || text[i + 1] != 'x')
            return std::nullopt;
        const int high = hexValue(text[i + 2]);
        const int low = hexValue(text[i + 3]);
        if (high < 0 || low < 0)
            return std::nullopt;
        out += char(high * 16 + low);
        i += 3;
    }
    return out;
}
