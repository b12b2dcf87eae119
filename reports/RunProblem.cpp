#include "reports/RunProblem.h"

#include "reports/NameEscaping.h"

QByteArray RunProblem::line() const {
    const QByteArray why = NameEscaping::tsv(reason.toUtf8());
    return path.isEmpty() ? why : NameEscaping::tsv(path) + ": " + why;
}
