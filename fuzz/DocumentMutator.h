#pragma once

#include <QByteArray>
#include <QDomDocument>
#include <QStringList>

#include <functional>
#include <random>

/** What documents of one kind are made of. */
struct Vocabulary
{
    QStringList elements;
    QStringList attributes;
    QStringList values; ///< of elements and attributes

    /** A change that takes several elements at once; may be empty. */
    std::function<void(QDomDocument&, std::minstd_rand&)> composite;
};

/**
 * Changes XML documents as somebody would who knows their elements: bytes changed at random seldom
 * leave a document well-formed, and never add a system with its channel, configuration and profile.
 *
 * The same seed makes the same changes.
 */
class DocumentMutator
{
public:
    DocumentMutator(const Vocabulary& vocabulary, unsigned int seed);

    /** The document with one to four changes; empty when it is not well-formed. */
    QByteArray mutated(const QByteArray& document);

    /** The document with an element of @p other in it; empty when either is not well-formed. */
    QByteArray crossed(const QByteArray& document, const QByteArray& other);

private:
    int number(int limit);
    QString oneOf(const QStringList& texts);
    QDomElement anyElement(const QDomDocument& document);
    QString anyValue(const QDomDocument& document);

    void change(QDomDocument& document);
    void changeText(QDomDocument& document);
    void changeAttribute(QDomDocument& document);
    void insertElement(QDomDocument& document);
    void insertNode(QDomDocument& document);
    void duplicate(QDomDocument& document);
    void move(QDomDocument& document);
    void remove(QDomDocument& document);
    void rename(QDomDocument& document);
    void place(QDomDocument& document, const QDomNode& node);
    QByteArray printed(const QDomDocument& document);

    const Vocabulary& m_vocabulary;
    std::minstd_rand m_random;
};
