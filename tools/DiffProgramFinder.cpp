#include "tools/DiffProgramFinder.h"

#include <QFileInfo>
#include <QRegularExpression>
#include <QStandardPaths>

#include <algorithm>
#include <gio/gdesktopappinfo.h>
#include <memory>

namespace {

struct KnownProgram {
    const char *executable;
    const char *name;
};

// Programs that compare two files given as two arguments, whether or not a desktop entry
// announces them.
constexpr KnownProgram knownPrograms[] = {
    {"meld", "Meld"},     {"kdiff3", "KDiff3"}, {"kompare", "Kompare"},   {"diffuse", "Diffuse"},
    {"tkdiff", "TkDiff"}, {"xxdiff", "xxdiff"}, {"gvimdiff", "gvimdiff"},
};

// Launchers that would take the two files as their own arguments.
constexpr const char *launchers[] = {"flatpak", "snap", "env", "sh", "bash"};

bool saysItCompares(const QString &word) {
    // Whole words: "different" or "compartment" say nothing about comparing files.
    static const QRegularExpression comparing(
        QStringLiteral("^(diff(s|erences?)?|compar(e|es|ing|ison|ator))$"),
        QRegularExpression::CaseInsensitiveOption);
    return comparing.match(word.trimmed()).hasMatch();
}

bool anySaysItCompares(const QStringList &words) {
    return std::any_of(words.cbegin(), words.cend(), saysItCompares);
}

bool comparesFiles(GDesktopAppInfo *entry) {
    QStringList words;
    if (const char *const *keywords = g_desktop_app_info_get_keywords(entry)) {
        for (; *keywords; ++keywords)
            words << QString::fromUtf8(*keywords);
    }
    if (const char *categories = g_desktop_app_info_get_categories(entry))
        words << QString::fromUtf8(categories).split(QLatin1Char(';'));
    if (const char *generic = g_desktop_app_info_get_generic_name(entry))
        words << QString::fromUtf8(generic).split(QRegularExpression(QStringLiteral("[^\\w]+")));
    return anySaysItCompares(words);
}

/** The entry as a found program, or one with no program when it is not one to offer. */
FoundDiffProgram fromEntry(GAppInfo *info) {
    GDesktopAppInfo *entry = G_DESKTOP_APP_INFO(info);
    const QString id = QString::fromUtf8(g_app_info_get_id(info));
    if (!g_app_info_should_show(info) || g_desktop_app_info_get_boolean(entry, "Terminal") ||
        id.startsWith(QLatin1String("org.pairscope.")) || !comparesFiles(entry))
        return {};
    const QString executable = QString::fromUtf8(g_app_info_get_executable(info));
    const QString base = QFileInfo(executable).fileName();
    if (std::any_of(std::begin(launchers), std::end(launchers),
                    [&base](const char *launcher) { return base == QLatin1String(launcher); }))
        return {};
    FoundDiffProgram found;
    found.name = QString::fromUtf8(g_app_info_get_name(info));
    found.program = executable.contains(QLatin1Char('/'))
                        ? (QFileInfo(executable).isExecutable() ? executable : QString())
                        : QStandardPaths::findExecutable(executable);
    if (GIcon *icon = g_app_info_get_icon(info); icon && G_IS_THEMED_ICON(icon)) {
        const char *const *names = g_themed_icon_get_names(G_THEMED_ICON(icon));
        if (names && *names)
            found.iconName = QString::fromUtf8(*names);
    }
    return found;
}

} // namespace

QList<FoundDiffProgram> FindDiffPrograms() {
    QList<FoundDiffProgram> found;
    const auto known = [&found](const QString &program) {
        return std::any_of(found.cbegin(), found.cend(), [&program](const FoundDiffProgram &f) {
            return QFileInfo(f.program).canonicalFilePath() ==
                   QFileInfo(program).canonicalFilePath();
        });
    };
    GList *entries = g_app_info_get_all();
    for (GList *item = entries; item; item = item->next) {
        FoundDiffProgram program = fromEntry(G_APP_INFO(item->data));
        if (!program.program.isEmpty() && !known(program.program))
            found << program;
    }
    g_list_free_full(entries, g_object_unref);
    for (const KnownProgram &candidate : knownPrograms) {
        const QString program = QStandardPaths::findExecutable(QLatin1String(candidate.executable));
        if (!program.isEmpty() && !known(program))
            found << FoundDiffProgram{QLatin1String(candidate.name), program,
                                      QLatin1String(candidate.executable)};
    }
    std::sort(found.begin(), found.end(), [](const FoundDiffProgram &a, const FoundDiffProgram &b) {
        return a.name.compare(b.name, Qt::CaseInsensitive) < 0;
    });
    return found;
}
