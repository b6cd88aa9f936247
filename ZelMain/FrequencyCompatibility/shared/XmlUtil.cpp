#include "ZelMain/FrequencyCompatibility/shared/XmlUtil.h"

#include "ZelMain/FrequencyCompatibility/shared/PkCompatProfile.h"

#include <tinyxml2.h>

#include <locale>
#include <sstream>

namespace xmlutil {

tinyxml2::XMLElement* CreateChildNode(std::string const& name, std::string const& text,
                                      tinyxml2::XMLDocument& doc, tinyxml2::XMLElement* parent)
{
    tinyxml2::XMLElement* const element = doc.NewElement(name.c_str());
    if (!text.empty()) {
        element->SetText(text.c_str());
    }
    parent->InsertEndChild(element);
    return element;
}

template <typename T>
std::string ToStr(T const& value)
{
    std::ostringstream stream;
    // A program that sets a global locale would otherwise get its group separators into the file.
    stream.imbue(std::locale::classic());
    stream << static_cast<int>(value);
    return stream.str();
}

template std::string ToStr<int>(int const& value);
template std::string ToStr<EBFType>(EBFType const& value);

} // namespace xmlutil
