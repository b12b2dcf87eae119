#pragma once

#include "engine/ComparisonFile.h"

#include <array>
#include <functional>

class ComparisonFileCollection;
class ImageList;
class ListView;

/**
 * Decides which records of the two collections are listed and brings the two result lists
 * up to date: pair by pair during a compare, and in place when a View option changes, so
 * that rows that stay keep their place.
 */
class ResultListing {
public:
    /** The View options that decide what is listed and how. */
    struct ViewState {
        bool allFiles = false;
        bool missingPlaceholders = true;
        bool fullPath = false;
    };

    ResultListing(std::array<ListView *, 2> lists, ImageList *icons);

    /**
     * The listing rule: an identical record (code 1) only with Show All Files; any other
     * record when it names an existing file, a placeholder only with Use Missing File
     * Placeholders.
     */
    static bool IsListed(const ComparisonFile &record, bool allFiles, bool missingPlaceholders);

    /** Lists a pair the engine has just settled; code 0 lists nothing. */
    void ListPair(const ComparisonFilePtr &sourceFile, const ComparisonFilePtr &destFile,
                  int comparisonResult, const ViewState &view);

    /**
     * Called between slices of a rebuild; returns false when the rebuild is to stop where it
     * is (newer work has taken the lists over).
     */
    using CarryOn = std::function<bool()>;

    /**
     * Re-decides both lists from the collections: rows that still qualify stay where they
     * are and are refreshed, rows that newly qualify are appended, the rest are removed.
     * With \a carryOn the lists are rebuilt in slices; returns false when \a carryOn stopped
     * the rebuild, leaving the lists to whoever stopped it.
     */
    bool Refresh(const ComparisonFileCollection &sourceFiles,
                 const ComparisonFileCollection &destFiles, const ViewState &view,
                 const CarryOn &carryOn = {});

    /** Shows the "In Folder" texts of list \a side as full paths or below the root. */
    void UpdateListView(int side, bool fullPath);

private:
    /** Lists \a record in list \a side; returns its row. */
    int Add(int side, const ComparisonFilePtr &record, bool fullPath);

    std::array<ListView *, 2> m_lists;
    ImageList *m_icons;
};
