#pragma once

#include <QByteArray>
#include <QString>

#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

/**
 * Writes one JSON object (RFC 8259) in UTF-8 as a line. Keys stand in it in the order of the calls.
 *
 * RapidJSON is behind it: a document of an archive is written of five times on its way into the
 * report, each with fifteen times as many instructions by Qt's JSON, which reads as well.
 */
class JsonLine
{
public:
    JsonLine() { m_writer.StartObject(); }

    void add(const char* key, const char* text);
    void add(const char* key, const QString& text);
    void add(const char* key, int number);
    void add(const char* key, qint64 number);
    void add(const char* key, double number); ///< a finite one
    void add(const char* key, bool isSo);
    void addNull(const char* key);

    /** What is added until the end is the object's, which is itself a value of the one around it.
     */
    void beginObject(const char* key);
    /** The same for one that stands in an array. */
    void beginObject() { m_writer.StartObject(); }
    void endObject() { m_writer.EndObject(); }

    void beginArray(const char* key);
    void endArray() { m_writer.EndArray(); }

    /** Ends the line. @return it, with a line feed at its end. */
    QByteArray take();

private:
    rapidjson::StringBuffer m_buffer;
    rapidjson::Writer<rapidjson::StringBuffer> m_writer{m_buffer};
};
