#include "CommandLine.h"

#include <QFile>

#include <algorithm>
#include <iterator>

namespace {

struct QtOption {
    const char *name;
    bool takesValue;
};

// The options QGuiApplication and QApplication take out of argv themselves; they are accepted
// here so that a user's "-style fusion" keeps working.
constexpr QtOption qtOptions[] = {
    {"platform", true},        {"platformpluginpath", true},
    {"platformtheme", true},   {"plugin", true},
    {"qwindowgeometry", true}, {"geometry", true},
    {"qwindowicon", true},     {"icon", true},
    {"qwindowtitle", true},    {"title", true},
    {"display", true},         {"name", true},
    {"session", true},         {"style", true},
    {"stylesheet", true},      {"qmljsdebugger", true},
    {"reverse", false},        {"nograb", false},
    {"dograb", false},         {"widgetcount", false},
    {"visual", true},
};

QString quoted(const QByteArray &text) {
    return QLatin1Char('\'') + QFile::decodeName(text) + QLatin1Char('\'');
}

CommandLine failure(const QString &error) {
    CommandLine line;
    line.action = CommandLine::Action::Error;
    line.error = error;
    return line;
}

} // namespace

CommandLine CommandLine::parse(const QList<QByteArray> &arguments) {
    CommandLine line;
    bool optionsEnded = false;
    for (qsizetype i = 0; i < arguments.size(); ++i) {
        const QByteArray &argument = arguments.at(i);
        if (optionsEnded || argument == "-" || !argument.startsWith('-')) {
            line.folders.append(argument);
            continue;
        }
        if (argument == "--") {
            optionsEnded = true;
            continue;
        }
        if (argument == "-h" || argument == "--help") {
            line.action = Action::Help;
            return line;
        }
        if (argument == "--version") {
            line.action = Action::Version;
            return line;
        }
        // Qt takes its options with one dash or two, and a value attached by "=" or separate.
        const QByteArray bare = argument.mid(argument.startsWith("--") ? 2 : 1);
        const qsizetype equals = bare.indexOf('=');
        const QByteArray name = equals < 0 ? bare : bare.left(equals);
        const auto qt =
            std::find_if(std::begin(qtOptions), std::end(qtOptions),
                         [&name](const QtOption &option) { return name == option.name; });
        if (qt == std::end(qtOptions))
            return failure(QStringLiteral("unknown option %1").arg(quoted(argument)));
        if (qt->takesValue && equals < 0 && ++i >= arguments.size())
            return failure(QStringLiteral("option %1 needs a value").arg(quoted(argument)));
    }
    return line;
}

QString CommandLine::usage() {
    return QStringLiteral(
        "Usage: pairscope [options] [SOURCE [DESTINATION]]\n"
        "\n"
        "Opens the window that compares two folder trees file by file. SOURCE and\n"
        "DESTINATION, when they name existing folders, fill the two path boxes; the\n"
        "comparison starts when Compare is pressed.\n"
        "\n"
        "Options:\n"
        "  -h, --help     show this help and exit\n"
        "      --version  show the version and exit\n"
        "      --         end of options: the arguments that follow are folders\n"
        "\n"
        "Qt's window options, such as -style NAME and -platform NAME, are accepted too.\n"
        "pairscope-cli compares without a window; see pairscope-cli --help.\n");
}
