#include "fuzz/DocumentMutator.h"

#include <QTextCodec>

#include <vector>

namespace {

constexpr int MAX_CHANGES = 4;

void collect(const QDomElement& element, std::vector<QDomElement>& all)
{
    all.push_back(element);
    for (QDomElement child = element.firstChildElement(); !child.isNull();
         child = child.nextSiblingElement()) {
        collect(child, all);
    }
}

bool isBelow(QDomNode node, const QDomNode& ancestor)
{
    while (!node.isNull() && node != ancestor) {
        node = node.parentNode();
    }
    return !node.isNull();
}

} // namespace

DocumentMutator::DocumentMutator(const Vocabulary& vocabulary, unsigned int seed)
    : m_vocabulary(vocabulary), m_random(seed)
{
}

QByteArray DocumentMutator::mutated(const QByteArray& document)
{
    QDomDocument changed;
    if (!changed.setContent(document)) {
        return {};
    }
    for (int changes = 1 + number(MAX_CHANGES); changes > 0; --changes) {
        change(changed);
    }
    return printed(changed);
}

QByteArray DocumentMutator::crossed(const QByteArray& document, const QByteArray& other)
{
    QDomDocument changed;
    QDomDocument source;
    if (!changed.setContent(document) || !source.setContent(other)) {
        return {};
    }
    place(changed, changed.importNode(anyElement(source), true));
    return printed(changed);
}

int DocumentMutator::number(int limit)
{
    return static_cast<int>(m_random() % static_cast<unsigned int>(limit));
}

QString DocumentMutator::oneOf(const QStringList& texts)
{
    return texts[number(texts.size())];
}

QDomElement DocumentMutator::anyElement(const QDomDocument& document)
{
    std::vector<QDomElement> all;
    collect(document.documentElement(), all);
    return all[static_cast<std::size_t>(number(static_cast<int>(all.size())))];
}

// Values that occur already matter most: ids and keys are joined by them.
QString DocumentMutator::anyValue(const QDomDocument& document)
{
    switch (number(4)) {
    case 0:
        return QString::number(number(1000) - 10);
    case 1:
        return oneOf(m_vocabulary.values);
    case 2:
        return anyElement(document).attribute(oneOf(m_vocabulary.attributes));
    default:
        return anyElement(document).text().left(100);
    }
}

void DocumentMutator::change(QDomDocument& document)
{
    switch (number(10)) {
    case 0:
    case 1:
        changeText(document);
        break;
    case 2:
        changeAttribute(document);
        break;
    case 3:
        insertElement(document);
        break;
    case 4:
        insertNode(document);
        break;
    case 5:
        duplicate(document);
        break;
    case 6:
        move(document);
        break;
    case 7:
        remove(document);
        break;
    case 8:
        rename(document);
        break;
    default:
        if (m_vocabulary.composite) {
            m_vocabulary.composite(document, m_random);
        }
        break;
    }
}

void DocumentMutator::changeText(QDomDocument& document)
{
    QDomElement element = anyElement(document);
    // A leaf more often than not: an inner element would lose all that is in it.
    if (!element.firstChildElement().isNull() && number(4) != 0) {
        element = element.lastChildElement();
    }
    const QString value = anyValue(document);
    while (element.hasChildNodes()) {
        element.removeChild(element.firstChild());
    }
    element.appendChild(document.createTextNode(value));
}

void DocumentMutator::changeAttribute(QDomDocument& document)
{
    QDomElement element = anyElement(document);
    const QString name = oneOf(m_vocabulary.attributes);
    if (number(4) == 0) {
        element.removeAttribute(name);
    } else {
        element.setAttribute(name, anyValue(document));
    }
}

void DocumentMutator::insertElement(QDomDocument& document)
{
    QDomElement element = document.createElement(oneOf(m_vocabulary.elements));
    if (number(2) == 0) {
        element.appendChild(document.createTextNode(anyValue(document)));
    }
    place(document, element);
}

void DocumentMutator::insertNode(QDomDocument& document)
{
    const QString value = anyValue(document);
    switch (number(4)) {
    case 0:
        place(document, document.createComment(value.contains('-') ? QString() : value));
        break;
    case 1:
        place(document, document.createCDATASection(value.contains(']') ? QString() : value));
        break;
    case 2:
        place(document, document.createProcessingInstruction("note", "none"));
        break;
    default:
        place(document, document.createTextNode(value));
        break;
    }
}

void DocumentMutator::duplicate(QDomDocument& document)
{
    place(document, anyElement(document).cloneNode());
}

void DocumentMutator::move(QDomDocument& document)
{
    const QDomElement element = anyElement(document);
    if (element != document.documentElement()) {
        place(document, element);
    }
}

void DocumentMutator::remove(QDomDocument& document)
{
    const QDomElement element = anyElement(document);
    if (element != document.documentElement()) {
        element.parentNode().removeChild(element);
    }
}

void DocumentMutator::rename(QDomDocument& document)
{
    anyElement(document).setTagName(oneOf(m_vocabulary.elements));
}

// Beside an element or in it; never in itself.
void DocumentMutator::place(QDomDocument& document, const QDomNode& node)
{
    QDomElement where = anyElement(document);
    if (isBelow(where, node)) {
        return;
    }
    QDomNode parent = where.parentNode();
    if (parent == document || number(3) == 0) {
        where.insertBefore(node, where.firstChild());
    } else if (number(2) == 0) {
        parent.insertBefore(node, where);
    } else {
        parent.insertAfter(node, where);
    }
}

QByteArray DocumentMutator::printed(const QDomDocument& document)
{
    const int indent = number(4) == 0 ? 0 : -1; // with line breaks, or all on one line
    const QString text = document.toString(indent);
    if (number(40) != 0) {
        return text.toUtf8();
    }
    // Without a byte-order mark, or with one.
    QTextCodec* const codec = QTextCodec::codecForName(number(2) == 0 ? "UTF-16LE" : "UTF-16BE");
    QTextCodec::ConverterState state(number(2) == 0 ? QTextCodec::DefaultConversion
                                                    : QTextCodec::IgnoreHeader);
    return codec->fromUnicode(text.constData(), text.size(), &state);
}
