// Reads an XML document, parses it into Qt's document model and writes it back: the converter
// without the conversion. What this program accepts is what Qt accepts, and what it costs is what
// Qt costs, so it is the yardstick of the tests of well-formedness and of the measurements.

#include <QDomDocument>
#include <QFile>
#include <QString>
#include <QTextStream>

#include <iostream>
#include <string>

namespace {

QString readFile(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        return {};
    }
    QTextStream stream(&file);
    if (qstrlen(stream.readLine().toStdString().c_str()) == 1) {
        // One character up to a NUL: UTF-16 without a byte-order mark.
        stream.setAutoDetectUnicode(false);
        stream.setCodec("UTF-16");
    }
    stream.seek(0);
    return stream.readAll();
}

QString readStandardInput()
{
    QString text;
    std::string line;
    while (std::getline(std::cin, line)) {
        text += QString::fromStdString(line);
    }
    return text;
}

} // namespace

int main(int argc, char** argv)
{
    const QString text = argc == 2 ? readFile(QString::fromUtf8(argv[1])) : readStandardInput();
    QDomDocument document;
    if (!document.setContent(text, nullptr, nullptr, nullptr)) {
        return 1;
    }
    std::cout << document.toString(4).toStdString();
    return 0;
}
