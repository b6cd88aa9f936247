#include "FileConverters/CoordinationWorkspaceSection/inspect/ContentInspection.h"

#include "FileConverters/CoordinationWorkspaceSection/ConversionSteps.h"
#include "FileConverters/CoordinationWorkspaceSection/inspect/FindingList.h"
#include "FileConverters/CoordinationWorkspaceSection/inspect/TextLayout.h"
#include "ZelMain/FrequencyCompatibility/shared/CompatProfileFormat.h"
#include "ZelMain/FrequencyCompatibility/shared/RecordFormat.h"

#include <QDomElement>
#include <QHash>
#include <QSet>

using namespace CompatProfileFormat;
using TextLayout::quoted;

namespace {

const char* const UNREAD = "No rule reads it; it does not reach the new element.";

template <typename Elements>
QSet<QString> namesOf(const Elements& elements)
{
    QSet<QString> names;
    for (const IntegerElement& element : elements) {
        names.insert(QLatin1String(element.name));
    }
    return names;
}

// Elements that the conversion looks for at any depth; they are no content of what they stand in.
bool isFoundAnywhere(const QString& name)
{
    static const QSet<QString> NAMES = {
        QStringLiteral("mic_channels"),          QStringLiteral("compat_configs"),
        QStringLiteral("compat_config"),         QStringLiteral("compat_profiles"),
        QStringLiteral("compat_profile"),        QStringLiteral("compatibility_levels"),
        QStringLiteral("coordinated_data_root"),
    };
    return NAMES.contains(name);
}

// The field that an element of a system key stands for; empty when it stands for none.
QString keyFieldOf(const QString& name)
{
    static const QHash<QString, QString> FIELDS = {
        {QStringLiteral("zone"), QStringLiteral("zone")},
        {QStringLiteral("series"), QStringLiteral("series")},
        {QStringLiteral("band"), QStringLiteral("band")},
        {QStringLiteral("tx_profile"), QStringLiteral("tx_profile")},
        {QStringLiteral("mode"), QStringLiteral("tx_profile")},
        {QStringLiteral("incl_group"), QStringLiteral("incl_group")},
    };
    return FIELDS.value(name);
}

template <typename Visit>
void forEachChild(const QDomElement& parent, Visit visit)
{
    for (QDomElement child = parent.firstChildElement(); !child.isNull();
         child = child.nextSiblingElement()) {
        visit(child);
    }
}

template <typename Visit>
void forEachAttribute(const QDomElement& element, Visit visit)
{
    if (!element.hasAttributes()) {
        return;
    }
    const QDomNamedNodeMap attributes = element.attributes();
    for (int i = 0; i < attributes.size(); ++i) {
        const QDomAttr attribute = attributes.item(i).toAttr();
        visit(attribute.name(), attribute.value());
    }
}

void addUnread(const QDomElement& element, FindingList& findings)
{
    if (!isFoundAnywhere(element.tagName())) {
        findings.add(Finding::UNREAD_ELEMENT, element, QLatin1String(UNREAD));
    }
}

void addUnreadAttribute(const QDomElement& element, const QString& name, const QString& value,
                        FindingList& findings)
{
    findings.addAttribute(
        Finding::UNREAD_ATTRIBUTE, element, name,
        QStringLiteral("No rule reads %1; it does not reach the new element.").arg(quoted(value)));
}

// Reports every attribute but those that are read.
void inspectAttributes(const QDomElement& element, const QSet<QString>& read, FindingList& findings)
{
    forEachAttribute(element, [&](const QString& name, const QString& value) {
        if (!read.contains(name)) {
            addUnreadAttribute(element, name, value, findings);
        }
    });
}

// Text beside child elements, which only elements without children are read for.
void inspectText(const QDomElement& element, FindingList& findings)
{
    for (QDomNode node = element.firstChild(); !node.isNull(); node = node.nextSibling()) {
        const QString text = node.isText() ? node.nodeValue().trimmed() : QString();
        if (!text.isEmpty()) {
            findings.add(Finding::UNREAD_TEXT, element,
                         QStringLiteral("No rule reads the text %1; it does not reach the new"
                                        " element.")
                             .arg(quoted(text)));
        }
    }
}

// An element that is read for its text.
void inspectLeaf(const QDomElement& element, FindingList& findings)
{
    inspectAttributes(element, {}, findings);
    forEachChild(element, [&](const QDomElement& child) { addUnread(child, findings); });
}

/** @param text  the element's. */
void inspectNumber(const QDomElement& element, const QString& text, const QString& consequence,
                   FindingList& findings)
{
    bool isNumber = false;
    text.toInt(&isNumber);
    if (!isNumber) {
        findings.add(Finding::NUMBER_UNREADABLE, element,
                     QStringLiteral("%1 is no whole number of 32 bits and counts as 0%2.")
                         .arg(quoted(text), consequence));
    }
}

void inspectAttributeNumber(const QDomElement& element, const QString& attribute,
                            const QString& consequence, FindingList& findings)
{
    bool isNumber = false;
    const QString text = element.attribute(attribute);
    text.toInt(&isNumber);
    if (!isNumber) {
        findings.addAttribute(Finding::NUMBER_UNREADABLE, element, attribute,
                              QStringLiteral("%1 is no whole number of 32 bits and counts as 0%2.")
                                  .arg(quoted(text), consequence));
    }
}

/** Finds fields whose value a later element replaces. */
class LastOfEach
{
public:
    explicit LastOfEach(FindingList& findings) : m_findings(findings) {}

