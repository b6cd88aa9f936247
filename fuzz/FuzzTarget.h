#pragma once

#include <QByteArray>
#include <QString>

#include <cstddef>
#include <cstdint>

/** What every target defines: tries one input, and ends the process when a promise is broken. */
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

/** What targets have in common. */
namespace FuzzTarget {

/**
 * Makes runs repeatable: no message of Qt's is shown, hashes have a fixed seed, texts are UTF-8,
 * and stacks may grow as far as the system lets them.
 */
void setUp();

/** Ends the process with @p promise on standard error unless it was kept. */
void require(bool isKept, const char* promise);

/** The same, and shows the two values that should be equal. */
void requireEqual(const QString& actual, const QString& expected, const char* promise);
void requireEqual(const QByteArray& actual, const QByteArray& expected, const char* promise);

/** UTF-8 as text, zero bytes and all; QString's own way ends at the first of them. */
QString textOf(const QByteArray& utf8);

/** Takes an input apart from its front. Past the end there are zeros and empty texts. */
class Input
{
public:
    Input(const std::uint8_t* data, std::size_t size);

    bool isEmpty() const { return m_position >= m_bytes.size(); }
    unsigned char takeByte();
    /** A number below @p limit, which is not 0. */
    int takeNumber(int limit);
    /** What stands before the next line feed, which goes too. */
    QByteArray takeLine();
    QByteArray takeRest();

private:
    QByteArray m_bytes;
    int m_position = 0;
};

} // namespace FuzzTarget
