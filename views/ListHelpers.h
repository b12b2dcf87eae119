#pragma once

#include "views/ListItem.h"

#include <QString>

class ColumnHeader;
class ListView;

/**
 * Small look-ups on a ListView shared by the listings and the tools. Row keys are compared
 * in lower case, as every file row's key is its lower-cased path.
 */

/** The row whose key is \a key in lower case; added with that key and \a text when absent. */
ListItem GetOrAddListItem(ListView *list, const QString &key, const QString &text);
/** The row whose key is \a key in lower case, or nothing. */
ListItem GetListItemByKey(const ListView *list, const QString &key);
/** The header whose key is \a key, or null. */
ColumnHeader *GetColumnByKey(const ListView *list, const QString &key);
/** Removes the header whose key is \a key, with its sub-item; does nothing when there is none. */
void RemoveColumn(ListView *list, const QString &key);
