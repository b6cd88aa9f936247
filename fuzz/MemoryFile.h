#pragma once

#include <QByteArray>
#include <QString>

/** A file with a path that takes no place on a disk. */
class MemoryFile
{
public:
    MemoryFile();
    ~MemoryFile();
    MemoryFile(const MemoryFile&) = delete;
    MemoryFile& operator=(const MemoryFile&) = delete;

    QString path() const;
    QByteArray content() const;
    void setContent(const QByteArray& bytes) const;

private:
    const int m_descriptor;
};
