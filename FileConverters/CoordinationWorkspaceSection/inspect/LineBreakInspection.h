#pragma once

class DocumentText;
class FindingList;
class QDomDocument;

/**
 * Finds the texts and attributes whose line breaks are lost because lines were joined.
 *
 * Nothing is found when they were not.
 * @param document  as parsed from @p text.
 */
void inspectLineBreaks(const DocumentText& text, const QDomDocument& document,
                       FindingList& findings);
