#include "FileConverters/CoordinationWorkspaceSection/Utf8Output.h"

#include <QString>
#include <QtTest>

#include <algorithm>
#include <sstream>
#include <streambuf>
#include <string>

namespace {

// Takes so many bytes and fails then, as a full disk does; or fails only when it is flushed.
class LimitedBuffer : public std::streambuf
{
public:
    explicit LimitedBuffer(std::size_t limit, bool flushes = true)
        : m_limit(limit), m_flushes(flushes)
    {
    }

    std::string taken;
    int flushCount = 0;

protected:
    int_type overflow(int_type character) override
    {
        const char byte = traits_type::to_char_type(character);
        return xsputn(&byte, 1) == 1 ? character : traits_type::eof();
    }

    std::streamsize xsputn(const char* bytes, std::streamsize size) override
    {
        const std::size_t count = std::min(static_cast<std::size_t>(size), m_limit - taken.size());
        taken.append(bytes, count);
        return static_cast<std::streamsize>(count);
    }

    int sync() override
    {
        ++flushCount;
        return m_flushes ? 0 : -1;
    }

private:
    std::size_t m_limit;
    bool m_flushes;
};

std::string written(const QString& text)
{
    std::ostringstream stream;
    return writeUtf8(text, stream) ? stream.str() : std::string("not written");
}

QString characterOf(uint codePoint)
{
    return QString::fromUcs4(&codePoint, 1);
}

} // namespace

class Utf8OutputTest : public QObject
{
    Q_OBJECT

private slots:
    void characterIsEncoded_data();
    void characterIsEncoded();
    void everyCharacterIsEncodedAsQtDoes();
    void loneSurrogateBecomesAQuestionMark_data();
    void loneSurrogateBecomesAQuestionMark();
    void characterStandsAnywhereAmongAscii_data();
    void characterStandsAnywhereAmongAscii();
    void longTextIsWrittenWhole_data();
    void longTextIsWrittenWhole();
    void streamIsFlushed();
    void failingStreamIsReported_data();
    void failingStreamIsReported();
};

// Samples and borders of RFC 3629.
void Utf8OutputTest::characterIsEncoded_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QByteArray>("bytes");
    QTest::newRow("null text") << QString() << QByteArray();
    QTest::newRow("empty text") << "" << QByteArray();
    QTest::newRow("zero byte") << QString(1, QChar(0)) << QByteArray("\0", 1);
    QTest::newRow("ASCII") << "<a>\r\n\t</a>" << QByteArray("<a>\r\n\t</a>");
    QTest::newRow("last of one byte") << characterOf(0x7F) << QByteArray("\x7F");
    QTest::newRow("first of two bytes") << characterOf(0x80) << QByteArray("\xC2\x80");
    QTest::newRow("last of two bytes") << characterOf(0x7FF) << QByteArray("\xDF\xBF");
    QTest::newRow("first of three bytes") << characterOf(0x800) << QByteArray("\xE0\xA0\x80");
    QTest::newRow("last before surrogates") << characterOf(0xD7FF) << QByteArray("\xED\x9F\xBF");
    QTest::newRow("first after surrogates") << characterOf(0xE000) << QByteArray("\xEE\x80\x80");
    QTest::newRow("byte-order mark") << QString(QChar(0xFEFF)) << QByteArray("\xEF\xBB\xBF");
    QTest::newRow("last of three bytes") << characterOf(0xFFFF) << QByteArray("\xEF\xBF\xBF");
    QTest::newRow("first of four bytes") << characterOf(0x10000) << QByteArray("\xF0\x90\x80\x80");
    QTest::newRow("microphone") << characterOf(0x1F3A4) << QByteArray("\xF0\x9F\x8E\xA4");
    QTest::newRow("last of all") << characterOf(0x10FFFF) << QByteArray("\xF4\x8F\xBF\xBF");
}

void Utf8OutputTest::characterIsEncoded()
{
    QFETCH(QString, text);
    QTEST(QByteArray::fromStdString(written(text)), "bytes");
}

void Utf8OutputTest::everyCharacterIsEncodedAsQtDoes()
{
    constexpr uint LAST_OF_BMP = 0xFFFF;
    constexpr uint LAST = 0x10FFFF;
    constexpr uint STEP_BEYOND_BMP = 61; // a prime, so that all of the trailing bits change
    QString all;
    for (uint codePoint = 0; codePoint <= LAST_OF_BMP; ++codePoint) {
        const QString text(1, QChar(codePoint)); // each surrogate stands alone
        QVERIFY2(written(text) == text.toUtf8().toStdString(),
                 qPrintable(QString::number(codePoint, 16)));
        if (!QChar::isSurrogate(codePoint)) {
            all += text;
        }
    }
    for (uint codePoint = LAST_OF_BMP + 1; codePoint <= LAST; codePoint += STEP_BEYOND_BMP) {
        all += characterOf(codePoint);
    }
    QVERIFY(written(all) == all.toUtf8().toStdString()); // QCOMPARE would print all of Unicode
}

