#pragma once

#include <QString>

class QDomDocument;

/**
 * Turns a document into what its conversion must be.
 *
 * Written from the rules of the conversion without its code, and simple rather than fast: it is
 * there to find the conversion's mistakes.
 * @param problem  told why the document cannot be converted.
 * @return whether it can; if not, the document is unchanged.
 */
bool makeExpectedDocument(QDomDocument& document, QString& problem);
