#pragma once

#include <QString>

/**
 * The version line of the splash and About windows: "version 1.3  build 0027" for major 1,
 * minor 3, revision 27. The revision is padded to at least four digits, never cut.
 */
QString VersionText(int major, int minor, int revision);

/**
 * The program's own version line. Its major, minor and revision are the three parts of the
 * build's version number (PAIRSCOPE_VERSION, "0.1.0" gives "version 0.1  build 0000").
 */
QString VersionText();
