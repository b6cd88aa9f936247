#pragma once

#include <QMap>
#include <QObject>
#include <QPair>
#include <QString>

#pragma GCC visibility push(default) // what a shared library shows

class QDomElement;

/**
 * The versions of the workspace's sections, their one text form, and the judgement of a document's
 * sections by them.
 *
 * A workspace document is made of sections: XML elements whose tag names the section and whose
 * "version" attribute says in which version of that section's format it was written. Versions are
 * decimal numbers with one digit after the point.
 *
 * The constants and GetXmlVersionString(double) need no object and may be used from any thread. All
 * else goes by two tables that the first object of this class fills and that stay from then on;
 * before it, every section is unknown. Every object writes them again without a lock, so make one
 * before other threads judge, and none while they do. Nothing throws.
 *
 * An element's version is the number that its "version" attribute holds in the form of the C
 * locale, 0 when the attribute is missing or holds no number. Element names are told apart by case.
 */
class XmlVersions : public QObject
{
    Q_OBJECT

public:
    /** The verdict on one section. Callers store the numbers. */
    enum XmlValidState {
        XmlInvalid = 0,     ///< unknown section, too old to convert, or a version that is no number
        XmlCurrent = 1,     ///< the version that this software writes
        XmlConvertible = 2, ///< older, and this software can still convert it
        XmlNoConversion = 3, ///< older, and there is no conversion for this section
        XmlTooNew = 4,       ///< newer than this software knows
    };

    /** For each element name its version in the document and the one this software writes. */
    using Conflicts = QMap<QString, QPair<double, double>>;

    /** Fills the tables for the whole program. */
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

    // The oldest versions that are still converted; a section without one has no conversion.
    static constexpr double XML_MIN_CONVERTED_VERSION_SCAN_DATA = 1.2;
    static constexpr double XML_MIN_CONVERTED_VERSION_QUILLA_PLOT = 1.0;
    static constexpr double XML_MIN_CONVERTED_VERSION_GLOBAL_EXCL = 1.0;
    static constexpr double XML_MIN_CONVERTED_VERSION_INVENTORY = 1.5;
    static constexpr double XML_MIN_CONVERTED_VERSION_TV_CHANN_EXCL = 1.0;
    static constexpr double XML_MIN_CONVERTED_VERSION_CHANNEL_STRIPS = 1.1;
    static constexpr double XML_MIN_CONVERTED_VERSION_BANDPLAN_GP = 0.0;
    static constexpr double XML_MIN_CONVERTED_VERSION_COORD_WORKSPACE = 0.1;

    /**
     * The text of a version: fixed-point with one decimal, rounded to the nearest tenth, in the
     * form of the C locale ("0.3", "1.0", "-2.0"). Every number gives a text.
     */
    static QString GetXmlVersionString(double version);

    /** The text of the version that this software writes for a section; empty if it is unknown. */
    static QString GetXmlVersionString(const QString& sectionName);

    /** The verdict on @p section, which nobody else is told of. */
    static XmlValidState Verdict(const QDomElement& section);

    /**
     * The verdict on @p section; an unknown or too new one is logged by the log user
     * LOGUSER_IMPORT_EXPORT and reported to Qt's warnings.
     *
     * This makes the log service if there is none yet, and with it the log folder.
     */
    static XmlValidState IsValidXmlVersion(const QDomElement& section);

    /**
     * Puts @p section into @p conflicts, in place of an earlier one of its name, and reports it to
     * Qt's debug messages if it is older than what this software writes. A section that is current,
     * newer or unknown changes nothing.
     */
    static void CheckSectionVersion(const QDomElement& section, Conflicts& conflicts);

    /**
     * The sections of the document below @p root, itself included, that are older than what this
     * software writes and can be converted.
     *
     * Of each section the first in the document is examined, in the order of their names, by
     * IsValidXmlVersion. The scan ends at the first one that is neither current nor convertible.
     * @param state  becomes the verdict on the section that was examined last.
     */
    static Conflicts GetSectionVersionConflicts(const QDomElement& root, XmlValidState& state);

private:
    static double SectionVersion(const QDomElement& section);

    /** For each element name the version that this software writes and the section's own name. */
    static QMap<QString, QPair<double, QString>> m_XmlSectionVersionMap;
    /** For each element name the oldest version that is still converted. */
    static QMap<QString, double> m_XmlSectionMinConvertedVersionMap;
};

#pragma GCC visibility pop
