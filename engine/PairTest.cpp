#include "engine/PairTest.h"

bool datesDiffer(const FileTime &a, const FileTime &b, bool includeSlack) {
    if (a.isNull() || b.isNull())
        return a.isNull() != b.isNull();
    if (!includeSlack)
        return a != b;
    const qint64 boundaries = FileTime::secondBoundariesBetween(a, b);
    return boundaries > 2 || boundaries < -2;
}

bool datesDiffer(const FileTime &a, const FileTime &b, bool includeSlack,
                 const std::vector<qint64> &shifts) {
    if (!datesDiffer(a, b, includeSlack))
        return false;
    if (a.isNull() || b.isNull())
        return true;
    for (const qint64 shift : shifts) {
        for (const qint64 signedShift : {shift, -shift}) {
            if (!datesDiffer(a, FileTime(b.seconds() + signedShift, b.nanoseconds()), includeSlack))
                return false;
        }
    }
    return true;
}
