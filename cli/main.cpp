#include "cli/PairscopeCli.h"

int main(int argc, char **argv) {
    QList<QByteArray> arguments;
    for (int i = 1; i < argc; ++i)
        arguments.append(QByteArray(argv[i]));
    return PairscopeCli::run(arguments, stdout, stderr, PairscopeCli::Ending::ExitProcess);
}
