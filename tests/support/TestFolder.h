#pragma once

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QString>
#include <QTemporaryDir>

/** A folder with a test's files, which goes with it. What cannot be written ends the program. */
class TestFolder
{
public:
    /** Without links on the way. */
    QString path() const { return QFileInfo(m_folder.path()).canonicalFilePath(); }
    QString path(const QString& name) const { return path() + '/' + name; }

    /** Writes a file, in folders that are made for it. */
    void write(const QString& name, const QByteArray& bytes) const
    {
        QDir().mkpath(QFileInfo(path(name)).path());
        QFile file(path(name));
        if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size()) {
            qFatal("%s cannot be written", qPrintable(name));
        }
    }

    /** Writes a program in the language of the shell (POSIX). */
    void writeProgram(const QString& name, const QByteArray& script) const
    {
        write(name, "#!/bin/sh\n" + script + '\n');
        QFile::setPermissions(path(name), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    }

    /** What is in a file; "nothing" when there is no such file. */
    QByteArray read(const QString& name) const
    {
        QFile file(path(name));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("nothing");
    }

private:
    const QTemporaryDir m_folder;
};
