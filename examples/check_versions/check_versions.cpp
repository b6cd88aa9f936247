// Tells whether this software can take a workspace document in, by the versions of its sections.
//
// usage: check_versions DOCUMENT

#include "ZelMain/ImportExport/XmlVersions.h"

#include <QDomDocument>
#include <QFile>
#include <QTextStream>

#include <cstdio>

namespace {

QString wordsFor(XmlVersions::XmlValidState verdict)
{
    switch (verdict) {
    case XmlVersions::XmlCurrent:
        return "current";
    case XmlVersions::XmlConvertible:
        return "older, can be converted";
    case XmlVersions::XmlNoConversion:
        return "older, without a conversion";
    case XmlVersions::XmlTooNew:
        return "too new";
    case XmlVersions::XmlInvalid:
        break;
    }
    return "too old, or no number";
}

/** Prints the verdict on a section that has a version; an element that is no section passes. */
bool accepts(const QDomElement& section, QTextStream& out)
{
    const QString current = XmlVersions::GetXmlVersionString(section.tagName());
    if (current.isEmpty()) {
        return true;
    }
    const XmlVersions::XmlValidState verdict = XmlVersions::Verdict(section);
    out << section.tagName() << ' ' << section.attribute("version", "-") << " (" << current
        << " is current): " << wordsFor(verdict) << '\n';
    return verdict == XmlVersions::XmlCurrent || verdict == XmlVersions::XmlConvertible;
}

} // namespace

int main(int argc, char* argv[])
{
    QTextStream out(stdout);
    if (argc != 2) {
        out << "usage: check_versions DOCUMENT\n";
        return 1;
    }
    QFile file(QFile::decodeName(argv[1]));
    QDomDocument document;
    if (!file.open(QIODevice::ReadOnly) || !document.setContent(&file)) {
        out << "no readable document\n";
        return 1;
    }

    const XmlVersions versions; // fills the tables, once for the whole program
    const QDomElement root = document.documentElement();
    bool isAccepted = root.tagName() == "coordinated_data_root" && accepts(root, out);
    for (auto element = root.firstChildElement(); !element.isNull();
         element = element.nextSiblingElement()) {
        isAccepted = accepts(element, out) && isAccepted;
    }
    out << (isAccepted ? "accepted\n" : "refused\n");
    return isAccepted ? 0 : 1;
}
