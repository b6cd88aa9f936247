#pragma once

#include "ZelMain/FrequencyCompatibility/shared/TuningCapability.h"

#include <QDomDocument>

#pragma GCC visibility push(default) // what a shared library shows

class QIODevice;

/**
 * A tuning capability that reads and writes itself as a "tuning_capability" element of the Qt DOM.
 *
 * A value, used by one thread at a time. It has a document of its own, in which the forms without a
 * parent make their elements; copies do not share it, and assignment leaves it alone.
 *
 * The element holds the raster or, where there is none, the list of frequencies, never both.
 */
class QtPkTuningCapability : public TuningCapability
{
public:
    /** As the record: no frequencies and a random id. @throws boost::uuids::entropy_error */
    QtPkTuningCapability();
    explicit QtPkTuningCapability(boost::uuids::uuid const& uuid);
    QtPkTuningCapability(TuningCapability const& capability);
    QtPkTuningCapability(QtPkTuningCapability const& other);
    QtPkTuningCapability& operator=(QtPkTuningCapability const& other);

    using TuningCapability::Export;

    /** Returns false and reads nothing: there is no reading of files. */
    bool Import(std::string const& path) override;

    ~QtPkTuningCapability() override;

    /**
     * Reads a "tuning_capability" element.
     *
     * Lists are appended to what the record has; other values that the element does not have stay.
     * The raster and the sub ranges are read by Frequency::fromKhzString(), so they follow the
     * default locale's decimal point, the listed frequencies by QString::toDouble(), so they do
     * not. Fractions of a kilohertz are cut off, text that is no number counts as 0, and what does
     * not fit 32 bits as -2147483648. A list of sub ranges must begin with a "sub_range" element,
     * not even with a comment, to be read at all.
     *
     * @return false, with nothing changed, for a node of another name (letter case counts). A
     *         missing or malformed "id" is no failure: it gives the nil UUID.
     */
    virtual bool Import(QDomNode const& node);

    /** The element, made in the capability's own document and attached nowhere. */
    virtual QDomElement Export();

    /**
     * Writes to the file at @p path (UTF-8), as StoreInXml() does; an existing file is replaced.
     *
     * A const capability, or one seen as its base, writes nothing instead.
     * @return whether all of it was written.
     */
    virtual bool Export(std::string const& path, bool compact);

    /** As Export(): also this makes the element in the capability's own document, not in @p doc. */
    QDomElement Export(QDomDocument& doc);

    /**
     * Appends the element, made in the parent's document, to @p parent as its last child. Does
     * nothing for a null parent.
     */
    void Export(QDomNode& parent);

    /**
     * Appends the element to the capability's own document and writes all of that to @p device.
     *
     * So a second call writes two elements. The text is UTF-8 without XML declaration.
     * @param device  open for writing; stays open.
     * @param compact  indents by 1 blank a level, otherwise by 4.
     * @return whether the device took every byte. A device that is not open for writing is left
     *         alone, with a debug message.
     */
    bool StoreInXml(QIODevice& device, bool compact);

    /**
     * Appends a new element @p name with one text node to @p parent, as
     * QDomDocHelper::CreateChildNode() does, both made in the capability's own document.
     */
    void CreateChildNode(QString const& name, QString const& text, QDomElement& parent);

private:
    QDomDocument m_document;
};

#pragma GCC visibility pop
