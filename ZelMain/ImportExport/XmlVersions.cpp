#include "ZelMain/ImportExport/XmlVersions.h"

#include <QDomElement>

QMap<QString, QPair<double, QString>> XmlVersions::m_XmlSectionVersionMap;
QMap<QString, double> XmlVersions::m_XmlSectionMinConvertedVersionMap;

XmlVersions::XmlVersions(QObject* parent) : QObject(parent)
{
    const auto current = [](const char* element, const char* name, double version) {
        m_XmlSectionVersionMap.insert(element, {version, name});
    };
    current("show", "Show", XML_VERSION_SHOW);
    current("show_properties", "Show properties", XML_VERSION_SHOW_PROPERTIES);
    current("inventory", "Inventory", XML_VERSION_INVENTORY);
    current("racks", "Linking", XML_VERSION_LINKING);
    current("zones", "Zones", XML_VERSION_ZONES);
    current("coordination_plot", "Coordination plot", XML_VERSION_COORDINATION_PLOT);
    current("channel_management", "Channel state", XML_VERSION_CHANNEL_STATE);
    current("scan_data", "Scan data", XML_VERSION_SCAN_DATA);
    current("channel_exclusions", "Channel exclusion", XML_VERSION_CHANNEL_EXCLUSION);
    current("global_exclusions", "Frequency exclusion", XML_VERSION_FREQUENCY_EXCLUSION);
    current("band_planning", "Band planning", XML_VERSION_BAND_PLANNING);
    current("quilla_plot", "Quilla plot", XML_VERSION_QUILLA_PLOT);
    current("CFLs", "Compatible frequency list", XML_VERSION_CFLS);
    current("monitoring_info", "Monitoring Info", XML_VERSION_CHANNEL_STRIPS);
    current("custom_groups", "Custom groups", XML_VERSION_CUSTOM_GROUPS);
    current("custom_groups_solution", "Custom groups solution", XML_VERSION_CUSTOM_GROUPS_SOLUTION);
    current("presets", "Presets", XML_VERSION_PRESETS);
    current("band_plan_group_list", "Band Plan Gp", XML_VERSION_BANDPLAN_GP);
    current("coordinated_data_root", "Coord WorkSpace", XML_VERSION_COORD_WORKSPACE);

    const auto oldest = [](const char* element, double version) {
        m_XmlSectionMinConvertedVersionMap.insert(element, version);
    };
    oldest("scan_data", XML_MIN_CONVERTED_VERSION_SCAN_DATA);
    oldest("quilla_plot", XML_MIN_CONVERTED_VERSION_QUILLA_PLOT);
    oldest("global_exclusions", XML_MIN_CONVERTED_VERSION_GLOBAL_EXCL);
    oldest("inventory", XML_MIN_CONVERTED_VERSION_INVENTORY);
    oldest("channel_exclusions", XML_MIN_CONVERTED_VERSION_TV_CHANN_EXCL);
    oldest("monitoring_info", XML_MIN_CONVERTED_VERSION_CHANNEL_STRIPS);
    oldest("band_plan_group_list", XML_MIN_CONVERTED_VERSION_BANDPLAN_GP);
    oldest("coordinated_data_root", XML_MIN_CONVERTED_VERSION_COORD_WORKSPACE);
}

XmlVersions::~XmlVersions() = default;

QString XmlVersions::GetXmlVersionString(const QString& sectionName)
{
    const auto known = m_XmlSectionVersionMap.constFind(sectionName);
    return known != m_XmlSectionVersionMap.constEnd() ? GetXmlVersionString(known->first)
                                                      : QString();
}

XmlVersions::XmlValidState XmlVersions::Verdict(const QDomElement& section)
{
    const auto known = m_XmlSectionVersionMap.constFind(section.tagName());
    if (known == m_XmlSectionVersionMap.constEnd()) {
        return XmlInvalid;
    }
    const double current = known->first;
    const double version = SectionVersion(section);
    if (version == current) {
        return XmlCurrent;
    }
    if (version > current) {
        return XmlTooNew;
    }
    if (!(version < current)) {
        return XmlInvalid; // NaN compares with nothing
    }
    const auto oldest = m_XmlSectionMinConvertedVersionMap.constFind(section.tagName());
    if (oldest == m_XmlSectionMinConvertedVersionMap.constEnd()) {
        return XmlNoConversion;
    }
    return version >= *oldest ? XmlConvertible : XmlInvalid;
}

double XmlVersions::SectionVersion(const QDomElement& section)
{
    return section.attribute("version").toDouble();
}
