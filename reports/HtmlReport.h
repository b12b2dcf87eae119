#pragma once

struct CompareReport;
class OutputStream;

/**
 * Writes a finished compare as one self-contained page (XHTML, so that any XML reader takes
 * it; no external resources, the styles inline, print styles that keep each row on one
 * page): a title naming both roots, the comparison and its options, the summary counts (pairs
 * listed, identical, differing, only in source, only in destination, could not be compared),
 * one row per listed pair with its path, its differences and both sides' size and modified
 * date (and created date, accessed date and attributes when they were compared), and what
 * could not be compared. Names are shown as the text report shows them (bytes that are not
 * UTF-8 as "\xHH") and escaped for HTML; numbers follow the locale.
 */
void writeHtmlReport(const CompareReport &report, OutputStream &out);
