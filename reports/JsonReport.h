#pragma once

struct CompareReport;
class OutputStream;

/**
 * Writes a finished compare as one JSON object: both roots, the comparison set (bits and
 * description), the options, the listed pairs with code, text, path and both sides' size,
 * dates (ISO 8601 with the local offset, or null) and attribute string, the counts by code
 * over every pair, and the problems. A side that does not exist is null; a path that is not
 * valid UTF-8 also carries its bytes escaped in "pathBytes". Locale-free; one pair per line.
 */
void writeJsonReport(const CompareReport &report, OutputStream &out);
