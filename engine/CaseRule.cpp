#include "engine/CaseRule.h"

#include <array>

namespace {
constexpr std::array<const char *, 3> words = {"auto", "sensitive", "insensitive"};
}

QString caseRuleWord(CaseRule rule) {
    return QString::fromLatin1(words[std::size_t(rule)]);
}

std::optional<CaseRule> caseRuleFromWord(QStringView word) {
    for (std::size_t i = 0; i < words.size(); ++i) {
        if (word == QLatin1String(words[i]))
            return CaseRule(i);
    }
    return std::nullopt;
}
