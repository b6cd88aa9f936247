#include "FileConverters/CoordinationWorkspaceSection/inspect/Finding.h"

#include <array>

namespace {

// In the order of the kinds.
constexpr std::array<const char*, Finding::KIND_COUNT> NAMES = {
    "already-current",
    "too-old",
    "too-new",
    "no-section",
    "several-sections",
    "settings-present",
    "container-misplaced",
    "container-repeated",
    "line-break",
    "invalid-character",
    "profile-count-differs",
    "configuration-count-differs",
    "channel-without-id",
    "channel-replaced",
    "id-without-profile",
    "profile-without-channel",
    "profile-replaced",
    "configuration-without-profile",
    "configuration-replaced",
    "system-without-configuration",
    "system-mistaken",
    "duplicate-profile-id",
    "invalid-profile-id",
    "profile-name-emptied",
    "unread-element",
    "unread-attribute",
    "unread-text",
    "value-replaced",
    "number-unreadable",
    "centre-list-dropped",
    "container-removed",
    "comment-removed",
    "profile-id-respelled",
    "stays-behind",
};

} // namespace

QString Finding::nameOf(Kind kind)
{
    return QLatin1String(NAMES[static_cast<std::size_t>(kind)]);
}

bool Finding::isLoss(Kind kind)
{
    return kind < CONTAINER_REMOVED;
}
