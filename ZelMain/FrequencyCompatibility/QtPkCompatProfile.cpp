#include "ZelMain/FrequencyCompatibility/QtPkCompatProfile.h"

#include "ZelMain/FrequencyCompatibility/QDomFile.h"
#include "ZelMain/FrequencyCompatibility/QDomRecord.h"
#include "ZelMain/FrequencyCompatibility/shared/CompatProfileFormat.h"

#include <QFile>

using namespace CompatProfileFormat;

namespace {

// Texts of the format as Qt holds them, made once: documents have thousands of profiles, and the
// nodes of a document share the text that they are given.
struct Names
{
    template <std::size_t COUNT>
    static std::array<QString, COUNT> of(std::array<IntegerElement, COUNT> const& elements)
    {
        std::array<QString, COUNT> names;
        for (std::size_t i = 0; i < COUNT; ++i) {
            names[i] = QLatin1String(elements[i].name);
        }
        return names;
    }

    const QString element = QLatin1String(ELEMENT);
    const QString nameAttribute = QLatin1String(NAME_ATTRIBUTE);
    const QString imdSourceAttribute = QLatin1String(IMD_SOURCE_ATTRIBUTE);
    const QString synthesizableAttribute = QLatin1String(SYNTHESIZABLE_ATTRIBUTE);
    const QString spacingElement = QLatin1String(SPACING_ELEMENT);
    const QString filterElement = QLatin1String(FILTER_ELEMENT);
    const QString filterTypeAttribute = QLatin1String(FILTER_TYPE_ATTRIBUTE);
    const QString centerListElement = QLatin1String(CENTER_LIST_ELEMENT);
    const QString centerCountAttribute = QLatin1String(CENTER_COUNT_ATTRIBUTE);
    const QString centerElement = QLatin1String(CENTER_ELEMENT);
    const std::array<QString, SPACINGS.size()> spacings = of(SPACINGS);
    const std::array<QString, FILTER_VALUES.size()> filterValues = of(FILTER_VALUES);
};

Names const& names()
{
    static const Names instance;
    return instance;
}

QString flagText(bool flag)
{
    return flag ? QStringLiteral("1") : QStringLiteral("0");
}

template <std::size_t COUNT>
void appendIntegers(PkCompatProfile const& profile,
                    std::array<IntegerElement, COUNT> const& elements,
                    std::array<QString, COUNT> const& elementNames, QDomDocument& doc,
                    QDomElement& parent)
{
    for (std::size_t i = 0; i < COUNT; ++i) {
        QDomRecord::appendInteger(doc, elementNames[i], profile.*elements[i].field, parent);
    }
}

void appendSpacing(PkCompatProfile const& profile, QDomDocument& doc, QDomElement& parent)
{
    QDomElement spacing = QDomRecord::appendKilohertz(doc, names().spacingElement, parent);
    appendIntegers(profile, SPACINGS, names().spacings, doc, spacing);
}

void appendFilter(PkCompatProfile const& profile, QDomDocument& doc, QDomElement& parent)
{
    QDomElement filter = doc.createElement(names().filterElement);
    filter.setAttribute(names().filterTypeAttribute, static_cast<int>(profile.filterType));
    appendIntegers(profile, FILTER_VALUES, names().filterValues, doc, filter);
    if (profile.filterType == EBF_CENTER_LIST) {
        QDomElement list = doc.createElement(names().centerListElement);
        filter.appendChild(list);
        list.setAttribute(names().centerCountAttribute,
                          QString::number(profile.filterCenterList.size()));
        for (const int center : profile.filterCenterList) {
            QDomRecord::appendInteger(doc, names().centerElement, center, list);
        }
    }
    parent.appendChild(filter);
}

QDomElement makeElement(PkCompatProfile const& profile, QDomDocument& doc)
{
    QDomElement element = QDomRecord::createElement(doc, names().element, profile.id);
    element.setAttribute(names().nameAttribute, QString::fromStdString(profile.name));
    element.setAttribute(names().imdSourceAttribute, flagText(profile.imdSource));
    element.setAttribute(names().synthesizableAttribute, flagText(profile.synthesizable));
    appendSpacing(profile, doc, element);
    appendFilter(profile, doc, element);
    return element;
}

void readFlag(QDomElement const& element, QString const& attribute, bool& flag)
{
    if (element.hasAttribute(attribute)) {
        flag = element.attribute(attribute).toInt() != 0;
    }
}

// Stores the element's text when its name is one of the elements'.
template <std::size_t COUNT>
void readInteger(QDomElement const& element, std::array<IntegerElement, COUNT> const& elements,
                 std::array<QString, COUNT> const& elementNames, PkCompatProfile& profile)
{
    const QString name = element.tagName();
    for (std::size_t i = 0; i < COUNT; ++i) {
        if (name == elementNames[i]) {
            profile.*elements[i].field = element.text().toInt();
            return;
        }
    }
}

void readSpacing(QDomElement const& spacing, PkCompatProfile& profile)
{
    for (QDomElement child = spacing.firstChildElement(); !child.isNull();
         child = child.nextSiblingElement()) {
        readInteger(child, SPACINGS, names().spacings, profile);
    }
}

// The list grows by what it reads; whoever wants it fresh imports into a fresh profile.
void readCenters(QDomElement const& list, std::vector<int>& centers)
{
    for (QDomElement child = list.firstChildElement(); !child.isNull();
         child = child.nextSiblingElement()) {
        centers.push_back(child.text().toInt());
    }
}

void readFilter(QDomElement const& filter, PkCompatProfile& profile)
{
    profile.filterType =
        static_cast<EBFType>(filter.attribute(names().filterTypeAttribute).toInt());
    for (QDomElement child = filter.firstChildElement(); !child.isNull();
         child = child.nextSiblingElement()) {
        if (profile.filterType == EBF_CENTER_LIST && child.tagName() == names().centerListElement) {
            readCenters(child, profile.filterCenterList);
        } else {
            readInteger(child, FILTER_VALUES, names().filterValues, profile);
        }
    }
}

} // namespace

