#pragma once

class ComparisonFile;
class ImageList;

/**
 * The one-based index in \a images of the desktop's icon for \a file, added under the file's
 * icon key (IconKey) when missing, so that files of one type share one image; 1 when the
 * desktop has no icon for it.
 */
int FileIconIndex(ImageList *images, const ComparisonFile &file);
