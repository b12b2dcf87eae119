#include "Options.h"

#include "SettingsStore.h"
#include "SettingsText.h"

using namespace SettingsText;

namespace {

const QString section = QStringLiteral("Options");

bool readBoolean(const QString &key, bool fallback) {
    const std::optional<QString> text = SettingsStore::value(section, key);
    return text ? toBoolean(*text, fallback) : fallback;
}

bool writeBoolean(const QString &key, bool value) {
    return SettingsStore::write(section, key, booleanText(value));
}

// Positions and sizes a window system can actually show; anything beyond is the default.
constexpr float placementLimit = 32767;

float readPlacement(const QString &key, float fallback, bool isSize) {
    const std::optional<QString> text = SettingsStore::value(section, key);
    if (!text)
        return fallback;
    const float value = lenientFloat(*text, fallback);
    const bool usable = isSize ? value >= 1 && value <= placementLimit
                               : value >= -placementLimit && value <= placementLimit;
    return usable ? value : fallback;
}

} // namespace

namespace Options {

bool doCRCLast() {
    return readBoolean(QStringLiteral("DoCRCLast"), true);
}

bool setDoCRCLast(bool value) {
    return writeBoolean(QStringLiteral("DoCRCLast"), value);
}

int crcChunkSize() {
    constexpr int fallback = 65536;
    const std::optional<QString> text =
        SettingsStore::value(section, QStringLiteral("CRCChunkSize"));
    const int size = text ? strictInteger(*text, fallback) : fallback;
    return qBound(MinimumCRCChunkSize, size, MaximumCRCChunkSize);
}

QString diffEXE() {
    const QString path = SettingsStore::text(section, QStringLiteral("DiffEXE"));
    return canBePath(path) ? path : QString();
}

bool setDiffEXE(const QString &path) {
    return SettingsStore::write(section, QStringLiteral("DiffEXE"), path);
}

int orientation() {
    const std::optional<QString> text =
        SettingsStore::value(section, QStringLiteral("Orientation"));
    if (!text)
        return VerticalOrientation;
    const double value = lenientNumber(*text, VerticalOrientation);
    return value == HorizontalOrientation ? HorizontalOrientation : VerticalOrientation;
}

bool setOrientation(int value) {
    const int stored = value == HorizontalOrientation ? HorizontalOrientation : VerticalOrientation;
    return SettingsStore::write(section, QStringLiteral("Orientation"), integerText(stored));
}

bool alwaysOnTop() {
    return readBoolean(QStringLiteral("AlwaysOnTop"), false);
}

bool setAlwaysOnTop(bool value) {
    return writeBoolean(QStringLiteral("AlwaysOnTop"), value);
}

bool includeSlack() {
    return readBoolean(QStringLiteral("IncludeSlack"), true);
}

bool setIncludeSlack(bool value) {
    return writeBoolean(QStringLiteral("IncludeSlack"), value);
}

bool ignoreTimeShift() {
    return readBoolean(QStringLiteral("IgnoreTimeShift"), false);
}

bool setIgnoreTimeShift(bool value) {
    return writeBoolean(QStringLiteral("IgnoreTimeShift"), value);
}

QString filters() {
    return SettingsStore::text(section, QStringLiteral("Filters"));
}

bool setFilters(const QString &value) {
    return SettingsStore::write(section, QStringLiteral("Filters"), value);
}

bool useGitignore() {
    return readBoolean(QStringLiteral("UseGitignore"), false);
}

bool setUseGitignore(bool value) {
    return writeBoolean(QStringLiteral("UseGitignore"), value);
}

QString letterCase() {
    const QString word = SettingsStore::text(section, QStringLiteral("LetterCase")).trimmed();
    return word == QLatin1String("sensitive") || word == QLatin1String("insensitive")
               ? word
               : QStringLiteral("auto");
}

bool setLetterCase(const QString &word) {
    return SettingsStore::write(section, QStringLiteral("LetterCase"), word);
}

bool linkListings() {
    return readBoolean(QStringLiteral("LinkListings"), true);
}

bool setLinkListings(bool value) {
    return writeBoolean(QStringLiteral("LinkListings"), value);
}

bool useMissingPlaceholders() {
    return readBoolean(QStringLiteral("UseMissingPlaceholders"), true);
}

bool setUseMissingPlaceholders(bool value) {
    return writeBoolean(QStringLiteral("UseMissingPlaceholders"), value);
}

bool fullPath() {
    return readBoolean(QStringLiteral("FullPath"), false);
}

bool setFullPath(bool value) {
    return writeBoolean(QStringLiteral("FullPath"), value);
}

bool allFiles() {
    return readBoolean(QStringLiteral("AllFiles"), false);
}

bool setAllFiles(bool value) {
    return writeBoolean(QStringLiteral("AllFiles"), value);
}

bool boldDifferences() {
    return readBoolean(QStringLiteral("BoldDifferences"), false);
}

bool setBoldDifferences(bool value) {
    return writeBoolean(QStringLiteral("BoldDifferences"), value);
}

ViewOptions viewOptions() {
    ViewOptions options;
    options.linkListings = linkListings();
    options.useMissingPlaceholders = useMissingPlaceholders();
    options.fullPath = fullPath();
    options.allFiles = allFiles();
    options.boldDifferences = boldDifferences();
    return options;
}

bool setViewOptions(const ViewOptions &options) {
    return SettingsStore::write(
        section,
        {{QStringLiteral("LinkListings"), booleanText(options.linkListings)},
         {QStringLiteral("UseMissingPlaceholders"), booleanText(options.useMissingPlaceholders)},
         {QStringLiteral("FullPath"), booleanText(options.fullPath)},
         {QStringLiteral("AllFiles"), booleanText(options.allFiles)},
         {QStringLiteral("BoldDifferences"), booleanText(options.boldDifferences)}});
}

WindowRect windowRect(const WindowRect &defaults) {
    WindowRect rect;
    rect.left = readPlacement(QStringLiteral("Left"), defaults.left, false);
    rect.top = readPlacement(QStringLiteral("Top"), defaults.top, false);
    rect.width = readPlacement(QStringLiteral("Width"), defaults.width, true);
    rect.height = readPlacement(QStringLiteral("Height"), defaults.height, true);
    return rect;
}

bool setWindowRect(const WindowRect &rect) {
    return SettingsStore::write(section, {{QStringLiteral("Left"), floatText(rect.left)},
                                          {QStringLiteral("Top"), floatText(rect.top)},
                                          {QStringLiteral("Width"), floatText(rect.width)},
                                          {QStringLiteral("Height"), floatText(rect.height)}});
}

} // namespace Options
