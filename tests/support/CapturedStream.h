#pragma once

#include <QByteArray>

#include <ostream>
#include <sstream>

/** While it lives, what is written to a stream comes here instead. */
class CapturedStream
{
public:
    explicit CapturedStream(std::ostream& stream)
        : m_stream(stream), m_before(stream.rdbuf(m_captured.rdbuf()))
    {
    }
    ~CapturedStream() { m_stream.rdbuf(m_before); }
    CapturedStream(const CapturedStream&) = delete;
    CapturedStream& operator=(const CapturedStream&) = delete;

    /** All that has come. */
    QByteArray bytes() const { return QByteArray::fromStdString(m_captured.str()); }

private:
    std::ostream& m_stream;
    std::ostringstream m_captured;
    std::streambuf* m_before;
};
