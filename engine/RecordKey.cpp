#include "engine/RecordKey.h"

#include "engine/PathHelpers.h"

#include <QString>

namespace {

/** True when every byte is ASCII and none needs an escape: the key is the bytes themselves. */
bool isPlain(const QByteArray &name) {
    for (const char c : name) {
        if (static_cast<unsigned char>(c) >= 0x80 || c == '\\')
            return false;
    }
    return true;
}

constexpr char16_t asciiLower(unsigned char c) {
    return c >= 'A' && c <= 'Z' ? char16_t(c + ('a' - 'A')) : char16_t(c);
}

QString nameKey(const QByteArray &name) {
    return RecordKey::fold(KeyFromNative(name));
}

} // namespace

RecordKey::State RecordKey::feed(State state, QStringView text) {
    for (const QChar c : text)
        state = feed(state, c.unicode());
    return state;
}

QString RecordKey::fold(QStringView key) {
    return key.toString().toLower().normalized(QString::NormalizationForm_C);
}

quint32 RecordKey::hash(QStringView key) {
    return finish(feed(Seed, fold(key)));
}

bool RecordKey::namesEqualComposed(const QByteArray &a, const QByteArray &b) {
    return a == b || (!isPlain(a) && !isPlain(b) &&
                      KeyFromNative(a).normalized(QString::NormalizationForm_C) ==
                          KeyFromNative(b).normalized(QString::NormalizationForm_C));
}

RecordKey::State RecordKey::feedName(State state, const QByteArray &name) {
    if (!isPlain(name))
        return feed(state, nameKey(name));
    for (const char c : name)
        state = feed(state, asciiLower(static_cast<unsigned char>(c)));
    return state;
}

void RecordKey::appendName(QString &key, const QByteArray &name) {
    if (!isPlain(name)) {
        key += KeyFromNative(name);
        return;
    }
    key += QLatin1String(name.constData(), name.size());
}

bool RecordKey::namesEqualIgnoringCase(const QByteArray &a, const QByteArray &b) {
    // The two names of a pair are nearly always spelt alike.
    if (a == b)
        return true;
    const qsizetype common = qMin(a.size(), b.size());
    for (qsizetype i = 0; i < common; ++i) {
        const auto ca = static_cast<unsigned char>(a[i]);
        const auto cb = static_cast<unsigned char>(b[i]);
        // Up to here both keys have one code unit per byte; past a byte that is not ASCII (or
        // an escaped backslash) the Unicode key decides (a Kelvin sign lower-cases to "k").
        if ((ca | cb) >= 0x80 || ca == '\\' || cb == '\\')
            return nameKey(a) == nameKey(b);
        if (asciiLower(ca) != asciiLower(cb))
            return false;
    }
    if (a.size() == b.size())
        return true;
    // Every byte left over adds at least one code unit to the longer name's key.
    return false;
}
