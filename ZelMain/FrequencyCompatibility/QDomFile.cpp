#include "ZelMain/FrequencyCompatibility/QDomFile.h"

#include <QDebug>
#include <QDomDocument>
#include <QFile>
#include <QTextStream>

namespace {

constexpr int COMPACT_INDENT = 1;
constexpr int INDENT = 4;

bool isWritable(QIODevice const& device)
{
    if (!device.isOpen()) {
        qDebug("Unopened output device can not be used");
        return false;
    }
    if (!device.isWritable()) {
        qDebug("The output device is not opened for writing");
        return false;
    }
    return true;
}

bool write(QDomDocument const& document, QIODevice& device, bool compact)
{
    QTextStream stream(&device);
    stream.setCodec("UTF-8");
    document.save(stream, compact ? COMPACT_INDENT : INDENT);
    stream.flush();
    return stream.status() == QTextStream::Ok;
}

} // namespace

bool QDomFile::store(QDomDocument& document, std::function<QDomElement()> const& makeElement,
                     QIODevice& device, bool compact)
{
    if (!isWritable(device)) {
        return false;
    }
    document.appendChild(makeElement());
    return write(document, device, compact);
}

bool QDomFile::writeFile(std::string const& path, std::function<bool(QIODevice&)> const& writer)
{
    const QString name = QString::fromStdString(path);
    if (name.isEmpty()) {
        return false; // QFile would warn of it
    }
    QFile file(name);
    if (!file.open(QIODevice::WriteOnly)) {
        return false;
    }
    const bool written = writer(file);
    file.close();
    return written && file.error() == QFileDevice::NoError;
}
