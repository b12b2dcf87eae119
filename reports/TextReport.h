#pragma once

struct CompareReport;
class OutputStream;

/**
 * Writes a finished compare for people: the comparison's description as the first line, one row
 * per listed pair (the difference, padded so that the paths line up, then the path below the
 * roots), and a one-line summary of the counts by kind with the locale's digit grouping.
 */
void writeTextReport(const CompareReport &report, OutputStream &out);
