#pragma once

#include "reports/RunProblem.h"

#include "engine/CollectionProblem.h"
#include "engine/CompareSession.h"
#include "engine/ComparisonFile.h"

#include <QByteArray>
#include <QList>

#include <array>
#include <vector>

/** One decided pair as a report lists it. */
struct ReportPair {
    ComparisonFilePtr source;
    ComparisonFilePtr destination;
    int code = 0;
    /**
     * The path below the roots as bytes: the source's, or the destination's for a placeholder.
     * Built when asked: a tree with many differences would otherwise keep a path per pair.
     */
    QByteArray path() const { return named().RelativeNativePath(); }
    /** The record that names the pair: the source, or the destination for a placeholder. */
    const ComparisonFile &named() const {
        return source && source->HasFileObject() ? *source : *destination;
    }

    /** Every difference of the pair in the order of the tests; the code alone for an old pair. */
    QList<int> codes() const;
};

/**
 * A finished compare as every report describes it: what was compared and how, the listed pairs
 * and the counts over every pair, and what could not be compared. The window and the command
 * line each fill one from their own run; the writers read nothing else.
 */
struct CompareReport {
    /** The two roots as given: native bytes, not necessarily UTF-8. */
    QByteArray source;
    QByteArray destination;
    int comparisons = 0;
    bool doCRCLast = true;
    bool includeSlack = true;
    QList<int> timeShifts;
    /** Identical pairs are listed too. */
    bool listAll = false;
    int chunkSize = 65536;

    /** The listed pairs (differences, or every pair with listAll), see sortPairs(). */
    std::vector<ReportPair> pairs;
    /** How many decided pairs carry each difference code (index = code, 0..14). */
    std::array<qint64, 15> counts{};
    QList<RunProblem> problems;

    /** Takes the roots and options of \a request. */
    void describe(const CompareSession::Request &request);
    /** Counts a decided pair and lists it when it differs or listAll is set. */
    void addPair(const ComparisonFilePtr &source, const ComparisonFilePtr &destination, int code);
    /** Forgets every pair: a new attempt or cycle decides them afresh. */
    void clearPairs();
    /** Orders the listed pairs by the bytes of their paths, as every format lists them. */
    void sortPairs();
    /** Every decided pair, listed or not. */
    qint64 pairCount() const;
    /** Takes the problems of a run, each as its path's bytes and the reason. */
    void setProblems(const QList<CollectionProblem> &runProblems);
};
