#pragma once

#include <QDomDocument>
#include <QDomElement>
#include <QString>

/** An element with a "version" attribute, without one for a null text. */
inline QDomElement sectionOf(const QString& element, const QString& version)
{
    // An element refers to its document as long as it lives.
    static QDomDocument document;
    QDomElement section = document.createElement(element);
    if (!version.isNull()) {
        section.setAttribute("version", version);
    }
    return section;
}
