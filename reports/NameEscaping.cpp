#include "reports/NameEscaping.h"

#include "engine/ByteEscaping.h"
#include "engine/PathHelpers.h"

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
    return ByteEscaping::escape(name);
}

QString NameEscaping::readable(const QByteArray &name) {
    QByteArray out;
    out.reserve(name.size());
    qsizetype at = 0;
    while (at < name.size()) {
        const uchar byte = uchar(name.at(at));
        const qsizetype length = Utf8SequenceLength(name, at);
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
            ByteEscaping::appendHex(out, byte);
        at += printable ? length : 1;
    }
    return QString::fromUtf8(out);
}
