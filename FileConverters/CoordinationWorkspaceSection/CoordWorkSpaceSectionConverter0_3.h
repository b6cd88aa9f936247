#pragma once

#include <QMap>

class CompatSystemUniqueKey;
class PkCompatProfile;
class QDomDocument;
class QDomElement;
class QString;

/**
 * Brings the coordination workspace of a document to section version 0.3.
 *
 * Older documents keep the compatibility settings of a wireless system in three places: the
 * microphone channels name system keys and profile ids, the compatibility configurations name
 * system keys and the intermodulation products that count, and the profiles stand in a list. The
 * conversion joins them into one "compatibility_profile_settings" element.
 *
 * Only static operations; each works on what it is given and may run on any thread.
 */
class CoordWorkSpaceSectionConverter0_3
{
public:
    CoordWorkSpaceSectionConverter0_3() = delete;

    /**
     * Reads a whole text file.
     *
     * A Unicode byte-order mark decides the encoding. Without one it is the locale's (UTF-8 unless
     * a program sets another), or UTF-16 in the machine's byte order when the first line reads as
     * exactly one ASCII character up to its end or the first NUL, as UTF-16 text does that starts
     * with "<".
     * @param text  replaced by the content; left as it is when the file cannot be opened or fails
     *              while it is read.
     */
    static void ReadInputFile(const QString& path, QString& text);

    /**
     * Converts the document in place.
     *
     * Lenient by design: places that are missing contribute nothing, counts that do not match give
     * an empty settings element, and a profile name that is not one of the three old ones becomes
     * empty.
     * @return false, with the document unchanged, when it does not have exactly one
     *         "coordinated_data_root" element.
     * @throws std::runtime_error when a "compat_profile" has no UUID as its "id"; the document is
     *         unchanged then.
     */
    static bool Convert(QDomDocument& document);

    /**
     * Reads a system key out of a "compat_key" or "profile" element.
     *
     * Each child element named after a field overwrites it with the text below it; "mode" is an
     * older name of "tx_profile". Nothing is trimmed or judged.
     * @param key  keeps the fields that no child names.
     */
    static void CompatKeyParser(const QDomElement& element, CompatSystemUniqueKey& key);

    /**
     * Makes the "compatibility_profile_settings" element, with one "profile" an entry in key order.
     *
     * Keys are read as UTF-8 up to their first NUL.
     * @return the element, owned by @p document and not yet inserted anywhere.
     */
    static QDomElement
    CreateCompatProfileSettingsElem(QDomDocument& document,
                                    const QMap<CompatSystemUniqueKey, PkCompatProfile>& profiles);
};
