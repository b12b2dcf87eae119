#pragma once

#include "engine/Pairscope.h"

#include <QStringList>

/**
 * Compares two walked collections and returns every decided pair as "SOURCE | DESTINATION |
 * CODE" (paths below the roots, "-" for a placeholder side), sorted, so that a test states
 * the whole outcome of a run in one comparison.
 */
inline QStringList comparePairs(ComparisonFileCollection &source,
                                ComparisonFileCollection &destination, int bits,
                                int *status = nullptr) {
    Pairscope engine;
    QStringList pairs;
    QObject::connect(&engine, &Pairscope::FilesCompared, &engine,
                     [&pairs](const ComparisonFilePtr &a, const ComparisonFilePtr &b, int code) {
                         const auto side = [](const ComparisonFilePtr &record) {
                             return record->HasFileObject() ? record->RelativePath()
                                                            : QStringLiteral("-");
                         };
                         pairs << QStringLiteral("%1 | %2 | %3").arg(side(a), side(b)).arg(code);
                     });
    const int result = engine.Compare(source, destination, bits, true, true, 65536);
    if (status)
        *status = result;
    pairs.sort();
    return pairs;
}
