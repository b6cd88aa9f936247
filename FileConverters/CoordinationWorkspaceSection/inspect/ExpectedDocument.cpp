#include "FileConverters/CoordinationWorkspaceSection/inspect/ExpectedDocument.h"

#include <QDomDocument>
#include <QRegularExpression>
#include <QStringList>

#include <algorithm>
#include <array>
#include <map>
#include <string>
#include <vector>

namespace {

const std::array SPACINGS = {"ch_ch", "imd_2t3o", "imd_2t5o", "imd_2t7o", "imd_2t9o", "imd_3t3o"};
const std::array FILTER_VALUES = {"filter_start", "filter_end", "filter_center"};

// In the order of comparison.
const std::array KEY_FIELDS = {"zone", "series", "band", "tx_profile", "incl_group"};
// In the order of writing, by their numbers above.
const std::array<std::size_t, 5> KEY_ORDER = {2, 1, 3, 0, 4};

using Key = std::array<QString, KEY_FIELDS.size()>;

/** A profile as it is written; as made here it is one of defaults. */
struct Profile
{
    QString id = QStringLiteral("00000000-0000-0000-0000-000000000000");
    QString name;
    bool isImdSource = true;
    bool isSynthesizable = true;
    std::array<int, SPACINGS.size()> spacings{};
    int filterType = -1;
    std::array<int, FILTER_VALUES.size()> filter{};
    std::vector<int> centres;
};

/** One configured system: its key, and which spacings stay. */
struct Configuration
{
    Key key;
    std::array<bool, SPACINGS.size()> isKept;
};

/** What the systems are told apart by. */
std::string rankOf(const Key& key)
{
    std::string rank;
    for (const QString& field : key) {
        rank += field.toStdString();
    }
    return rank;
}

std::vector<QDomElement> descendants(const QDomElement& root, const char* name)
{
    const QDomNodeList list = root.elementsByTagName(QLatin1String(name));
    std::vector<QDomElement> found;
    found.reserve(static_cast<std::size_t>(list.size()));
    for (int i = 0; i < list.count(); ++i) {
        found.push_back(list.at(i).toElement());
    }
    return found;
}

QDomElement firstDescendant(const QDomElement& root, const char* name)
{
    return root.elementsByTagName(QLatin1String(name)).at(0).toElement();
}

std::vector<QDomElement> childrenOf(const QDomElement& parent)
{
    std::vector<QDomElement> children;
    for (QDomNode node = parent.firstChild(); !node.isNull(); node = node.nextSibling()) {
        if (node.isElement()) {
            children.push_back(node.toElement());
        }
    }
    return children;
}

void readKey(const QDomElement& element, Key& key)
{
    for (const QDomElement& child : childrenOf(element)) {
        const QString name = child.tagName() == QLatin1String("mode") ? QStringLiteral("tx_profile")
                                                                      : child.tagName();
        const auto* const field =
            std::find_if(KEY_FIELDS.begin(), KEY_FIELDS.end(),
                         [&](const char* known) { return name == QLatin1String(known); });
        if (field != KEY_FIELDS.end()) {
            key[static_cast<std::size_t>(field - KEY_FIELDS.begin())] = child.text();
        }
    }
}

std::map<QString, Key> readIds(const QDomElement& root)
{
    std::map<QString, Key> keys;
    for (const QDomElement& channel : childrenOf(firstDescendant(root, "mic_channels"))) {
        Key key;
        QString id;
        for (const QDomElement& child : childrenOf(channel)) {
            if (child.tagName() == QLatin1String("compat_key")) {
                readKey(child, key);
            }
            if (child.tagName() == QLatin1String("compat_prof_id")) {
                id = child.text();
            }
        }
        keys[id] = key;
    }
    return keys;
}

Configuration readConfiguration(const QDomElement& element)
{
    Configuration configuration;
    configuration.isKept.fill(true);
    for (const QDomElement& child : childrenOf(element)) {
        if (child.tagName() == QLatin1String("profile")) {
            readKey(child, configuration.key);
        }
        if (child.tagName() != QLatin1String("compat_flags")) {
            continue;
        }
        for (const QDomElement& flag : childrenOf(child)) {
            // The spacing between channels, the first one, cannot be switched off.
            for (std::size_t i = 1; i < SPACINGS.size(); ++i) {
                const bool isOff =
                    flag.tagName() == QLatin1String(SPACINGS[i]) && flag.text().toInt() == 0;
                configuration.isKept[i] = configuration.isKept[i] && !isOff;
            }
        }
    }
    return configuration;
}

// Of configurations that are not told apart, the first names the system and the last its flags.
std::map<std::string, Configuration> readConfigurations(const QDomElement& root)
{
    std::map<std::string, Configuration> configurations;
    for (const QDomElement& element : descendants(root, "compat_config")) {
        const Configuration read = readConfiguration(element);
        const auto place = configurations.insert({rankOf(read.key), read}).first;
        place->second.isKept = read.isKept;
    }
    return configurations;
}

// A UUID in the form of 8-4-4-4-12 lower-case digits; empty when the text is none.
QString uuidOf(const QString& text)
{
    static const QRegularExpression UUID(
        QStringLiteral("\\A(\\{)?([0-9a-f]{8})(-?)([0-9a-f]{4})\\3([0-9a-f]{4})\\3([0-9a-f]{4})\\3"
                       "([0-9a-f]{12})(?(1)\\})\\z"),
        QRegularExpression::CaseInsensitiveOption);
    const QRegularExpressionMatch match = UUID.match(text);
    if (!match.hasMatch()) {
        return {};
    }
    const QStringList groups = {match.captured(2), match.captured(4), match.captured(5),
                                match.captured(6), match.captured(7)};
    return groups.join(QLatin1Char('-')).toLower();
}

QString newNameOf(const QString& name)
{
    if (name == QLatin1String("robust")) {
        return QStringLiteral("Robust");
    }
    if (name == QLatin1String("median")) {
        return QStringLiteral("Standard");
    }
    return name == QLatin1String("quantity") ? QStringLiteral("More Frequencies") : QString();
}

template <std::size_t COUNT>
void readNumbers(const QDomElement& parent, const std::array<const char*, COUNT>& names,
                 std::array<int, COUNT>& values)
{
    for (const QDomElement& child : childrenOf(parent)) {
        for (std::size_t i = 0; i < COUNT; ++i) {
            if (child.tagName() == QLatin1String(names[i])) {
                values[i] = child.text().toInt();
            }
        }
    }
}

Profile readProfile(const QDomElement& element)
{
    Profile profile;
    profile.id = uuidOf(element.attribute(QStringLiteral("id")));
    profile.name = newNameOf(element.attribute(QStringLiteral("name")));
    profile.isImdSource =
        element.attribute(QStringLiteral("imd_source"), QStringLiteral("1")).toInt() != 0;
    profile.isSynthesizable =
        element.attribute(QStringLiteral("synthesizable"), QStringLiteral("1")).toInt() != 0;
    readNumbers(element.firstChildElement(QStringLiteral("spacing")), SPACINGS, profile.spacings);

    const QDomElement filter = element.firstChildElement(QStringLiteral("filter"));
    if (filter.isNull()) {
        return profile;
    }
    profile.filterType = filter.attribute(QStringLiteral("type")).toInt();
    readNumbers(filter, FILTER_VALUES, profile.filter);
    for (const QDomElement& list : childrenOf(filter)) {
        if (profile.filterType == 2 && list.tagName() == QLatin1String("filter_center_list")) {
            for (const QDomElement& centre : childrenOf(list)) {
                profile.centres.push_back(centre.text().toInt());
            }
        }
    }
    return profile;
}

/** Makes elements that hold a text. */
class Writer
{
public:
    explicit Writer(QDomDocument& document) : m_document(document) {}

