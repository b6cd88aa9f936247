// Apart from the checks, so that a program that only writes a version does not link the log
// service.
#include "ZelMain/ImportExport/XmlVersions.h"

QString XmlVersions::GetXmlVersionString(double version)
{
    return QStringLiteral("%1").arg(version, 0, 'f', 1);
}
