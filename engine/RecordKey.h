#pragma once

#include <QByteArray>
#include <QStringView>

/**
 * Hashing and comparing records' keys (lower-cased paths below the root, see
 * ComparisonFile::RelativeKey) without building the key text. Most names are plain ASCII, whose
 * key is the name's bytes lower-cased one by one; only a name with other bytes goes through the
 * full Unicode key. The hash is defined over the key's UTF-16 code units, so a key given as text
 * and a key made of a folder's key and a native name hash alike.
 */
namespace RecordKey {

/** A hash in progress; start from Seed, feed the key's parts in order, then finish(). */
using State = quint64;
inline constexpr State Seed = 0xcbf29ce484222325ull;

/** Feeds one code unit. */
inline State feed(State state, char16_t unit) {
    return (state ^ unit) * 0x100000001b3ull;
}
/** Feeds every code unit of \a text. */
State feed(State state, QStringView text);
/** Feeds the key form of the native name \a name (lower case, invalid bytes escaped). */
State feedName(State state, const QByteArray &name);
/** Appends the key form of the native name \a name to \a key. */
void appendName(QString &key, const QByteArray &name);

/** The 32-bit hash of a fed key. */
inline quint32 finish(State state) {
    state ^= state >> 29;
    state *= 0xbf58476d1ce4e5b9ull;
    return quint32(state >> 32);
}
/** The hash of a whole key given as text (already lower case). */
inline quint32 hash(QStringView key) {
    return finish(feed(Seed, key));
}

/** True when the native names \a a and \a b have the same key (equal but for letter case). */
bool namesEqual(const QByteArray &a, const QByteArray &b);

} // namespace RecordKey
