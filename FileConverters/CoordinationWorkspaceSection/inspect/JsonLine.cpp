#include "FileConverters/CoordinationWorkspaceSection/inspect/JsonLine.h"

namespace {

void write(rapidjson::Writer<rapidjson::StringBuffer>& writer, const QByteArray& text)
{
    writer.String(text.constData(), static_cast<rapidjson::SizeType>(text.size()));
}

} // namespace

void JsonLine::add(const char* key, const char* text)
{
    m_writer.Key(key);
    m_writer.String(text);
}

void JsonLine::add(const char* key, const QString& text)
{
    m_writer.Key(key);
    write(m_writer, text.toUtf8());
}

void JsonLine::add(const char* key, int number)
{
    m_writer.Key(key);
    m_writer.Int(number);
}

void JsonLine::add(const char* key, qint64 number)
{
    m_writer.Key(key);
    m_writer.Int64(number);
}

void JsonLine::add(const char* key, double number)
{
    m_writer.Key(key);
    m_writer.Double(number);
}

void JsonLine::add(const char* key, bool isSo)
{
    m_writer.Key(key);
    m_writer.Bool(isSo);
}

void JsonLine::addNull(const char* key)
{
    m_writer.Key(key);
    m_writer.Null();
}

void JsonLine::beginObject(const char* key)
{
    m_writer.Key(key);
    m_writer.StartObject();
}

void JsonLine::beginArray(const char* key)
{
    m_writer.Key(key);
    m_writer.StartArray();
}

QByteArray JsonLine::take()
{
    m_writer.EndObject();
    m_buffer.Put('\n');
    return {m_buffer.GetString(), static_cast<int>(m_buffer.GetSize())};
}
