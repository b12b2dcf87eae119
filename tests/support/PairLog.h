#pragma once

#include "engine/Pairscope.h"

#include <QStringList>

/**
 * Every pair a compare of two walked collections decides, as "SOURCE | DESTINATION | CODE"
 * (paths below the roots, "-" for a placeholder), sorted: a run's whole outcome in one value.
 */
inline QStringList comparePairs(ComparisonFileCollection &source,
                                ComparisonFileCollection &destination, int bits,
                                int *status = nullptr) {
    Pairscope engine;
    QStringList pairs;
    const auto side = [](const ComparisonFilePtr &record) {
        return record->HasFileObject() ? record->RelativePath() : QStringLiteral("-");
    };
    QObject::connect(&engine, &Pairscope::FilesCompared, &engine,
                     [&](const ComparisonFilePtr &a, const ComparisonFilePtr &b, int code) {
                         pairs << QStringLiteral("%1 | %2 | %3").arg(side(a), side(b)).arg(code);
                     });
    const int result = engine.Compare(source, destination, bits, true, true, 65536);
    if (status)
        *status = result;
    pairs.sort();
    return pairs;
}
