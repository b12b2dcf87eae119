#include "engine/PathHelpers.h"

#include <QHash>
#include <QMutex>

qsizetype Utf8SequenceLength(const QByteArray &text, qsizetype at) {
    const auto *p = reinterpret_cast<const unsigned char *>(text.constData()) + at;
    const qsizetype left = text.size() - at;
    const unsigned char c = p[0];
    int length;
    unsigned minimum;
    unsigned code;
    if (c < 0x80)
        return 1;
    if ((c & 0xE0) == 0xC0) {
        length = 2;
        code = c & 0x1F;
        minimum = 0x80;
    } else if ((c & 0xF0) == 0xE0) {
        length = 3;
        code = c & 0x0F;
        minimum = 0x800;
    } else if ((c & 0xF8) == 0xF0) {
        length = 4;
        code = c & 0x07;
        minimum = 0x10000;
    } else {
        return 0;
    }
    if (left < length)
        return 0;
    for (int i = 1; i < length; ++i) {
        if ((p[i] & 0xC0) != 0x80)
            return 0;
        code = (code << 6) | (p[i] & 0x3F);
    }
    // Overlong forms, surrogates and values past U+10FFFF are not valid UTF-8.
    if (code < minimum || code > 0x10FFFF || (code >= 0xD800 && code <= 0xDFFF))
        return 0;
    return length;
}

bool IsValidUtf8(const QByteArray &text) {
    for (qsizetype at = 0; at < text.size();) {
        const qsizetype length = Utf8SequenceLength(text, at);
        if (length == 0)
            return false;
        at += length;
    }
    return true;
}

QString TranslatePath(const QString &path, const QString &fromRoot, const QString &toRoot,
                      bool lowerCase) {
    const QString from = AddTrailingSlash(fromRoot);
    QString result = path;
    const qsizetype at = result.indexOf(from, 0, Qt::CaseInsensitive);
    if (at >= 0)
        result.replace(at, from.size(), AddTrailingSlash(toRoot));
    return lowerCase ? result.toLower() : result;
}

QString AddTrailingSlash(const QString &path) {
    return path.endsWith(QLatin1Char('/')) ? path : path + QLatin1Char('/');
}

QString RemoveTrailingSlash(const QString &path) {
    return path.endsWith(QLatin1Char('/')) ? path.chopped(1) : path;
}

bool IsValidFileObject(const ::FileObject &file) {
    return !file.isNull() && file.Stat().isValid();
}

QString DisplayFromNative(const QByteArray &native) {
    return QString::fromUtf8(native);
}

QString KeyFromNative(const QByteArray &native) {
    const auto *bytes = reinterpret_cast<const unsigned char *>(native.constData());
    const qsizetype size = native.size();
    qsizetype i = 0;
    while (i < size && bytes[i] < 0x80 && bytes[i] != '\\')
        ++i;
    if (i == size)
        return QString::fromLatin1(native);

    // A backslash is doubled, so that the escape of a byte never reads like a name that
    // spells it out: two different names never share a key.
    QString key = QString::fromLatin1(native.constData(), i);
    qsizetype runStart = i;
    const auto flush = [&] {
        key += QString::fromUtf8(native.constData() + runStart, i - runStart);
    };
    while (i < size) {
        if (bytes[i] == '\\') {
            flush();
            key += QLatin1String("\\\\");
            runStart = ++i;
            continue;
        }
        const qsizetype length = Utf8SequenceLength(native, i);
        if (length > 0) {
            i += length;
            continue;
        }
        flush();
        key += QLatin1String("\\x") +
               QString::number(bytes[i], 16).toUpper().rightJustified(2, QLatin1Char('0'));
        runStart = ++i;
    }
    flush();
    return key;
}

namespace {

/** The bytes of paths that are not valid UTF-8, by their display form. */
struct RememberedPaths {
    QMutex mutex;
    QHash<QString, QByteArray> native;
};

RememberedPaths &rememberedPaths() {
    static RememberedPaths paths;
    return paths;
}

} // namespace

QByteArray NativeFromPath(const QString &path) {
    // Only a text with a replacement character can stand for remembered bytes.
    if (path.contains(QChar::ReplacementCharacter)) {
        RememberedPaths &paths = rememberedPaths();
        const QMutexLocker lock(&paths.mutex);
        const auto found = paths.native.constFind(path);
        if (found != paths.native.cend())
            return *found;
    }
    return path.toUtf8();
}

QString PathTextFromNative(const QByteArray &native) {
    const QString text = DisplayFromNative(native);
    if (text.toUtf8() != native) {
        RememberedPaths &paths = rememberedPaths();
        const QMutexLocker lock(&paths.mutex);
        paths.native.insert(text, native);
    }
    return text;
}
