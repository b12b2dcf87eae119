#pragma once

#include "engine/ComparisonFile.h"

class ComparisonFileCollection;
class ListItem;

/**
 * The record behind a listing row: looked up by the row's key in \a collection (the side the
 * listing shows), else the record the row carries; null when neither has one. Tools use its
 * real path, never the lower-cased key.
 */
ComparisonFilePtr RowRecord(const ListItem &row, const ComparisonFileCollection &collection);
