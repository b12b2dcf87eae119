#pragma once

#include <QByteArray>
#include <QStringView>

/**
 * Records' keys are their paths below the root in key form (KeyFromNative: invalid bytes and
 * backslashes escaped), letter case kept, so that two different names never share a key.
 * Look-ups hash the folded key (fold(): lower case, accents composed) instead, so that one
 * index answers both an exact look-up and one without regard to case or composition. This
 * namespace hashes and compares keys without building the key text: most names are plain
 * ASCII, handled byte by byte; only a name with other bytes goes through the full Unicode key.
 * The hash is defined over the folded key's UTF-16 code units, so a key given as text and a
 * key made of a folder's key and a native name hash alike.
 */
namespace RecordKey {

/** A hash in progress; start from Seed, feed the key's parts in order, then finish(). */
using State = quint64;
inline constexpr State Seed = 0xcbf29ce484222325ull;

/** Feeds one code unit. */
inline State feed(State state, char16_t unit) {
    return (state ^ unit) * 0x100000001b3ull;
}
/** Feeds every code unit of \a text, which is already folded. */
State feed(State state, QStringView text);
/** Feeds the folded key form of the native name \a name. */
State feedName(State state, const QByteArray &name);
/** Appends the key form of the native name \a name to \a key, letter case kept. */
void appendName(QString &key, const QByteArray &name);

/** The 32-bit hash of a fed key. */
inline quint32 finish(State state) {
    state ^= state >> 29;
    state *= 0xbf58476d1ce4e5b9ull;
    return quint32(state >> 32);
}
/**
 * The folded form of a key: lower case and Unicode composed (NFC), so that a name spelt
 * with decomposed accents, as some systems write them, finds its composed twin.
 */
QString fold(QStringView key);
/** The hash of a whole key given as text (folded here). */
quint32 hash(QStringView key);

/**
 * True when the native names \a a and \a b have the same folded key: equal but for letter
 * case and the composition of accents.
 */
bool namesEqualIgnoringCase(const QByteArray &a, const QByteArray &b);
/** True when \a a and \a b are the same name once both are Unicode composed (NFC). */
bool namesEqualComposed(const QByteArray &a, const QByteArray &b);

} // namespace RecordKey
