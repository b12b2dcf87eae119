#pragma once

#include "engine/ComparisonFile.h"

class ImageList;
class ListView;

/**
 * Shows \a record as a row of a result listing, or brings its existing row up to date (the
 * row of its key). With \a images, the row shows the file's icon, or image 1 when the file
 * has none; the list is given \a images when it has no icons yet. Details not yet loaded are
 * loaded first. Returns the zero-based row.
 */
int AddToListview(const ComparisonFilePtr &record, ListView *list, ImageList *images);

/**
 * The icon key of \a record's file (see FileIconCache::IconKey): taken from the record's details
 * where they answer it, so that listing a row costs no look-up on disk; a placeholder (its file
 * does not exist on this side) gets its type name as it stands.
 */
QString RecordIconKey(const ComparisonFile &record);
