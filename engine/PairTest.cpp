#include "engine/PairTest.h"

bool datesDiffer(const FileTime &a, const FileTime &b, bool includeSlack) {
    if (a.isNull() || b.isNull())
        return a.isNull() != b.isNull();
    if (!includeSlack)
        return a != b;
    const qint64 boundaries = FileTime::secondBoundariesBetween(a, b);
    return boundaries > 2 || boundaries < -2;
}
