#include "fuzz/DocumentMutator.h"

#include "fuzz/Vocabularies.h"

#include <QSet>
#include <QtTest>

Q_DECLARE_METATYPE(const Vocabulary*)

namespace {

constexpr unsigned int SEEDS = 2000;

const QByteArray DOCUMENT = "<coordinated_data_root><mic_channels/><compat_profiles>"
                            "<compat_profile id='7' name='robust'/></compat_profiles>"
                            "</coordinated_data_root>";

QByteArray mutated(const QByteArray& document, unsigned int seed)
{
    return DocumentMutator(Vocabularies::workspace(), seed).mutated(document);
}

} // namespace

class DocumentMutatorTest : public QObject
{
    Q_OBJECT

private slots:
    void sameSeedMakesTheSameChanges();
    void nearlyEveryDocumentChanges();
    void documentsStayWellFormed_data();
    void documentsStayWellFormed();
    void everyElementTurnsUp();
    void systemsAreAddedWhole();
    void otherEncodingsTurnUp();
    void whatIsNotWellFormedIsNotChanged();
    void crossedDocumentHoldsAnElementOfTheOther();
};

void DocumentMutatorTest::sameSeedMakesTheSameChanges()
{
    for (unsigned int seed = 1; seed < SEEDS; ++seed) {
        QCOMPARE(mutated(DOCUMENT, seed), mutated(DOCUMENT, seed));
    }
}

void DocumentMutatorTest::nearlyEveryDocumentChanges()
{
    QSet<QByteArray> made;
    for (unsigned int seed = 1; seed <= SEEDS; ++seed) {
        made.insert(mutated(DOCUMENT, seed));
    }
    QVERIFY2(made.size() > int(SEEDS) * 3 / 4, qPrintable(QString::number(made.size())));
}

void DocumentMutatorTest::documentsStayWellFormed_data()
{
    QTest::addColumn<const Vocabulary*>("vocabulary");
    QTest::newRow("workspace") << &Vocabularies::workspace();
    QTest::newRow("profile") << &Vocabularies::compatProfile();
    QTest::newRow("capability") << &Vocabularies::tuningCapability();
    QTest::newRow("sections") << &Vocabularies::sections();
}

void DocumentMutatorTest::documentsStayWellFormed()
{
    QFETCH(const Vocabulary*, vocabulary);
    QByteArray document = DOCUMENT;
    for (unsigned int seed = 1; seed <= SEEDS; ++seed) {
        const QByteArray next = DocumentMutator(*vocabulary, seed).mutated(document);
        QVERIFY2(QDomDocument().setContent(next), next.constData());
        document = next.size() < 4000 ? next : DOCUMENT; // change upon change
    }
}

void DocumentMutatorTest::everyElementTurnsUp()
{
    QByteArray all;
    for (unsigned int seed = 1; seed <= SEEDS; ++seed) {
        all += mutated(DOCUMENT, seed);
    }
    for (const QString& element : Vocabularies::workspace().elements) {
        QVERIFY2(all.contains('<' + element.toLatin1()), qPrintable(element));
    }
}

void DocumentMutatorTest::systemsAreAddedWhole()
{
    QDomDocument document;
    QVERIFY(document.setContent(QByteArray("<coordinated_data_root/>")));
    std::minstd_rand random;
    for (int count = 1; count <= 3; ++count) {
        Vocabularies::workspace().composite(document, random);
        for (const char* name : {"mic_channel", "compat_config", "compat_profile"}) {
            QCOMPARE(document.elementsByTagName(name).size(), count);
        }
        QCOMPARE(document.elementsByTagName("mic_channels").size(), 1);
    }
    const QString id =
        document.elementsByTagName("compat_profile").item(0).toElement().attribute("id");
    QCOMPARE(document.elementsByTagName("compat_prof_id").item(0).toElement().text(), id);
}

void DocumentMutatorTest::otherEncodingsTurnUp()
{
    int marked = 0;
    int unmarked = 0;
    for (unsigned int seed = 1; seed <= SEEDS; ++seed) {
        const QByteArray document = mutated(DOCUMENT, seed);
        marked += document.startsWith("\xff\xfe") || document.startsWith("\xfe\xff") ? 1 : 0;
        unmarked += document.startsWith(QByteArray("<\0", 2)) ? 1 : 0;
    }
    QVERIFY(marked > 0);
    QVERIFY(unmarked > 0);
}

void DocumentMutatorTest::whatIsNotWellFormedIsNotChanged()
{
    QCOMPARE(mutated("<a", 1), QByteArray());
    QCOMPARE(mutated("", 1), QByteArray());
    DocumentMutator mutator(Vocabularies::workspace(), 1);
    QCOMPARE(mutator.crossed("<a/>", "<"), QByteArray());
    QCOMPARE(mutator.crossed("<", "<a/>"), QByteArray());
}

void DocumentMutatorTest::crossedDocumentHoldsAnElementOfTheOther()
{
    for (unsigned int seed = 1; seed <= SEEDS; ++seed) {
        DocumentMutator mutator(Vocabularies::workspace(), seed);
        QDomDocument document;
        QVERIFY(document.setContent(mutator.crossed(DOCUMENT, "<other/>")));
        QCOMPARE(document.elementsByTagName("other").size(), 1);
    }
}

QTEST_GUILESS_MAIN(DocumentMutatorTest)
#include "DocumentMutatorTest.moc"
