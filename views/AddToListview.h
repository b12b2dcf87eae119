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
