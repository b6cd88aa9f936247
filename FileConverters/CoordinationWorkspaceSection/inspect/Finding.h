#pragma once

#include "FileConverters/CoordinationWorkspaceSection/inspect/DocumentPlaces.h"

#include <QString>

#include <vector>

/** What a conversion does to something in a document beyond joining the settings. */
struct Finding
{
    enum Kind {
        // Of the document.
        ALREADY_CURRENT,
        TOO_OLD,
        TOO_NEW,
        NO_SECTION,
        SEVERAL_SECTIONS,
        SETTINGS_PRESENT,
        CONTAINER_MISPLACED,
        CONTAINER_REPEATED,
        LINE_BREAK,
        INVALID_CHARACTER,
        // Of the join.
        PROFILE_COUNT_DIFFERS,
        CONFIGURATION_COUNT_DIFFERS,
        CHANNEL_WITHOUT_ID,
        CHANNEL_REPLACED,
        ID_WITHOUT_PROFILE,
        PROFILE_WITHOUT_CHANNEL,
        PROFILE_REPLACED,
        CONFIGURATION_WITHOUT_PROFILE,
        CONFIGURATION_REPLACED,
        SYSTEM_WITHOUT_CONFIGURATION,
        SYSTEM_MISTAKEN,
        DUPLICATE_PROFILE_ID,
        INVALID_PROFILE_ID,
        PROFILE_NAME_EMPTIED,
        // Of the content of a channel, a configuration or a profile.
        UNREAD_ELEMENT,
        UNREAD_ATTRIBUTE,
        UNREAD_TEXT,
        VALUE_REPLACED,
        NUMBER_UNREADABLE,
        CENTRE_LIST_DROPPED,
        // By design: shown, no loss.
        CONTAINER_REMOVED,
        COMMENT_REMOVED,
        PROFILE_ID_RESPELLED,
        STAYS_BEHIND,
    };
    static constexpr int KIND_COUNT = STAYS_BEHIND + 1;

    Kind kind;
    Place place;
    QString text; ///< a sentence for people; values in it are quoted and shortened

    /** The kind's name in JSON, in lower case with hyphens. */
    static QString nameOf(Kind kind);

    /** Whether something is lost, as opposed to what a conversion is for. */
    static bool isLoss(Kind kind);
};

/** Findings in the order in which they were found. */
using Findings = std::vector<Finding>;
