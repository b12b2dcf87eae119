#pragma once

#include <QString>

/**
 * The section "Options": one reader and one writer per key. Every reader returns the key's
 * default when the key is missing or its text is nonsense; every writer returns false when
 * the settings file could not be written (nothing else in the file is lost then).
 */
namespace Options {

/** Pane orientation values as stored: the View menu's index plus one. */
inline constexpr int HorizontalOrientation = 1; ///< panes stacked, a horizontal bar between
inline constexpr int VerticalOrientation = 2;   ///< panes side by side (the default)

/** Bounds of the checksum chunk size: no setting can ask for a tiny or a giant buffer. */
inline constexpr int MinimumCRCChunkSize = 1024;
inline constexpr int MaximumCRCChunkSize = 16 * 1024 * 1024;

/** Whether checksums are compared after every other property. Default true. */
bool doCRCLast();
bool setDoCRCLast(bool value);

/**
 * Bytes read per checksum chunk: default 65536, below 1024 reads as 1024, above 16 MiB as
 * 16 MiB. Never written by the program, so a hand-set value stays as the user wrote it.
 */
int crcChunkSize();

/** Path of the external diff program; default "". A value that cannot be a path reads as "". */
QString diffEXE();
bool setDiffEXE(const QString &path);

/**
 * Pane orientation: HorizontalOrientation or VerticalOrientation; any other stored value
 * reads as VerticalOrientation. A value other than the two is written as VerticalOrientation.
 */
int orientation();
bool setOrientation(int value);

/** Whether the main window stays on top of other windows. Default false. */
bool alwaysOnTop();
bool setAlwaysOnTop(bool value);

/** Whether dates two seconds apart count as equal. Default true. */
bool includeSlack();
bool setIncludeSlack(bool value);

/** Whether dates exactly one hour apart (a FAT tree, a daylight-saving change) count as equal.
 * Default false. */
bool ignoreTimeShift();
bool setIgnoreTimeShift(bool value);

/** The patterns a compare leaves out, one a line as in a .gitignore. Default "". */
QString filters();
bool setFilters(const QString &value);
/** Whether each tree's .gitignore files apply. Default false. */
bool useGitignore();
bool setUseGitignore(bool value);

/**
 * How letter case counts when names are paired: "auto" (as each folder's file system does,
 * the default), "sensitive" or "insensitive". Any other stored text reads as "auto".
 */
QString letterCase();
bool setLetterCase(const QString &word);

/** Whether the two listings scroll and select together. Default true. */
bool linkListings();
bool setLinkListings(bool value);

/** Whether a missing file gets a placeholder row on its side. Default true. */
bool useMissingPlaceholders();
bool setUseMissingPlaceholders(bool value);

/** Whether the folder column shows full paths. Default false. */
bool fullPath();
bool setFullPath(bool value);

/** Whether every file is listed, not only the differing ones. Default false. */
bool allFiles();
bool setAllFiles(bool value);

/** Whether differing rows are shown in bold. Default false. */
bool boldDifferences();
bool setBoldDifferences(bool value);

/** The five View options, read or written together. Default-constructed: the defaults. */
struct ViewOptions {
    bool linkListings = true;
    bool useMissingPlaceholders = true;
    bool fullPath = false;
    bool allFiles = false;
    bool boldDifferences = false;

    bool operator==(const ViewOptions &) const = default;
};

/** The stored View options, each with its default. */
ViewOptions viewOptions();
/** Stores all five View options in one write. */
bool setViewOptions(const ViewOptions &options);

/** The main window's placement in logical pixels. */
struct WindowRect {
    float left = 0;
    float top = 0;
    float width = 0;
    float height = 0;

    bool operator==(const WindowRect &) const = default;
};

/**
 * The stored placement ("Left", "Top", "Width", "Height"); each missing or unusable value is
 * taken from \a defaults. A position beyond ±32767 or a size that is not between 1 and 32767
 * is unusable: no window system can show it, and a giant window would need a giant buffer.
 */
WindowRect windowRect(const WindowRect &defaults);
/** Stores the four values in one write, each in its shortest decimal form. */
bool setWindowRect(const WindowRect &rect);

} // namespace Options
