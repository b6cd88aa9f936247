#include "ZelMain/FrequencyCompatibility/QDomDocHelper.h"

#include <QDomDocument>

void QDomDocHelper::CreateChildNode(QDomDocument& doc, QString const& name, QString const& text,
                                    QDomNode& parent)
{
    QDomElement element = doc.createElement(name);
    element.appendChild(doc.createTextNode(text));
    parent.appendChild(element);
}
