#include "ZelMain/FrequencyCompatibility/QDomRecord.h"

#include "ZelMain/FrequencyCompatibility/QDomDocHelper.h"
#include "ZelMain/FrequencyCompatibility/shared/RecordFormat.h"

#include <QDomDocument>

#include <boost/uuid/string_generator.hpp>
#include <boost/uuid/uuid_io.hpp>

namespace {

// Texts of the format as Qt holds them, made once: documents have thousands of records, and the
// nodes of a document share the text that they are given.
struct Names
{
    const QString versionAttribute = QLatin1String(RecordFormat::VERSION_ATTRIBUTE);
    const QString version = QLatin1String(RecordFormat::VERSION);
    const QString idAttribute = QLatin1String(RecordFormat::ID_ATTRIBUTE);
    const QString unitsAttribute = QLatin1String(RecordFormat::UNITS_ATTRIBUTE);
    const QString units = QLatin1String(RecordFormat::UNITS);
};

Names const& names()
{
    static const Names instance;
    return instance;
}

} // namespace

QDomElement QDomRecord::createElement(QDomDocument& doc, QString const& name,
                                      boost::uuids::uuid const& id)
{
    QDomElement element = doc.createElement(name);
    element.setAttribute(names().versionAttribute, names().version);
    element.setAttribute(names().idAttribute, QString::fromStdString(boost::uuids::to_string(id)));
    return element;
}

boost::uuids::uuid QDomRecord::readId(QDomElement const& element)
{
    const QByteArray text = element.attribute(names().idAttribute).toLatin1();
    return boost::uuids::string_generator()(text.begin(), text.end());
}

QDomElement QDomRecord::appendKilohertz(QDomDocument& doc, QString const& name, QDomElement& parent)
{
    QDomElement element = doc.createElement(name);
    element.setAttribute(names().unitsAttribute, names().units);
    parent.appendChild(element);
    return element;
}

void QDomRecord::appendInteger(QDomDocument& doc, QString const& name, int value, QDomNode& parent)
{
    QDomDocHelper::CreateChildNode(doc, name, QString::number(value), parent);
}