    /** @param meaning  what of the element counts; equal meanings replace nothing. */
    void see(const QString& field, const QDomElement& element, const QString& meaning)
    {
        Seen& last = m_last[field];
        if (!last.element.isNull() && last.meaning != meaning) {
            m_findings.add(Finding::VALUE_REPLACED, last.element,
                           QStringLiteral("%1 gives way to %2 in line %3.")
                               .arg(quoted(last.meaning), quoted(meaning),
                                    QString::number(m_findings.places().of(element).line)));
        }
        last = {element, meaning};
    }

private:
    struct Seen
    {
        QDomElement element;
        QString meaning;
    };

    FindingList& m_findings;
    QHash<QString, Seen> m_last;
};

void seeKeyFields(const QDomElement& key, LastOfEach& lastOfEach)
{
    forEachChild(key, [&](const QDomElement& child) {
        const QString field = keyFieldOf(child.tagName());
        if (!field.isEmpty()) {
            lastOfEach.see(field, child, child.text());
        }
    });
}

void inspectKey(const QDomElement& key, FindingList& findings)
{
    inspectAttributes(key, {}, findings);
    inspectText(key, findings);
    forEachChild(key, [&](const QDomElement& child) {
        if (keyFieldOf(child.tagName()).isEmpty()) {
            addUnread(child, findings);
        } else {
            inspectLeaf(child, findings);
        }
    });
}

void inspectFlags(const QDomElement& flags, LastOfEach& lastOfEach, FindingList& findings)
{
    inspectAttributes(flags, {}, findings);
    inspectText(flags, findings);
    forEachChild(flags, [&](const QDomElement& child) {
        const QString name = child.tagName();
        if (!ConversionSteps::isFlag(name)) {
            addUnread(child, findings);
            return;
        }
        const QString text = child.text();
        inspectLeaf(child, findings);
        inspectNumber(child, text, QStringLiteral(", which switches its spacing off"), findings);
        lastOfEach.see(name, child, text.toInt() == 0 ? QStringLiteral("0") : QStringLiteral("1"));
    });
}

// The children whose names are numbers of the record; the others go to @p other.
template <typename Other>
void inspectNumbers(const QDomElement& parent, const QSet<QString>& numbers, FindingList& findings,
                    Other other)
{
    LastOfEach lastOfEach(findings);
    forEachChild(parent, [&](const QDomElement& child) {
        const QString name = child.tagName();
        if (!numbers.contains(name)) {
            other(child);
            return;
        }
        const QString text = child.text();
        inspectLeaf(child, findings);
        inspectNumber(child, text, {}, findings);
        lastOfEach.see(name, child, text);
    });
}

void inspectSpacing(const QDomElement& spacing, FindingList& findings)
{
    static const QSet<QString> NUMBERS = namesOf(SPACINGS);
    forEachAttribute(spacing, [&](const QString& name, const QString& value) {
        if (name != QLatin1String(RecordFormat::UNITS_ATTRIBUTE)) {
            addUnreadAttribute(spacing, name, value, findings);
        } else if (value != QLatin1String(RecordFormat::UNITS)) {
            findings.addAttribute(
                Finding::UNREAD_ATTRIBUTE, spacing, name,
                QStringLiteral("The unit %1 is not read: the numbers are taken as kHz.")
                    .arg(quoted(value)));
        }
    });
    inspectText(spacing, findings);
    inspectNumbers(spacing, NUMBERS, findings,
                   [&](const QDomElement& child) { addUnread(child, findings); });
}

int countEntries(const QDomElement& filter)
{
    int count = 0;
    forEachChild(filter, [&](const QDomElement& child) {
        if (child.tagName() == QLatin1String(CENTER_LIST_ELEMENT)) {
            forEachChild(child, [&](const QDomElement& /*entry*/) { ++count; });
        }
    });
    return count;
}

// Lists are joined, so their counts are compared with the entries of all of them.
void inspectCentreList(const QDomElement& list, int entries, FindingList& findings)
{
    forEachAttribute(list, [&](const QString& name, const QString& value) {
        if (name != QLatin1String(CENTER_COUNT_ATTRIBUTE)) {
            addUnreadAttribute(list, name, value, findings);
        } else if (value.toInt() != entries) {
            findings.addAttribute(Finding::VALUE_REPLACED, list, name,
                                  QStringLiteral("%1 gives way to the number of entries, %2.")
                                      .arg(quoted(value), QString::number(entries)));
        }
    });
    inspectText(list, findings);
    forEachChild(list, [&](const QDomElement& entry) {
        inspectLeaf(entry, findings);
        inspectNumber(entry, entry.text(), {}, findings);
    });
}

void inspectFilterType(const QDomElement& filter, FindingList& findings)
{
    if (filter.hasAttribute(QLatin1String(FILTER_TYPE_ATTRIBUTE))) {
        inspectAttributeNumber(filter, QLatin1String(FILTER_TYPE_ATTRIBUTE), {}, findings);
    } else {
        findings.add(Finding::NUMBER_UNREADABLE, filter,
                     QStringLiteral("The filter has no type; it counts as 0."));
    }
}

void inspectFilter(const QDomElement& filter, FindingList& findings)
{
    static const QSet<QString> NUMBERS = namesOf(FILTER_VALUES);
    inspectAttributes(filter, {QLatin1String(FILTER_TYPE_ATTRIBUTE)}, findings);
    inspectFilterType(filter, findings);
    inspectText(filter, findings);
    const int type = filter.attribute(QLatin1String(FILTER_TYPE_ATTRIBUTE)).toInt();
    const int entries = countEntries(filter);
    inspectNumbers(filter, NUMBERS, findings, [&](const QDomElement& child) {
        if (child.tagName() != QLatin1String(CENTER_LIST_ELEMENT)) {
            addUnread(child, findings);
        } else if (type == EBF_CENTER_LIST) {
            inspectCentreList(child, entries, findings);
        } else if (child.hasChildNodes()) {
            findings.add(Finding::CENTRE_LIST_DROPPED, child,
                         QStringLiteral("A filter of type %1 has no list of centres: the list is"
                                        " dropped.")
                             .arg(type));
        }
    });
}

void inspectTruth(const QDomElement& profile, const char* attribute, FindingList& findings)
{
    const QString name = QLatin1String(attribute);
    if (!profile.hasAttribute(name)) {
        return;
    }
    inspectAttributeNumber(profile, name, QStringLiteral(", which means no"), findings);
    const int value = profile.attribute(name).toInt();
    if (value != 0 && value != 1) {
        findings.addAttribute(
            Finding::VALUE_REPLACED, profile, name,
            QStringLiteral("%1 gives way to \"1\".").arg(quoted(profile.attribute(name))));
    }
}

void inspectProfileAttributes(const QDomElement& profile, FindingList& findings)
{
    static const QSet<QString> READ = {
        QLatin1String(RecordFormat::ID_ATTRIBUTE), QLatin1String(NAME_ATTRIBUTE),
        QLatin1String(IMD_SOURCE_ATTRIBUTE), QLatin1String(SYNTHESIZABLE_ATTRIBUTE)};
    forEachAttribute(profile, [&](const QString& name, const QString& value) {
        if (name == QLatin1String(RecordFormat::VERSION_ATTRIBUTE)) {
            if (value != QLatin1String(RecordFormat::VERSION)) {
                findings.addAttribute(Finding::VALUE_REPLACED, profile, name,
                                      QStringLiteral("%1 gives way to \"%2\".")
                                          .arg(quoted(value), RecordFormat::VERSION));
            }
        } else if (!READ.contains(name)) {
            addUnreadAttribute(profile, name, value, findings);
        }
    });
    inspectTruth(profile, IMD_SOURCE_ATTRIBUTE, findings);
    inspectTruth(profile, SYNTHESIZABLE_ATTRIBUTE, findings);
}

} // namespace

