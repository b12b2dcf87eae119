#pragma once

struct CompareReport;
class Pairscope;
class QObject;

/**
 * Lets \a report take every pair \a engine decides from now on, in place of those it held. A
 * new cycle of the engine decides every pair afresh, so the pairs of the last cycle are
 * forgotten when one starts. The connections end with \a context.
 */
void collectPairs(const Pairscope &engine, const QObject *context, CompareReport &report);
