// Apart from the verdict, so that a program that only judges does not link the log service.
#include "ZelMain/ImportExport/XmlVersions.h"

#include "ZelMain/Diagnostics/LogServiceUsers.h"
#include "ZelMain/Diagnostics/LoggerMessage.h"

#include <QDebug>
#include <QDomElement>

using PkLogger::LoggerMessage;

namespace {

void logError(const QString& text)
{
    LoggerMessage::LogMessage(LoggerMessage::LogError, PkLogger::LoggerUsers::LOGUSER_IMPORT_EXPORT,
                              text, QStringLiteral("IsValidXmlVersion"));
}

void reportUnknown(const QString& element, double version)
{
    // The version has no place in the text; Qt warns of it, and callers' logs have that line.
    logError(QStringLiteral(" XML section %1  not yet supported.")
                 .arg(element)
                 .arg(XmlVersions::GetXmlVersionString(version)));
    qWarning() << "XML section " << element << " not yet supported.";
}

void reportTooNew(const QString& name, double current, double version)
{
    logError(QStringLiteral(" XML version invalid. Expected: %1 Got: %2")
                 .arg(XmlVersions::GetXmlVersionString(current),
                      XmlVersions::GetXmlVersionString(version)));
    qWarning() << name << " XML version invalid. Expected: " << current << " Got: " << version;
}

} // namespace

XmlVersions::XmlValidState XmlVersions::IsValidXmlVersion(const QDomElement& section)
{
    const XmlValidState verdict = Verdict(section);
    const auto known = m_XmlSectionVersionMap.constFind(section.tagName());
    if (known == m_XmlSectionVersionMap.constEnd()) {
        reportUnknown(section.tagName(), SectionVersion(section));
    } else if (verdict == XmlTooNew) {
        reportTooNew(known->second, known->first, SectionVersion(section));
    }
    return verdict;
}

void XmlVersions::CheckSectionVersion(const QDomElement& section, Conflicts& conflicts)
{
    const auto known = m_XmlSectionVersionMap.constFind(section.tagName());
    const double version = SectionVersion(section);
    if (known == m_XmlSectionVersionMap.constEnd() || !(known->first > version)) {
        return;
    }
    // The current version is the document's, the expected one the software's.
    qDebug().noquote() << QStringLiteral(
                              "%1 version mismatch - Current version %2. Expected version %3.")
                              .arg(known->second, GetXmlVersionString(version),
                                   GetXmlVersionString(known->first));
    conflicts.insert(section.tagName(), {version, known->first});
}

XmlVersions::Conflicts XmlVersions::GetSectionVersionConflicts(const QDomElement& root,
                                                               XmlValidState& state)
{
    Conflicts conflicts;
    const auto examine = [&](const QDomElement& section) {
        state = IsValidXmlVersion(section);
        if (state != XmlCurrent && state != XmlConvertible) {
            return false;
        }
        CheckSectionVersion(section, conflicts);
        return true;
    };
    if (!examine(root)) {
        return conflicts;
    }
    const QStringList names = m_XmlSectionVersionMap.keys();
    for (const QString& name : names) {
        const QDomElement first = root.elementsByTagName(name).item(0).toElement();
        if (!first.isNull() && !examine(first)) {
            break;
        }
    }
    return conflicts;
}
