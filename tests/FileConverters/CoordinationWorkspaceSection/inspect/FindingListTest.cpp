#include "FileConverters/CoordinationWorkspaceSection/inspect/FindingList.h"

#include <QtTest>

namespace {

const QString MICROPHONE = QString::fromUtf8("🎤"); // two code units

QString letters(int count)
{
    return QString(count, QLatin1Char('x'));
}

} // namespace

class FindingListTest : public QObject
{
    Q_OBJECT

private slots:
    void valuesAreQuotedAndCut_data();
    void valuesAreQuotedAndCut();
};

void FindingListTest::valuesAreQuotedAndCut_data()
{
    QTest::addColumn<QString>("value");
    QTest::addColumn<QString>("shown");
    QTest::newRow("nothing") << QString() << "\"\"";
    QTest::newRow("short") << "Große Bühne"
                           << "\"Große Bühne\"";
    QTest::newRow("forty characters") << letters(40) << "\"" + letters(40) + "\"";
    QTest::newRow("one more") << letters(41) << "\"" + letters(40) + "...\"";
    QTest::newRow("no half character at the cut")
        << letters(39) + MICROPHONE << "\"" + letters(39) + "...\"";
    QTest::newRow("a whole one in front of it") << letters(38) + MICROPHONE + "y"
                                                << "\"" + letters(38) + MICROPHONE + "...\"";
    QTest::newRow("control characters become blanks") << "a\nb\tc\x7F"
                                                      << "\"a b c \"";
}

void FindingListTest::valuesAreQuotedAndCut()
{
    QFETCH(QString, value);
    QTEST(FindingList::quoted(value), "shown");
}

QTEST_GUILESS_MAIN(FindingListTest)
#include "FindingListTest.moc"
