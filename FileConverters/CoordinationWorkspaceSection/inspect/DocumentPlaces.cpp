#include "FileConverters/CoordinationWorkspaceSection/inspect/DocumentPlaces.h"

#include "FileConverters/CoordinationWorkspaceSection/inspect/DocumentText.h"

#include <QDomDocument>
#include <QStringList>

#include <algorithm>
#include <iterator>
#include <utility>

namespace {

constexpr int SHOWN_STEPS = 8; // at each end of a long path

// All handles of a node share it, and compare equal by it, but do not tell which it is.
const void* identityOf(const QDomNode& node)
{
    struct Opened : QDomNode
    {
        static const void* identityOf(const QDomNode& node) { return node.*(&Opened::impl); }
    };
    return Opened::identityOf(node);
}

/** The children of one element that were seen so far. */
struct Siblings
{
    struct Name
    {
        int count = 0;
        int first = 0;
    };

    int parent;
    QHash<QString, Name> names;
};

// Where the element begins, of which the parser tells where its start tag ends. No "<" stands
// inside of a tag. An element that comes from an entity has no tag in the text; it is where the
// entity is.
int findStart(const QDomElement& element, const QString& text, int from, int end)
{
    const int length = text.midRef(from, end - from).lastIndexOf(QLatin1Char('<'));
    const bool isOwnTag =
        length >= 0 && text.midRef(from + length + 1).startsWith(element.tagName());
    return isOwnTag ? from + length : end;
}

} // namespace

DocumentPlaces::DocumentPlaces(const QDomDocument& document, const DocumentText& text)
{
    int tagEnd = 0; // no tag begins before the one before it ends
    std::vector<Siblings> open = {{-1, {}}};
    QDomElement element = document.firstChildElement();
    while (!element.isNull()) {
        const int index = static_cast<int>(m_entries.size());
        const int parent = open.back().parent;
        const int depth = static_cast<int>(open.size());
        const int tagBegin =
            std::exchange(tagEnd, text.positionOf(element.lineNumber(), element.columnNumber()));
        const int start = findStart(element, text.text(), tagBegin, tagEnd);
        Entry entry{element, text.lineOf(start), parent, depth, index};
        if (depth > SHOWN_STEPS) {
            entry.head = m_entries[static_cast<std::size_t>(parent)].head;
        }
        Siblings::Name& name = open.back().names[element.tagName()];
        entry.number = ++name.count;
        entry.isAlone = name.count == 1;
        if (name.count == 1) {
            name.first = index;
        } else {
            m_entries[static_cast<std::size_t>(name.first)].isAlone = false;
        }
        m_entries.push_back(entry);
        m_indexes.insert(identityOf(element), index);

        QDomElement next = element.firstChildElement();
        open.push_back({index, {}});
        while (next.isNull() && open.size() > 1) {
            const auto closed = static_cast<std::size_t>(open.back().parent);
            next = m_entries[closed].element.nextSiblingElement();
            open.pop_back();
        }
        element = next;
    }
}

int DocumentPlaces::indexOf(const QDomElement& element) const
{
    return m_indexes.value(identityOf(element), -1);
}

QString DocumentPlaces::steps(int from, int count) const
{
    QStringList steps;
    for (int index = from; index >= 0 && steps.size() < count;) {
        const Entry& entry = m_entries[static_cast<std::size_t>(index)];
        steps.prepend(entry.isAlone ? entry.element.tagName()
                                    : QStringLiteral("%1[%2]").arg(entry.element.tagName(),
                                                                   QString::number(entry.number)));
        index = entry.parent;
    }
    return QLatin1Char('/') + steps.join(QLatin1Char('/'));
}

QString DocumentPlaces::pathOf(int index) const
{
    const Entry& entry = m_entries[static_cast<std::size_t>(index)];
    if (entry.depth <= 2 * SHOWN_STEPS) {
        return steps(index, entry.depth);
    }
    return steps(entry.head, SHOWN_STEPS) + QStringLiteral("/...") + steps(index, SHOWN_STEPS);
}

Place DocumentPlaces::of(const QDomElement& element) const
{
    const int index = indexOf(element);
    if (index < 0) {
        return {1, QStringLiteral("/")};
    }
    return {m_entries[static_cast<std::size_t>(index)].line, pathOf(index)};
}

Place DocumentPlaces::ofAttribute(const QDomElement& element, const QString& attribute) const
{
    Place place = of(element);
    place.path += QStringLiteral("/@") + attribute;
    return place;
}

std::vector<QDomElement> DocumentPlaces::outside(const std::vector<QDomElement>& elements,
                                                 const std::vector<QDomElement>& holders) const
{
    std::vector<bool> isHeld(m_entries.size());
    for (const QDomElement& holder : holders) {
        isHeld[static_cast<std::size_t>(indexOf(holder))] = true;
    }
    for (std::size_t i = 1; i < m_entries.size(); ++i) {
        const bool isBelow = isHeld[static_cast<std::size_t>(m_entries[i].parent)];
        isHeld[i] = isHeld[i] || isBelow;
    }
    std::vector<QDomElement> found;
    std::copy_if(elements.begin(), elements.end(), std::back_inserter(found),
                 [&](const QDomElement& element) {
                     return !isHeld[static_cast<std::size_t>(indexOf(element))];
                 });
    return found;
}
