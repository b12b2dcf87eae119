#pragma once

#include <QString>

#include <optional>

/** How letter case counts when names of the two trees are paired. */
enum class CaseRule : quint8 {
    /**
     * As each folder's file system resolves names: most Linux file systems tell `Readme.md`
     * from `README.md`; FAT, exFAT, NTFS, SMB mounts and casefolded folders do not.
     */
    Automatic,
    /** Names pair only when spelt exactly alike. */
    Sensitive,
    /** Names that differ only in letter case pair too; an exact namesake is still preferred. */
    Insensitive,
};

/** "auto", "sensitive" or "insensitive": the words of the command line and the settings. */
QString caseRuleWord(CaseRule rule);
/** The rule named by \a word (see caseRuleWord), or nothing. */
std::optional<CaseRule> caseRuleFromWord(QStringView word);
