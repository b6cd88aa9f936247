#pragma once

#include "ZelMain/FrequencyCompatibility/shared/PkCompatProfile.h"

#include <QDomDocument>

#pragma GCC visibility push(default) // what a shared library shows

class QIODevice;

/**
 * A compatibility profile that reads and writes itself as a "compat_profile" element of the Qt DOM.
 *
 * A value, used by one thread at a time. It has a document of its own, in which the forms without a
 * document argument make their elements; copies do not share it, and assignment leaves it alone.
 */
class QtPkCompatProfile : public PkCompatProfile
{
public:
    /** Every field at its default, the id nil. */
    QtPkCompatProfile();
    QtPkCompatProfile(PkCompatProfile const& profile);
    QtPkCompatProfile(QtPkCompatProfile const& other);
    QtPkCompatProfile& operator=(QtPkCompatProfile const& other);
    ~QtPkCompatProfile() override;

    using PkCompatProfile::Export;

    /**
     * Reads a file as StoreInXml() writes it.
     *
     * The element must be the first node of the file: an XML declaration, another processing
     * instruction or a comment in front of it is refused. A file that stops being well-formed
     * further on is read up to there.
     * @param path  in UTF-8.
     * @return as Import(QDomNode const&), which may throw; false when the file cannot be read.
     */
    bool Import(std::string const& path) override;

    /**
     * Reads a "compat_profile" element.
     *
     * What the element does not have keeps its value, but for the name and the id, and for the
     * filter type once there is a filter. Text that is no integer counts as 0. The centre list is
     * read for the filter type EBF_CENTER_LIST only and appended to what the record has.
     * @return false, with nothing changed, for a node of another name (letter case counts).
     * @throws std::runtime_error when "id" is missing or no UUID text (RFC 4122; the dashes may be
     *         left out, and braces may stand around it); then nothing is changed.
     */
    virtual bool Import(QDomNode const& node);

    /** The element, made in the profile's own document and attached nowhere. */
    virtual QDomElement Export();

    /**
     * Writes to the file at @p path (UTF-8), as StoreInXml() does; an existing file is replaced.
     *
     * A const profile, or one seen as its base, writes the form without centre list instead.
     * @return whether all of it was written.
     */
    virtual bool Export(std::string const& path, bool compact);

    /** Appends the element to @p parent as its last child. Does nothing for a null parent. */
    void Export(QDomNode& parent);

    /** The element, made in @p doc and attached nowhere. */
    QDomElement Export(QDomDocument& doc);

    /**
     * Appends the element to the profile's own document and writes all of that to @p device.
     *
     * So a second call writes two elements. The text is UTF-8 without XML declaration.
     * @param device  open for writing; stays open.
     * @param compact  indents by 1 blank a level, otherwise by 4.
     * @return whether the device took every byte. A device that is not open for writing is left
     *         alone, with a debug message.
     */
    bool StoreInXml(QIODevice& device, bool compact);

private:
    QDomDocument m_document;
};

#pragma GCC visibility pop
