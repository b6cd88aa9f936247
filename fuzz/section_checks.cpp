// Hunts documents whose sections are judged otherwise than the table of versions says, and ones in
// which another section is examined than the first of its name.
//
// The input is an XML document.

#include "fuzz/DocumentMutator.h"
#include "fuzz/FuzzTarget.h"
#include "fuzz/Vocabularies.h"

#include "ZelMain/ImportExport/XmlVersions.h"

#include <QDomDocument>

#include <array>
#include <cmath>
#include <optional>
#include <vector>

using FuzzTarget::require;

namespace {

constexpr int MAX_ELEMENTS = 200;

struct Section
{
    const char* element;
    double current;
    std::optional<double> oldest;
};

// In the order in which sections are examined.
constexpr std::array<Section, 19> SECTIONS = {{
    {"CFLs", 1.0, {}},
    {"band_plan_group_list", 1.0, 0.0},
    {"band_planning", 1.0, {}},
    {"channel_exclusions", 1.1, 1.0},
    {"channel_management", 1.0, {}},
    {"coordinated_data_root", 0.3, 0.1},
    {"coordination_plot", 1.2, {}},
    {"custom_groups", 1.0, {}},
    {"custom_groups_solution", 1.0, {}},
    {"global_exclusions", 1.1, 1.0},
    {"inventory", 2.1, 1.5},
    {"monitoring_info", 2.2, 1.1},
    {"presets", 1.1, {}},
    {"quilla_plot", 1.1, 1.0},
    {"racks", 1.0, {}},
    {"scan_data", 1.3, 1.2},
    {"show", 1.0, {}},
    {"show_properties", 1.0, {}},
    {"zones", 1.1, {}},
}};

const Section* sectionOf(const QDomElement& element)
{
    for (const Section& section : SECTIONS) {
        if (element.tagName() == QLatin1String(section.element)) {
            return &section;
        }
    }
    return nullptr;
}

double versionOf(const QDomElement& element)
{
    return element.attribute(QStringLiteral("version")).toDouble();
}

XmlVersions::XmlValidState expectedVerdict(const QDomElement& element)
{
    const Section* const section = sectionOf(element);
    const double version = versionOf(element);
    if (section == nullptr || std::isnan(version)) {
        return XmlVersions::XmlInvalid;
    }
    if (version == section->current) {
        return XmlVersions::XmlCurrent;
    }
    if (version > section->current) {
        return XmlVersions::XmlTooNew;
    }
    if (!section->oldest) {
        return XmlVersions::XmlNoConversion;
    }
    return version >= *section->oldest ? XmlVersions::XmlConvertible : XmlVersions::XmlInvalid;
}

bool goesOn(XmlVersions::XmlValidState state)
{
    return state == XmlVersions::XmlCurrent || state == XmlVersions::XmlConvertible;
}

void addOutdated(const QDomElement& element, XmlVersions::Conflicts& conflicts)
{
    const Section* const section = sectionOf(element);
    if (section != nullptr && section->current > versionOf(element)) {
        conflicts.insert(element.tagName(), {versionOf(element), section->current});
    }
}

// In document order, the outermost element first.
void collect(const QDomElement& element, std::vector<QDomElement>& all)
{
    all.push_back(element);
    for (QDomElement child = element.firstChildElement(); !child.isNull();
         child = child.nextSiblingElement()) {
        collect(child, all);
    }
}

XmlVersions::Conflicts expectedConflicts(const std::vector<QDomElement>& all,
                                         XmlVersions::XmlValidState& state)
{
    XmlVersions::Conflicts conflicts;
    state = expectedVerdict(all[0]);
    if (!goesOn(state)) {
        return conflicts;
    }
    addOutdated(all[0], conflicts);
    for (const Section& section : SECTIONS) {
        for (std::size_t i = 1; i < all.size(); ++i) {
            if (all[i].tagName() != QLatin1String(section.element)) {
                continue;
            }
            state = expectedVerdict(all[i]);
            if (!goesOn(state)) {
                return conflicts;
            }
            addOutdated(all[i], conflicts);
            break; // only the first of a name is examined
        }
    }
    return conflicts;
}

void checkOne(const QDomElement& element)
{
    const XmlVersions::XmlValidState verdict = expectedVerdict(element);
    require(XmlVersions::Verdict(element) == verdict, "a verdict goes by the table");
    require(XmlVersions::IsValidXmlVersion(element) == verdict, "a reported verdict is the same");
    XmlVersions::Conflicts conflicts;
    XmlVersions::Conflicts expected;
    XmlVersions::CheckSectionVersion(element, conflicts);
    addOutdated(element, expected);
    require(conflicts == expected, "an older section is a conflict");

    const Section* const section = sectionOf(element);
    require(XmlVersions::GetXmlVersionString(element.tagName()) ==
                (section == nullptr ? QString() : QString::number(section->current, 'f', 1)),
            "a section's version has one decimal");
}

} // namespace

const Vocabulary& vocabularyOfTarget()
{
    return Vocabularies::sections();
}

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    FuzzTarget::setUp();
    static const XmlVersions TABLES;
    QDomDocument document;
    if (!document.setContent(FuzzTarget::Input(data, size).takeRest())) {
        return 0; // nothing to be learnt about sections
    }
    std::vector<QDomElement> all;
    collect(document.documentElement(), all);
    if (all.size() > MAX_ELEMENTS) {
        return 0; // more elements only take more time
    }
    for (const QDomElement& element : all) {
        checkOne(element);
    }
    XmlVersions::XmlValidState expectedState = XmlVersions::XmlInvalid;
    const XmlVersions::Conflicts expected = expectedConflicts(all, expectedState);
    XmlVersions::XmlValidState state = XmlVersions::XmlInvalid;
    require(XmlVersions::GetSectionVersionConflicts(all[0], state) == expected,
            "the first section of each name is examined");
    require(state == expectedState, "the last verdict is told");
    return 0;
}