    QDomElement element(const char* name) { return m_document.createElement(QLatin1String(name)); }

    void append(QDomElement& parent, const char* name, const QString& text)
    {
        QDomElement child = element(name);
        child.appendChild(m_document.createTextNode(text));
        parent.appendChild(child);
    }

    template <std::size_t COUNT>
    void append(QDomElement& parent, const std::array<const char*, COUNT>& names,
                const std::array<int, COUNT>& values)
    {
        for (std::size_t i = 0; i < COUNT; ++i) {
            append(parent, names[i], QString::number(values[i]));
        }
    }

private:
    QDomDocument& m_document;
};

QDomElement writeFilter(const Profile& profile, Writer& writer)
{
    QDomElement filter = writer.element("filter");
    filter.setAttribute(QStringLiteral("type"), profile.filterType);
    writer.append(filter, FILTER_VALUES, profile.filter);
    if (profile.filterType == 2) {
        QDomElement list = writer.element("filter_center_list");
        list.setAttribute(QStringLiteral("count"), static_cast<int>(profile.centres.size()));
        for (const int centre : profile.centres) {
            writer.append(list, "freq", QString::number(centre));
        }
        filter.appendChild(list);
    }
    return filter;
}

QDomElement writeProfile(const Profile& profile, Writer& writer)
{
    QDomElement element = writer.element("compat_profile");
    element.setAttribute(QStringLiteral("version"), QStringLiteral("0.0.0.1"));
    element.setAttribute(QStringLiteral("id"), profile.id);
    element.setAttribute(QStringLiteral("name"), profile.name);
    element.setAttribute(QStringLiteral("imd_source"), profile.isImdSource ? 1 : 0);
    element.setAttribute(QStringLiteral("synthesizable"), profile.isSynthesizable ? 1 : 0);
    QDomElement spacing = writer.element("spacing");
    spacing.setAttribute(QStringLiteral("freq_units"), QStringLiteral("KHz"));
    writer.append(spacing, SPACINGS, profile.spacings);
    element.appendChild(spacing);
    element.appendChild(writeFilter(profile, writer));
    return element;
}

using ProfilesByRank = std::map<std::string, Profile>;

// Nothing is joined unless there are as many ids as profiles.
ProfilesByRank joinProfiles(const QDomElement& root)
{
    std::map<QString, Profile> profiles;
    for (const QDomElement& element : descendants(root, "compat_profile")) {
        profiles[element.attribute(QStringLiteral("id"))] = readProfile(element);
    }
    const std::map<QString, Key> ids = readIds(root);
    ProfilesByRank joined;
    if (ids.size() == profiles.size()) {
        for (const auto& [id, key] : ids) {
            const auto found = profiles.find(id);
            joined[rankOf(key)] = found == profiles.end() ? Profile() : found->second;
        }
    }
    return joined;
}

QDomElement writeSystem(const Configuration& configuration, Profile profile, Writer& writer)
{
    QDomElement system = writer.element("profile");
    for (const std::size_t field : KEY_ORDER) {
        // Texts of keys end at a NUL.
        writer.append(system, KEY_FIELDS[field],
                      configuration.key[field].section(QChar(QChar::Null), 0, 0));
    }
    for (std::size_t i = 0; i < SPACINGS.size(); ++i) {
        profile.spacings[i] = configuration.isKept[i] ? profile.spacings[i] : 0;
    }
    system.appendChild(writeProfile(profile, writer));
    return system;
}

// Empty unless there are as many configurations as joined profiles.
QDomElement writeSettings(const QDomElement& root, QDomDocument& document)
{
    Writer writer(document);
    QDomElement settings = writer.element("compatibility_profile_settings");
    const std::map<std::string, Configuration> configurations = readConfigurations(root);
    const ProfilesByRank profiles = joinProfiles(root);
    int count = 0;
    if (configurations.size() == profiles.size()) {
        for (const auto& [rank, configuration] : configurations) {
            const auto found = profiles.find(rank);
            settings.appendChild(writeSystem(
                configuration, found == profiles.end() ? Profile() : found->second, writer));
            ++count;
        }
    }
    settings.setAttribute(QStringLiteral("version"), QStringLiteral("1.0"));
    settings.setAttribute(QStringLiteral("count"), count);
    return settings;
}

bool isConvertible(const QDomDocument& document, QString& problem)
{
    const QDomNodeList roots = document.elementsByTagName(QStringLiteral("coordinated_data_root"));
    if (roots.count() != 1) {
        problem = QStringLiteral("it does not have exactly one \"coordinated_data_root\"");
        return false;
    }
    for (const QDomElement& profile : descendants(roots.at(0).toElement(), "compat_profile")) {
        if (uuidOf(profile.attribute(QStringLiteral("id"))).isEmpty()) {
            problem = QStringLiteral("the id of a profile is no UUID");
            return false;
        }
    }
    return true;
}

} // namespace

bool makeExpectedDocument(QDomDocument& document, QString& problem)
{
    if (!isConvertible(document, problem)) {
        return false;
    }
    QDomElement root =
        document.elementsByTagName(QStringLiteral("coordinated_data_root")).at(0).toElement();
    const QDomElement settings = writeSettings(root, document);
    const QDomElement micChannels = firstDescendant(root, "mic_channels");
    const std::array oldContainers = {firstDescendant(root, "compat_profiles"),
                                      firstDescendant(root, "compatibility_levels"),
                                      firstDescendant(root, "compat_configs")};

    root.setAttribute(QStringLiteral("version"), QStringLiteral("0.3"));
    for (QDomElement profile : descendants(root, "compat_profile")) {
        profile.setAttribute(QStringLiteral("name"),
                             newNameOf(profile.attribute(QStringLiteral("name"))));
    }
    if (micChannels.isNull()) {
        root.appendChild(settings);
    } else if (micChannels.parentNode() == root) {
        root.insertAfter(settings, micChannels);
    }
    for (const QDomElement& container : oldContainers) {
        if (container.parentNode() == root) {
            root.removeChild(container);
        }
    }
    return true;
}
