#include "ZelMain/FrequencyCompatibility/shared/PkCompatProfile.h"

#include "ZelMain/FrequencyCompatibility/shared/CompatProfileFormat.h"
#include "ZelMain/FrequencyCompatibility/shared/RecordFormat.h"
#include "ZelMain/FrequencyCompatibility/shared/XmlUtil.h"

#include <boost/uuid/nil_generator.hpp>
#include <boost/uuid/uuid_io.hpp>
#include <tinyxml2.h>

#include <cstdio>

using namespace CompatProfileFormat;
using namespace RecordFormat;

namespace {

tinyxml2::XMLElement* newElement(tinyxml2::XMLDocument& doc, char const* name,
                                 char const* attribute, std::string const& value)
{
    tinyxml2::XMLElement* const element = doc.NewElement(name);
    element->SetAttribute(attribute, value.c_str());
    return element;
}

template <typename ELEMENTS>
void appendIntegers(PkCompatProfile const& profile, ELEMENTS const& elements,
                    tinyxml2::XMLDocument& doc, tinyxml2::XMLElement* parent)
{
    for (IntegerElement const& element : elements) {
        xmlutil::CreateChildNode(element.name, xmlutil::ToStr(profile.*element.field), doc, parent);
    }
}

} // namespace

PkCompatProfile::PkCompatProfile() : id(boost::uuids::nil_uuid()) {}

PkCompatProfile::PkCompatProfile(PkCompatProfile const& other) = default;

PkCompatProfile::PkCompatProfile(PkCompatProfile&& other) noexcept = default;

PkCompatProfile& PkCompatProfile::operator=(PkCompatProfile const& other) = default;

PkCompatProfile& PkCompatProfile::operator=(PkCompatProfile&& other) noexcept = default;

PkCompatProfile::~PkCompatProfile() = default;

bool PkCompatProfile::Export(std::string const& path, bool /*compact*/) const
{
    tinyxml2::XMLDocument document(true, tinyxml2::PRESERVE_WHITESPACE);
    Export(document, nullptr);

    // Saving by name would not tell that the disk was full.
    std::FILE* const file = std::fopen(path.c_str(), "w");
    if (file == nullptr) {
        return false;
    }
    const bool saved =
        document.SaveFile(file, false) == tinyxml2::XML_SUCCESS && std::ferror(file) == 0;
    return std::fclose(file) == 0 && saved;
}

tinyxml2::XMLElement* PkCompatProfile::Export(tinyxml2::XMLDocument& doc,
                                              tinyxml2::XMLElement* parent) const
{
    tinyxml2::XMLElement* const root = newElement(doc, ELEMENT, VERSION_ATTRIBUTE, VERSION);
    root->SetAttribute(ID_ATTRIBUTE, boost::uuids::to_string(id).c_str());
    root->SetAttribute(NAME_ATTRIBUTE, name.c_str());
    root->SetAttribute(IMD_SOURCE_ATTRIBUTE, xmlutil::ToStr<int>(imdSource).c_str());
    root->SetAttribute(SYNTHESIZABLE_ATTRIBUTE, xmlutil::ToStr<int>(synthesizable).c_str());

    tinyxml2::XMLElement* const spacing = newElement(doc, SPACING_ELEMENT, UNITS_ATTRIBUTE, UNITS);
    root->InsertFirstChild(spacing);
    appendIntegers(*this, SPACINGS, doc, spacing);

    // The list of filter centres is left out: readers of this form do not know it.
    tinyxml2::XMLElement* const filter =
        newElement(doc, FILTER_ELEMENT, FILTER_TYPE_ATTRIBUTE, xmlutil::ToStr(filterType));
    appendIntegers(*this, FILTER_VALUES, doc, filter);
    root->InsertEndChild(filter);

    if (parent != nullptr) {
        parent->InsertEndChild(root);
    } else {
        doc.InsertEndChild(root);
    }
    return root;
}

bool PkCompatProfile::Import(std::string const& /*path*/)
{
    return false;
}

bool PkCompatProfile::Serialize(Version /*version*/, void*& /*data*/, int& /*size*/) const
{
    return false;
}

bool PkCompatProfile::Deserialize(void const* /*data*/, int& /*size*/, Version& /*version*/)
{
    return false;
}
