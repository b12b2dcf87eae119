#pragma once

struct CompareReport;
class OutputStream;

/**
 * Writes the listed pairs of a finished compare as tab-separated lines, in the run's order: the
 * difference code, a tab, the difference text, a tab, and the path below the roots as the
 * name's own bytes with tab, newline and backslash written "\t", "\n" and "\\". Locale-free;
 * nothing else is written.
 */
void writeTsvReport(const CompareReport &report, OutputStream &out);
