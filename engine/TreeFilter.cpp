#include "engine/TreeFilter.h"

bool TreeFilter::excluded(const Scope *scope, QByteArrayView path, bool folder) const {
    if (gitignore && folder && (path == ".git" || path.endsWith("/.git")))
        return true;
    PathFilter::Match match = rules.match(path, folder);
    for (; match == PathFilter::Match::None && scope; scope = scope->parent.get())
        match = scope->rules.match(path.sliced(scope->baseLength), folder);
    return match == PathFilter::Match::Excluded;
}