QtPkCompatProfile::QtPkCompatProfile() = default;

QtPkCompatProfile::QtPkCompatProfile(PkCompatProfile const& profile) : PkCompatProfile(profile) {}

// Qt's documents are shared by copying, so the copy gets a document of its own.
QtPkCompatProfile::QtPkCompatProfile(QtPkCompatProfile const& other) : PkCompatProfile(other) {}

QtPkCompatProfile& QtPkCompatProfile::operator=(QtPkCompatProfile const& other)
{
    PkCompatProfile::operator=(other);
    return *this;
}

QtPkCompatProfile::~QtPkCompatProfile() = default;

bool QtPkCompatProfile::Import(std::string const& path)
{
    const QString fileName = QString::fromStdString(path);
    if (fileName.isEmpty()) {
        return false; // QFile would warn of it
    }
    QFile file(fileName);
    QDomDocument document;
    // Whatever the parser says: what it made before an error counts, and a file that cannot be read
    // leaves no first child, which is refused below.
    document.setContent(&file);
    return Import(document.firstChild());
}

bool QtPkCompatProfile::Import(QDomNode const& node)
{
    if (node.nodeName() != names().element) {
        return false;
    }
    const QDomElement element = node.toElement();
    id = QDomRecord::readId(element);
    name = element.attribute(names().nameAttribute).toStdString();
    readFlag(element, names().imdSourceAttribute, imdSource);
    readFlag(element, names().synthesizableAttribute, synthesizable);
    readSpacing(element.firstChildElement(names().spacingElement), *this);

    const QDomElement filter = element.firstChildElement(names().filterElement);
    if (!filter.isNull()) {
        readFilter(filter, *this);
    }
    return true;
}

QDomElement QtPkCompatProfile::Export()
{
    return Export(m_document);
}

bool QtPkCompatProfile::Export(std::string const& path, bool compact)
{
    return QDomFile::writeFile(
        path, [this, compact](QIODevice& file) { return StoreInXml(file, compact); });
}

void QtPkCompatProfile::Export(QDomNode& parent)
{
    if (parent.isNull()) {
        return;
    }
    QDomDocument document = parent.ownerDocument();
    parent.appendChild(makeElement(*this, document));
}

QDomElement QtPkCompatProfile::Export(QDomDocument& doc)
{
    return makeElement(*this, doc);
}

bool QtPkCompatProfile::StoreInXml(QIODevice& device, bool compact)
{
    return QDomFile::store(
        m_document, [this] { return Export(); }, device, compact);
}