void ContentInspection::inspectChannel(const QDomElement& channel, FindingList& findings)
{
    LastOfEach lastOfEach(findings);
    forEachChild(channel, [&](const QDomElement& child) {
        if (child.tagName() == QLatin1String("compat_key")) {
            seeKeyFields(child, lastOfEach);
        } else if (child.tagName() == QLatin1String("compat_prof_id")) {
            lastOfEach.see(child.tagName(), child, child.text());
        }
    });
}

void ContentInspection::inspectConfiguration(const QDomElement& configuration,
                                             FindingList& findings)
{
    LastOfEach lastOfEach(findings);
    inspectAttributes(configuration, {}, findings);
    inspectText(configuration, findings);
    forEachChild(configuration, [&](const QDomElement& child) {
        if (child.tagName() == QLatin1String("profile")) {
            inspectKey(child, findings);
            seeKeyFields(child, lastOfEach);
        } else if (child.tagName() == QLatin1String("compat_flags")) {
            inspectFlags(child, lastOfEach, findings);
        } else {
            addUnread(child, findings);
        }
    });
}

void ContentInspection::inspectProfile(const QDomElement& profile, FindingList& findings)
{
    inspectProfileAttributes(profile, findings);
    inspectText(profile, findings);
    const QDomElement spacing = profile.firstChildElement(QLatin1String(SPACING_ELEMENT));
    const QDomElement filter = profile.firstChildElement(QLatin1String(FILTER_ELEMENT));
    forEachChild(profile, [&](const QDomElement& child) {
        if (child == spacing) {
            inspectSpacing(child, findings);
        } else if (child == filter) {
            inspectFilter(child, findings);
        } else {
            addUnread(child, findings);
        }
    });
}

void ContentInspection::inspectContainer(const QDomElement& container, FindingList& findings)
{
    inspectText(container, findings);
    forEachChild(container, [&](const QDomElement& child) { addUnread(child, findings); });
}
