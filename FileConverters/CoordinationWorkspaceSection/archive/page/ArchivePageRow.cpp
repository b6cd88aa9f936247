#include "FileConverters/CoordinationWorkspaceSection/archive/page/ArchivePageRow.h"

#include "FileConverters/CoordinationWorkspaceSection/archive/page/ArchivePage.h"
#include "FileConverters/CoordinationWorkspaceSection/archive/page/HtmlText.h"

#include <algorithm>
#include <numeric>

namespace {

constexpr int GROUP = 3;
const QByteArray GROUP_SEPARATOR = "\u202f"; // a narrow blank that breaks no line
constexpr int SECONDS_DIGITS = 3;
constexpr int MOST_TEXT = 1000; // of what documents name at any length
constexpr int MOST_FIELD = 200;
const QByteArray NONE = "<td class=\"number\">–</td>";

// Isolated, so that a name in another direction of writing leaves its neighbours alone.
QByteArray foreign(const QString& text, int most)
{
    return "<bdi>" + HtmlText::escaped(text, most) + "</bdi>";
}

QByteArray numberCell(const std::optional<FileIdentity>& file)
{
    return file ? "<td class=\"number\">" + ArchivePageRow::number(file->size) + "</td>" : NONE;
}

QByteArray lossItem(const LossSummary& loss)
{
    const QByteArray times =
        loss.count == 1 ? QByteArray(" in line ")
                        : ", " + ArchivePageRow::number(loss.count) + " times, first in line ";
    return "<li><strong>" + HtmlText::escaped(loss.kind, MOST_FIELD) + "</strong>" + times +
           ArchivePageRow::number(loss.line) + ": " + foreign(loss.text, MOST_TEXT) + "</li>";
}

QByteArray keyOf(const ChangedSystem& system)
{
    QByteArray key;
    for (const QString& field : system.key()) {
        key += key.isEmpty() ? "" : " · ";
        key += field.isEmpty() ? QByteArray("–") : foreign(field, MOST_FIELD);
    }
    return key;
}

QByteArray nameOfProfile(const QString& name)
{
    return name.isEmpty() ? QByteArray("(none)") : foreign(name, MOST_FIELD);
}

QByteArray rowOf(const ChangedSystem& system)
{
    QByteArray row = "<tr><th scope=\"row\">" + keyOf(system) + "</th><td>" +
                     nameOfProfile(system.nameBefore) + " → " + nameOfProfile(system.nameAfter) +
                     "</td>";
    for (const ChangedSystem::Change& change : system.spacings) {
        row += "<td class=\"number\">";
        if (change.isThere()) {
            row += QByteArray::number(change.before) + " → " + QByteArray::number(change.after);
        }
        row += "</td>";
    }
    return row + "</tr>\n";
}

QByteArray systemsChange(int count)
{
    return count == 1 ? QByteArray("1 system changes its spacings")
                      : ArchivePageRow::number(count) + " systems change their spacings";
}

} // namespace

int ArchivePageRow::kind() const
{
    if (m_isGone) {
        return GONE;
    }
    const bool isStranger = m_record.reason == QLatin1String("no-workspace");
    return isStranger ? static_cast<int>(NO_DOCUMENT) : m_record.outcome;
}

int ArchivePageRow::lossCount() const
{
    return std::accumulate(m_record.losses.begin(), m_record.losses.end(), 0,
                           [](int count, const LossSummary& loss) { return count + loss.count; });
}

QByteArray ArchivePageRow::nameOf(int kind)
{
    switch (kind) {
    case NO_DOCUMENT:
        return "no document";
    case GONE:
        return "gone";
    default:
        return DocumentRecord::nameOf(static_cast<DocumentRecord::Outcome>(kind)).toLatin1();
    }
}

QByteArray ArchivePageRow::tokenOf(int kind)
{
    return nameOf(kind).replace(' ', '-');
}

QByteArray ArchivePageRow::number(qint64 number)
{
    QByteArray digits = QByteArray::number(number);
    for (int i = digits.size() - GROUP; i > 0; i -= GROUP) {
        digits.insert(i, GROUP_SEPARATOR);
    }
    return digits;
}

QByteArray ArchivePageRow::html(int& systemsLeft) const
{
    return "<tbody data-outcome=\"" + tokenOf(kind()) + R"("><tr><th scope="row"><bdi>)" +
           HtmlText::escaped(m_record.path) + "</bdi></th><td><span class=\"mark " +
           tokenOf(kind()) + "\">" + nameOf(kind()) + "</span></td><td data-losses=\"" +
           QByteArray::number(lossCount()) + "\">" + whatWasLost() + "</td>" +
           numberCell(m_record.source) + numberCell(m_record.target) + "<td class=\"number\">" +
           QByteArray::number(m_record.seconds, 'f', SECONDS_DIGITS) + "</td></tr>\n" +
           spacings(systemsLeft) + "</tbody>\n";
}

QByteArray ArchivePageRow::whatWasLost() const
{
    QByteArray html;
    if (m_isGone) {
        html += "<p>Its document is in the archive no more. What was written stands.</p>";
    }
    if (!m_record.reason.isEmpty()) {
        html += "<p><strong>" + HtmlText::escaped(m_record.reason, MOST_FIELD) +
                "</strong>: " + foreign(m_record.text, MOST_TEXT) + "</p>";
    }
    if (m_record.earlier) {
        html += "<p>What an earlier run wrote stands.</p>";
    }
    if (!m_record.losses.empty()) {
        html += "<ul>";
        for (const LossSummary& loss : m_record.losses) {
            html += lossItem(loss);
        }
        html += "</ul>";
    }
    const bool isConverted =
        m_record.outcome == DocumentRecord::CONVERTED || m_record.outcome == DocumentRecord::LOSSY;
    if (isConverted && !m_record.systems) {
        html += "<p>Converted by a version that did not report spacings.</p>";
    }
    return html;
}

QByteArray ArchivePageRow::spacings(int& systemsLeft) const
{
    const int all = m_record.systems ? m_record.systems->size() : 0;
    if (all == 0) {
        return {};
    }
    const int shown = std::min({all, ArchivePage::MOST_SYSTEMS_A_DOCUMENT, systemsLeft});
    systemsLeft -= shown;
    const QByteArray begin = R"(<tr class="more"><td colspan="6">)";
    if (shown == 0) {
        return begin + "<p>" + systemsChange(all) +
               "; this page shows no more systems, the report tells them.</p></td></tr>\n";
    }
    QByteArray html =
        begin + "<details><summary>" + systemsChange(all) + "</summary>" + systemsTable(shown);
    if (shown < all) {
        html += "<p>" + number(all - shown) + " more are in the report.</p>";
    }
    return html + "</details></td></tr>\n";
}

QByteArray ArchivePageRow::systemsTable(int count) const
{
    QByteArray html =
        "<table class=\"systems\"><caption>Spacings in kHz, before → after, of <bdi>" +
        HtmlText::escaped(m_record.path) +
        "</bdi></caption>\n<thead><tr><th scope=\"col\">Zone · series · band · mode ·"
        " group</th><th scope=\"col\">Profile</th>";
    for (std::size_t i = 0; i < ChangedSystem::SPACING_COUNT; ++i) {
        html +=
            R"(<th scope="col" class="number">)" + ChangedSystem::headingOf(i).toLatin1() + "</th>";
    }
    html += "</tr></thead>\n<tbody>\n";
    for (int i = 0; i < count; ++i) {
        html += rowOf(m_record.systems->at(i));
    }
    return html + "</tbody></table>";
}
