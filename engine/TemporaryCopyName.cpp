#include "engine/TemporaryCopyName.h"

#include <QRandomGenerator>

#include <cstring>

namespace TemporaryCopyName {

namespace {
constexpr char Letters[] = "abcdefghijklmnopqrstuvwxyz0123456789";
constexpr std::size_t PrefixLength = sizeof Prefix - 1;
} // namespace

QByteArray make() {
    QByteArray name(Prefix);
    for (int i = 0; i < RandomLength; ++i)
        name += Letters[QRandomGenerator::global()->bounded(int(sizeof Letters - 1))];
    return name;
}

bool isTemporaryCopyName(const char *name) {
    // The full form, not the prefix alone, so that a user's own file that merely starts
    // alike is still listed.
    if (std::strncmp(name, Prefix, PrefixLength) != 0 ||
        std::strlen(name) != PrefixLength + RandomLength)
        return false;
    for (const char *c = name + PrefixLength; *c; ++c) {
        if (!std::strchr(Letters, *c))
            return false;
    }
    return true;
}

} // namespace TemporaryCopyName
