#include "FileConverters/CoordinationWorkspaceSection/inspect/Report.h"

#include <algorithm>
#include <array>

namespace {

int statusOf(Inspection::Advice advice)
{
    switch (advice) {
    case Inspection::CONVERT:
        return STATUS_GOOD;
    case Inspection::REVIEW:
    case Inspection::TOO_OLD:
    case Inspection::CURRENT:
        return STATUS_LOSS;
    case Inspection::TOO_NEW:
    case Inspection::IMPOSSIBLE:
        break;
    }
    return STATUS_IMPOSSIBLE;
}

} // namespace

int statusOf(const DocumentReport& report)
{
    const auto* inspection = std::get_if<Inspection>(&report.result);
    return inspection == nullptr ? STATUS_IMPOSSIBLE : statusOf(inspection->advice);
}

int statusOf(const VerificationReport& report)
{
    const auto* verification = std::get_if<Verification>(&report.result);
    if (verification == nullptr) {
        return STATUS_IMPOSSIBLE;
    }
    return verification->differences.empty() ? STATUS_GOOD : STATUS_LOSS;
}

int worseStatus(int one, int other)
{
    constexpr std::array RANKS = {STATUS_GOOD, STATUS_LOSS, STATUS_IMPOSSIBLE};
    const auto rank = [&](int status) { return std::find(RANKS.begin(), RANKS.end(), status); };
    return rank(one) < rank(other) ? other : one;
}
