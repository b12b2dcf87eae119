#include "cli/NameEscaping.h"

namespace {

/**
 * The length of the valid UTF-8 sequence that starts at \a at, or 0 when the bytes there are
 * not one (stray continuation bytes, overlong forms, surrogates, values above U+10FFFF, a
 * sequence cut short by the end of the name).
 */
qsizetype utf8SequenceLength(const QByteArray &text, qsizetype at) {
    const auto byte = [&text](qsizetype i) { return uchar(text.at(i)); };
    const uchar lead = byte(at);
    if (lead < 0x80)
        return 1;
    qsizetype length = 0;
    uchar low = 0x80;
    uchar high = 0xBF;
    if (lead >= 0xC2 && lead <= 0xDF) {
        length = 2;
    } else if (lead >= 0xE0 && lead <= 0xEF) {
        length = 3;
        if (lead == 0xE0)
            low = 0xA0; // overlong
        else if (lead == 0xED)
            high = 0x9F; // surrogates
    } else if (lead >= 0xF0 && lead <= 0xF4) {
        length = 4;
        if (lead == 0xF0)
            low = 0x90; // overlong
        else if (lead == 0xF4)
            high = 0x8F; // above U+10FFFF
    } else {
        return 0;
    }
    if (at + length > text.size())
        return 0;
    if (byte(at + 1) < low || byte(at + 1) > high)
        return 0;
    for (qsizetype i = 2; i < length; ++i) {
        if (byte(at + i) < 0x80 || byte(at + i) > 0xBF)
            return 0;
    }
    return length;
}

void appendHex(QByteArray &out, uchar byte) {
    static const char digits[] = "0123456789abcdef";
    out += "\\x";
    out += digits[byte >> 4];
    out += digits[byte & 0xF];
}

} // namespace

QByteArray NameEscaping::tsv(const QByteArray &name) {
    if (!name.contains('\t') && !name.contains('\n') && !name.contains('\\'))
        return name;
    QByteArray out;
    out.reserve(name.size() + 8);
    for (const char c : name) {
        if (c == '\t')
            out += "\\t";
        else if (c == '\n')
            out += "\\n";
        else if (c == '\\')
            out += "\\\\";
        else
            out += c;
    }
    return out;
}

QByteArray NameEscaping::bytes(const QByteArray &name) {
    QByteArray out;
    out.reserve(name.size() * 2);
    for (const char c : name) {
        const uchar byte = uchar(c);
        if (c == '\\')
            out += "\\\\";
        else if (byte >= 0x20 && byte < 0x7F)
            out += c;
        else
            appendHex(out, byte);
    }
    return out;
}

QString NameEscaping::readable(const QByteArray &name) {
    QByteArray out;
    out.reserve(name.size());
    qsizetype at = 0;
    while (at < name.size()) {
        const uchar byte = uchar(name.at(at));
        const qsizetype length = utf8SequenceLength(name, at);
        const bool printable = length > 0 && byte >= 0x20 && byte != 0x7F;
        if (byte == '\\')
            out += "\\\\";
        else if (printable)
            out.append(name.constData() + at, length);
        else if (byte == '\t')
            out += "\\t";
        else if (byte == '\n')
            out += "\\n";
        else
            appendHex(out, byte);
        at += printable ? length : 1;
    }
    return QString::fromUtf8(out);
}

bool NameEscaping::isValidUtf8(const QByteArray &name) {
    for (qsizetype at = 0; at < name.size();) {
        const qsizetype length = utf8SequenceLength(name, at);
        if (length == 0)
            return false;
        at += length;
    }
    return true;
}
