#include "fuzz/FuzzTarget.h"

#include "FileConverters/CoordinationWorkspaceSection/ProcessSetup.h"

#include <cstdlib>
#include <iostream>

void FuzzTarget::setUp()
{
    static const bool IS_DONE = [] {
        ProcessSetup::raiseStackLimit();
        ProcessSetup::shutOutTheEnvironment();
        return true;
    }();
    static_cast<void>(IS_DONE);
}

void FuzzTarget::require(bool isKept, const char* promise)
{
    if (!isKept) {
        std::cerr << "broken promise: " << promise << std::endl;
        std::abort();
    }
}

void FuzzTarget::requireEqual(const QString& actual, const QString& expected, const char* promise)
{
    requireEqual(actual.toUtf8(), expected.toUtf8(), promise);
}

void FuzzTarget::requireEqual(const QByteArray& actual, const QByteArray& expected,
                              const char* promise)
{
    if (actual != expected) {
        std::cerr << "is:        \"" << actual.toPercentEncoding(" {}[]<>/=\"").constData()
                  << "\"\n"
                  << "should be: \"" << expected.toPercentEncoding(" {}[]<>/=\"").constData()
                  << "\"\n";
    }
    require(actual == expected, promise);
}

QString FuzzTarget::textOf(const QByteArray& utf8)
{
    return QString::fromUtf8(utf8.constData(), utf8.size());
}

FuzzTarget::Input::Input(const std::uint8_t* data, std::size_t size)
    : m_bytes(reinterpret_cast<const char*>(data), static_cast<int>(size))
{
}

unsigned char FuzzTarget::Input::takeByte()
{
    return isEmpty() ? 0 : static_cast<unsigned char>(m_bytes[m_position++]);
}

int FuzzTarget::Input::takeNumber(int limit)
{
    return takeByte() % limit;
}

QByteArray FuzzTarget::Input::takeLine()
{
    const int lineFeed = m_bytes.indexOf('\n', m_position);
    const int end = lineFeed < 0 ? m_bytes.size() : lineFeed;
    QByteArray line = m_bytes.mid(m_position, end - m_position);
    m_position = end + 1;
    return line;
}

QByteArray FuzzTarget::Input::takeRest()
{
    QByteArray rest = m_bytes.mid(m_position);
    m_position = m_bytes.size();
    return rest;
}
