#pragma once

#include <QObject>
#include <QString>

/**
 * The versions of the workspace's sections and their one text form.
 *
 * A workspace document is made of sections: XML elements whose tag names the section and whose
 * "version" attribute says in which version of that section's format it was written. Versions are
 * decimal numbers with one digit after the point.
 *
 * The constants and GetXmlVersionString(double) need no object and may be used from any thread.
 */
class XmlVersions : public QObject
{
    Q_OBJECT

public:
    explicit XmlVersions(QObject* parent = nullptr);
    ~XmlVersions() override;

    // The versions that this software writes.
    static constexpr double XML_VERSION_SHOW = 1.0;
    static constexpr double XML_VERSION_SHOW_PROPERTIES = 1.0;
    static constexpr double XML_VERSION_INVENTORY = 2.1;
    static constexpr double XML_VERSION_LINKING = 1.0;
    static constexpr double XML_VERSION_ZONES = 1.1;
    static constexpr double XML_VERSION_COORDINATION_PLOT = 1.2;
    static constexpr double XML_VERSION_CHANNEL_STATE = 1.0;
    static constexpr double XML_VERSION_SCAN_DATA = 1.3;
    static constexpr double XML_VERSION_CHANNEL_EXCLUSION = 1.1;
    static constexpr double XML_VERSION_FREQUENCY_EXCLUSION = 1.1;
    static constexpr double XML_VERSION_BAND_PLANNING = 1.0;
    static constexpr double XML_VERSION_QUILLA_PLOT = 1.1;
    static constexpr double XML_VERSION_COMPAT_LEVEL = 1.1;
    static constexpr double XML_VERSION_COMPAT_CONFIG = 1.1;
    /** Of the "compatibility_profile_settings" element. */
    static constexpr double XML_VERSION_COMPAT_PROFILES = 1.0;
    static constexpr double XML_VERSION_COORD_ORDER = 1.1;
    static constexpr double XML_VERSION_CFLS = 1.0;
    static constexpr double XML_VERSION_STRIP_SETTINGS = 1.1;
    static constexpr double XML_VERSION_CHANNEL_STRIPS = 2.2;
    static constexpr double XML_VERSION_CUSTOM_GROUPS = 1.0;
    static constexpr double XML_VERSION_CUSTOM_GROUPS_SOLUTION = 1.0;
    static constexpr double XML_VERSION_CUGL = 1.0;
    static constexpr double XML_VERSION_CUG = 1.0;
    static constexpr double XML_VERSION_PRESETS = 1.1;
    static constexpr double XML_VERSION_BANDPLAN_GP = 1.0;
    /** Of the "coordinated_data_root" section. */
    static constexpr double XML_VERSION_COORD_WORKSPACE = 0.3;

    /**
     * The text of a version: fixed-point with one decimal, rounded to the nearest tenth, in the
     * form of the C locale ("0.3", "1.0", "-2.0"). Every number gives a text.
     */
    static QString GetXmlVersionString(double version);
};
