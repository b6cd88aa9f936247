#pragma once

#include <boost/uuid/uuid.hpp>

#include <string>
#include <vector>

#pragma GCC visibility push(default) // what a shared library shows

namespace tinyxml2 {
class XMLDocument;
class XMLElement;
} // namespace tinyxml2

/** The kind of receive filter. Any integer is a value and is carried through unchanged. */
enum EBFType : int {
    EBF_NOT_SET = -1,
    EBF_CENTER_LIST = 2, ///< the centre frequencies come as a list
};

/**
 * How far apart the transmitters of one kind of wireless system must be kept, from each other and
 * from their intermodulation products, and what receive filter the system has.
 *
 * A plain value. It writes itself as a "compat_profile" element through tinyxml2, in a form
 * without the list of filter centres; reading needs the Qt DOM and the class that adds it.
 */
class PkCompatProfile
{
public:
    /** Versions of a binary form. There is none yet. */
    enum Version : int {};

    PkCompatProfile();
    PkCompatProfile(PkCompatProfile const& other);
    PkCompatProfile(PkCompatProfile&& other) noexcept;
    PkCompatProfile& operator=(PkCompatProfile const& other);
    PkCompatProfile& operator=(PkCompatProfile&& other) noexcept;
    virtual ~PkCompatProfile();

    /**
     * Writes the "compat_profile" element, indented and without XML declaration, to a file.
     *
     * @param path  of the file, in the encoding of the file system; an existing file is replaced.
     * @param compact  has no effect here: this form is always indented.
     * @return whether the file was written.
     */
    virtual bool Export(std::string const& path, bool compact) const;

    /**
     * Makes the "compat_profile" element in @p doc, which owns it.
     *
     * @param parent  an element of @p doc that gets the element as its last child; when null, the
     *     document itself does.
     * @return the element. A list of filter centres is never written, whatever the filter type.
     */
    virtual tinyxml2::XMLElement* Export(tinyxml2::XMLDocument& doc,
                                         tinyxml2::XMLElement* parent) const;

    /** Returns false: this record cannot read itself. */
    virtual bool Import(std::string const& path);

    /** Returns false and touches nothing: there is no binary form. */
    virtual bool Serialize(Version version, void*& data, int& size) const;

    /** Returns false and touches nothing: there is no binary form. */
    virtual bool Deserialize(void const* data, int& size, Version& version);

    std::string name; ///< UTF-8
    boost::uuids::uuid id;

    // Minimum spacings in kilohertz: from channel to channel, and from intermodulation products of
    // two or three transmitters (2t, 3t) of third to ninth order (3o to 9o).
    int chCh = 0;
    int imd2t3o = 0;
    int imd2t5o = 0;
    int imd2t7o = 0;
    int imd2t9o = 0;
    int imd3t3o = 0;

    EBFType filterType = EBF_NOT_SET;
    int filterStart = 0;
    int filterEnd = 0;
    int filterCenter = 0;
    std::vector<int> filterCenterList; ///< used only when filterType is EBF_CENTER_LIST

    bool imdSource = true;     ///< the system is a source of intermodulation products
    bool synthesizable = true; ///< the system's frequency is synthesized, so it can be tuned
};

#pragma GCC visibility pop