void Utf8OutputTest::loneSurrogateBecomesAQuestionMark_data()
{
    const QChar high(0xD83C);
    const QChar low(0xDFA4);
    QTest::addColumn<QString>("text");
    QTest::addColumn<QByteArray>("bytes");
    QTest::newRow("high one at the end") << QString("a") + high << QByteArray("a?");
    QTest::newRow("low one at the end") << QString("a") + low << QByteArray("a?");
    QTest::newRow("high one in front of a letter") << QString(high) + "a" << QByteArray("?a");
    QTest::newRow("low one in front of a letter") << QString(low) + "a" << QByteArray("?a");
    QTest::newRow("two high ones") << QString(2, high) << QByteArray("??");
    QTest::newRow("the wrong way round") << QString(low) + high << QByteArray("??");
    QTest::newRow("a high one in front of a pair")
        << QString(2, high) + low << QByteArray("?\xF0\x9F\x8E\xA4");
    QTest::newRow("a low one behind a pair")
        << QString(high) + QString(2, low) << QByteArray("\xF0\x9F\x8E\xA4?");
}

void Utf8OutputTest::loneSurrogateBecomesAQuestionMark()
{
    QFETCH(QString, text);
    QFETCH(QByteArray, bytes);
    QCOMPARE(QByteArray::fromStdString(written(text)), bytes);
    QCOMPARE(text.toUtf8(), bytes);
}

// ASCII is taken in blocks of 16; what is none may stand at any place of one, or across its border.
void Utf8OutputTest::characterStandsAnywhereAmongAscii_data()
{
    QTest::addColumn<QString>("character");
    QTest::newRow("last of one byte") << characterOf(0x7F);
    QTest::newRow("first of two bytes") << characterOf(0x80);
    QTest::newRow("three bytes") << characterOf(0x20AC);
    QTest::newRow("low byte is ASCII") << characterOf(0x4100);
    QTest::newRow("four bytes") << characterOf(0x1F3A4);
    QTest::newRow("lone surrogate") << QString(QChar(0xD83C));
}

void Utf8OutputTest::characterStandsAnywhereAmongAscii()
{
    constexpr int LONGEST = 40;
    QFETCH(QString, character);
    for (int length = 0; length <= LONGEST; ++length) {
        for (int place = 0; place <= length; ++place) {
            const QString text = QString(length, QLatin1Char('x')).insert(place, character);
            QCOMPARE(QByteArray::fromStdString(written(text)), text.toUtf8());
        }
    }
}

// The text goes out in slices of 65536 bytes; a character must not be torn at their border.
void Utf8OutputTest::longTextIsWrittenWhole_data()
{
    QTest::addColumn<QString>("atTheBorder");
    QTest::newRow("one byte a character") << "a";
    QTest::newRow("two bytes a character") << characterOf(0xE4);
    QTest::newRow("three bytes a character") << characterOf(0x20AC);
    QTest::newRow("four bytes a character") << characterOf(0x1F3A4);
    QTest::newRow("lone surrogates") << QString(QChar(0xD83C)) + "a";
}

void Utf8OutputTest::longTextIsWrittenWhole()
{
    constexpr int FIRST_LENGTH = 65460;
    constexpr int LAST_LENGTH = 65545;
    QFETCH(QString, atTheBorder);
    for (int length = FIRST_LENGTH; length <= LAST_LENGTH; ++length) {
        const QString upToTheBorder(length, QLatin1Char('x'));
        for (const QString& text :
             {upToTheBorder + atTheBorder, upToTheBorder + atTheBorder.repeated(10),
              upToTheBorder + atTheBorder + upToTheBorder + atTheBorder + "x"}) {
            QVERIFY2(written(text) == text.toUtf8().toStdString(),
                     qPrintable(QString::number(length)));
        }
    }
    const QString onlySuch = atTheBorder.repeated(LAST_LENGTH);
    QVERIFY(written(onlySuch) == onlySuch.toUtf8().toStdString());
}

void Utf8OutputTest::streamIsFlushed()
{
    LimitedBuffer buffer(100);
    std::ostream stream(&buffer);
    QVERIFY(writeUtf8(QStringLiteral("text"), stream));
    QCOMPARE(buffer.taken, std::string("text"));
    QVERIFY(buffer.flushCount > 0);
}

void Utf8OutputTest::failingStreamIsReported_data()
{
    QTest::addColumn<int>("limit");
    QTest::addColumn<bool>("flushes");
    QTest::addColumn<bool>("succeeds");
    QTest::newRow("takes nothing") << 0 << true << false;
    QTest::newRow("fails in the first slice") << 1000 << true << false;
    QTest::newRow("fails between slices") << 65536 << true << false;
    QTest::newRow("fails in the second slice") << 70000 << true << false;
    QTest::newRow("fails in the last slice") << 199000 << true << false;
    QTest::newRow("fails at the last byte") << 199999 << true << false;
    QTest::newRow("takes all, fails to flush") << 200000 << false << false;
    QTest::newRow("takes all") << 200000 << true << true;
}

void Utf8OutputTest::failingStreamIsReported()
{
    QFETCH(int, limit);
    QFETCH(bool, flushes);
    QFETCH(bool, succeeds);
    const QString text(200000, QLatin1Char('x'));
    LimitedBuffer buffer(static_cast<std::size_t>(limit), flushes);
    std::ostream stream(&buffer);
    QCOMPARE(writeUtf8(text, stream), succeeds);
    QCOMPARE(buffer.taken.size(), static_cast<std::size_t>(limit)); // nothing behind the gap

    std::ostringstream failed;
    failed.setstate(std::ios::badbit);
    QVERIFY(!writeUtf8(text, failed));
    QVERIFY(!writeUtf8(QString(), failed));
    QVERIFY(failed.str().empty());
}

QTEST_GUILESS_MAIN(Utf8OutputTest)
#include "Utf8OutputTest.moc"
