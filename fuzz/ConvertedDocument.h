#pragma once

#include <QByteArray>
#include <QDomDocument>
#include <QString>

/** What becomes of one text in the conversion, and what is promised of every conversion. */
struct ConvertedDocument
{
    enum Outcome {
        NOT_WELL_FORMED, ///< the text is no document
        REFUSED,
        BROKEN_OFF, ///< by a profile with a bad id
        CONVERTED,
    };

    /** Converts as the program does. */
    explicit ConvertedDocument(const QString& text);

    /** Ends the process when a promise about the outcome or the document is broken. */
    void check() const;

    /** The new element; null when it stands nowhere. */
    QDomElement settings() const { return settingsOf(document); }

    /** Whether Qt can read what it prints of the document before. */
    bool isReadableBefore() const;

    Outcome outcome = NOT_WELL_FORMED;
    QDomDocument document; ///< afterwards
    QByteArray output;     ///< what the program writes

private:
    enum PlaceOfChannels { NO_CHANNELS, CHANNELS_IN_PLACE, CHANNELS_ELSEWHERE };

    // What the document was: the conversion may remove what it went by.
    struct Before
    {
        QString text; // as Qt prints it
        int sections = 0;
        bool hasBadId = false;
        PlaceOfChannels channels = NO_CHANNELS;
    };

    void convert();
    static PlaceOfChannels placeOfChannels(const QDomElement& section);
    QDomElement settingsOf(const QDomDocument& in) const;
    void checkSettings(const QDomElement& settings) const;

    Before m_before;
};
