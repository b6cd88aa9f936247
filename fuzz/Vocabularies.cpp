#include "fuzz/Vocabularies.h"

#include "fuzz/DocumentMutator.h"

#include <utility>
#include <vector>

namespace {

const QStringList NUMBERS = {
    "0",  "1", "2",          "-1",          " 7 ",        "+3",          "1.5", "1e3",
    "no", "",  "2147483647", "-2147483648", "2147483648", "99999999999", "nan", "470,5"};

const QStringList UUIDS = {
    "11111111-1111-4111-8111-111111111111",   "22222222-2222-4222-8222-222222222222",
    "{11111111-1111-4111-8111-111111111111}", "11111111111141118111111111111111",
    "AAAAAAAA-AAAA-4AAA-8AAA-AAAAAAAAAAAA",   "11111111-1111-4111-8111-11111111111",
    "11111111-1111-4111-81111-11111111111",   "{11111111-1111-4111-8111-111111111111"};

const QStringList PROFILE_ELEMENTS = {
    "spacing",           "ch_ch",  "imd_2t3o", "imd_2t5o",     "imd_2t7o",   "imd_2t9o",
    "imd_3t3o",          "filter", "freq",     "filter_start", "filter_end", "filter_center",
    "filter_center_list"};

const QStringList PROFILE_ATTRIBUTES = {"id",   "name",       "imd_source", "synthesizable",
                                        "type", "freq_units", "count",      "version"};

QDomElement withTexts(QDomDocument& document, const QString& name,
                      const std::vector<std::pair<QString, QString>>& children)
{
    QDomElement element = document.createElement(name);
    for (const auto& [child, text] : children) {
        QDomElement leaf = document.createElement(child);
        leaf.appendChild(document.createTextNode(text));
        element.appendChild(leaf);
    }
    return element;
}

QDomElement container(QDomDocument& document, const QString& name)
{
    const QDomElement found = document.elementsByTagName(name).item(0).toElement();
    if (!found.isNull()) {
        return found;
    }
    QDomNode made = document.documentElement().appendChild(document.createElement(name));
    return made.toElement();
}

// What a conversion joins: only with equal numbers of all three anything comes of them.
void addSystem(QDomDocument& document, std::minstd_rand& random)
{
    const auto number = [&random](unsigned int limit) {
        return static_cast<int>(random() % limit);
    };
    const QString id =
        QStringLiteral("%1-1111-4111-8111-111111111111").arg(number(64), 8, 16, QLatin1Char('0'));
    const QString series = QStringLiteral("S%1").arg(number(64));
    const QString band(number(3), QLatin1Char('B'));

    QDomElement channel = document.createElement("mic_channel");
    channel.appendChild(withTexts(document, "compat_key",
                                  {{"series", series}, {"band", band}, {"tx_profile", "T"}}));
    channel.appendChild(withTexts(document, "compat_prof_id", {}))
        .appendChild(document.createTextNode(id));
    container(document, "mic_channels").appendChild(channel);

    QDomElement configuration = document.createElement("compat_config");
    configuration.appendChild(
        withTexts(document, "profile", {{"series", series}, {"band", band}, {"mode", "T"}}));
    configuration.appendChild(withTexts(
        document, "compat_flags",
        {{"imd_2t3o", QString::number(number(2))}, {"imd_3t3o", QString::number(number(2))}}));
    container(document, "compat_configs").appendChild(configuration);

    QDomElement profile = document.createElement("compat_profile");
    profile.setAttribute("id", id);
    profile.setAttribute("name", number(2) == 0 ? "robust" : "median");
    profile.appendChild(withTexts(
        document, "spacing",
        {{"ch_ch", QString::number(number(500))}, {"imd_2t3o", QString::number(number(500))}}));
    container(document, "compat_profiles").appendChild(profile);
}

} // namespace

const Vocabulary& Vocabularies::workspace()
{
    static const Vocabulary VOCABULARY = {QStringList{"coordinated_data_root",
                                                      "mic_channels",
                                                      "mic_channel",
                                                      "compat_key",
                                                      "compat_prof_id",
                                                      "compat_configs",
                                                      "compat_config",
                                                      "profile",
                                                      "compat_flags",
                                                      "compat_profiles",
                                                      "compat_profile",
                                                      "compatibility_levels",
                                                      "compatibility_profile_settings",
                                                      "zone",
                                                      "series",
                                                      "band",
                                                      "tx_profile",
                                                      "mode",
                                                      "incl_group",
                                                      "other"} +
                                              PROFILE_ELEMENTS,
                                          PROFILE_ATTRIBUTES,
                                          NUMBERS + UUIDS +
                                              QStringList{"robust",
                                                          "median",
                                                          "quantity",
                                                          "Robust",
                                                          "Standard",
                                                          "0.1",
                                                          "0.2",
                                                          "0.3",
                                                          "0.4",
                                                          "A",
                                                          "AB",
                                                          "B",
                                                          "C",
                                                          " ",
                                                          "\n",
                                                          "a\nb",
                                                          "a\r\nb",
                                                          "\xC3\xA4",
                                                          "\xF0\x9F\x8E\xA4",
                                                          "KHz",
                                                          "]]>",
                                                          "<&>\"'"},
                                          addSystem};
    return VOCABULARY;
}

const Vocabulary& Vocabularies::compatProfile()
{
    static const Vocabulary VOCABULARY = {QStringList{"compat_profile", "Compat_profile", "other"} +
                                              PROFILE_ELEMENTS,
                                          PROFILE_ATTRIBUTES,
                                          NUMBERS + UUIDS + QStringList{"Standard", "a\nb\t\"<&'"},
                                          {}};
    return VOCABULARY;
}

const Vocabulary& Vocabularies::tuningCapability()
{
    static const Vocabulary VOCABULARY = {{"tuning_capability", "range", "start", "end", "step",
                                           "freq_list", "freq", "sub_range_list", "sub_range",
                                           "other"},
                                          {"id", "version", "freq_units"},
                                          NUMBERS + UUIDS,
                                          {}};
    return VOCABULARY;
}

const Vocabulary& Vocabularies::sections()
{
    static const Vocabulary VOCABULARY = {
        {"show",
         "show_properties",
         "inventory",
         "racks",
         "zones",
         "coordination_plot",
         "channel_management",
         "scan_data",
         "channel_exclusions",
         "global_exclusions",
         "band_planning",
         "quilla_plot",
         "CFLs",
         "monitoring_info",
         "custom_groups",
         "custom_groups_solution",
         "presets",
         "band_plan_group_list",
         "coordinated_data_root",
         "other"},
        {"version", "Version"},
        QStringList{"0.1", "0.2", "0.3", "1.0", "1.1", "1.2", "1.3", "1.5", "2.1", "2.2", "9.9"} +
            NUMBERS,
        {}};
    return VOCABULARY;
}
