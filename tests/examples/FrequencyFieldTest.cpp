#include "FrequencyField.h"

#include <QSignalSpy>
#include <QTest>

class FrequencyFieldTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void typedTextBecomesTheFrequency_data();
    void typedTextBecomesTheFrequency();
    void textThatIsRefusedGoesBack_data();
    void textThatIsRefusedGoesBack();
    void anEmptyFieldStandsForFindBest();
    void leavingTheFieldChangesNothing();
};

namespace {

void type(FrequencyField& field, const QString& text)
{
    field.selectAll();
    QTest::keyClick(&field, Qt::Key_Delete);
    QTest::keyClicks(&field, text);
    QTest::keyClick(&field, Qt::Key_Return);
}

} // namespace

void FrequencyFieldTest::initTestCase()
{
    QLocale::setDefault(QLocale::c());
}

void FrequencyFieldTest::typedTextBecomesTheFrequency_data()
{
    QTest::addColumn<QString>("typed");
    QTest::addColumn<double>("khz");
    QTest::addColumn<QString>("shown");
    QTest::newRow("bare number") << "470.125" << 470125.0 << "470.125 MHz";
    QTest::newRow("megahertz") << " 470.1 MHz " << 470100.0 << "470.100 MHz";
    QTest::newRow("kilohertz") << "470125 khz" << 470125.0 << "470.125 MHz";
    QTest::newRow("gigahertz") << "1.5 GHz" << 1500000.0 << "1500.000 MHz";
    QTest::newRow("steps of 10 Hz") << "470.12345" << 470123.45 << "470.12345 MHz";
    QTest::newRow("lowest allowed") << "30" << 30000.0 << "30.000 MHz";
    QTest::newRow("highest allowed") << "2 GHz" << 2000000.0 << "2000.000 MHz";
}

void FrequencyFieldTest::typedTextBecomesTheFrequency()
{
    QFETCH(const QString, typed);
    FrequencyField field;
    const QSignalSpy changes(&field, &FrequencyField::frequencyChanged);
    type(field, typed);
    QTEST(field.frequency().inKhz(), "khz");
    QTEST(field.text(), "shown");
    QCOMPARE(changes.size(), 1);
    QCOMPARE(changes[0][0].value<Frequency>(), field.frequency());
}

void FrequencyFieldTest::textThatIsRefusedGoesBack_data()
{
    QTest::addColumn<QString>("typed");
    QTest::newRow("no number") << "abc";
    QTest::newRow("no unit of a frequency") << "470 m";
    QTest::newRow("hertz") << "470125000 Hz";
    QTest::newRow("below the lowest") << "29.999";
    QTest::newRow("above the highest") << "2000.001";
    QTest::newRow("not a number") << "nan";
    QTest::newRow("zero") << "0";
}

void FrequencyFieldTest::textThatIsRefusedGoesBack()
{
    QFETCH(const QString, typed);
    FrequencyField field;
    field.setFrequency(Frequency::fromKhz(470125));
    const QSignalSpy changes(&field, &FrequencyField::frequencyChanged);
    type(field, typed);
    QCOMPARE(field.text(), "470.125 MHz");
    QCOMPARE(field.frequency(), Frequency::fromKhz(470125));
    QCOMPARE(changes.size(), 0);
}

void FrequencyFieldTest::anEmptyFieldStandsForFindBest()
{
    FrequencyField field;
    QCOMPARE(field.placeholderText(), "Find Best");
    field.setFrequency(Frequency::fromKhz(470125));
    type(field, {});
    QVERIFY(field.frequency().isNull());
    QCOMPARE(field.text(), QString());
}

void FrequencyFieldTest::leavingTheFieldChangesNothing()
{
    FrequencyField field;
    const double khz = 470125.0001; // finer than what is shown
    field.setFrequency(Frequency::fromKhz(khz));
    QTest::keyClick(&field, Qt::Key_Return);
    QCOMPARE(field.frequency().inKhz(), khz);
}

QTEST_MAIN(FrequencyFieldTest)

#include "FrequencyFieldTest.moc"
