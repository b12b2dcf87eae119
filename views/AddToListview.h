#pragma once

#include "engine/ComparisonFile.h"
#include "views/ListItem.h"

class ImageList;
class ListView;

/**
 * Shows \a record as a row of a result listing, or brings its existing row up to date: the
 * row's key is the record's key (its lower-cased path) and its text the file name; its tag
 * is the difference code, and it carries the record so that tools reach the file's real
 * path. Every column after the first shows the record's text for its type (the folder columns
 * of the whole list their full paths when \a showFullPath is set), read from the record when
 * shown. With \a images, the row shows the file's icon
 * (the list is given \a images when it has no icons yet), or image 1 when the file has none.
 * Details not yet loaded are loaded first. Returns the row.
 */
ListItem AddToListview(const ComparisonFilePtr &record, ListView *list, ImageList *images,
                       bool showFullPath);

/**
 * The icon key of \a record's file (see IconKey): taken from the record's details where
 * they answer it, so that listing a row costs no look-up on disk; a placeholder (its file
 * does not exist on this side) gets its type name as it stands.
 */
QString RecordIconKey(const ComparisonFile &record);
