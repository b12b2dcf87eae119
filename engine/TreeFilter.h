#pragma once

#include "engine/PathFilter.h"

#include <memory>

/**
 * What a walk leaves out of a tree: the user's rules and, when asked, each folder's .gitignore
 * for what lies in and below that folder. The user's rules win over the files'; among the
 * files, the deeper one wins; within each, the last matching rule. A folder left out is not
 * walked at all, so nothing below it can be kept.
 */
class TreeFilter {
public:
    /** The rules of one folder's .gitignore, with those of the folders above it. */
    struct Scope {
        std::shared_ptr<const Scope> parent;
        PathFilter rules;
        /** The length of the folder's path below the root, with its "/" ("" for the root). */
        qsizetype baseLength = 0;
    };
    using ScopePtr = std::shared_ptr<const Scope>;

    /** The user's rules, relative to each root. */
    PathFilter rules;
    /** Whether .gitignore files apply (and a .git folder is left out, as git leaves it). */
    bool gitignore = false;

    bool isActive() const { return gitignore || !rules.isEmpty(); }
    /** Whether \a path (below the root, "/" between names) is left out, under \a scope. */
    bool excluded(const Scope *scope, QByteArrayView path, bool folder) const;
};
