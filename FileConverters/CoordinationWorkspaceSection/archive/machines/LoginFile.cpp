#include "FileConverters/CoordinationWorkspaceSection/archive/machines/LoginFile.h"

#include <QFile>
#include <QRegularExpression>

LoginFile LoginFile::read(const QString& file)
{
    const QRegularExpression thisMachine(QStringLiteral("^(?:([0-9]+)/)?:$"));
    LoginFile login;
    QFile input(file);
    if (!input.open(QIODevice::ReadOnly)) {
        return login;
    }
    for (const QByteArray& text : input.readAll().split('\n')) {
        const QByteArray line = text.trimmed();
        if (line.isEmpty() || line.startsWith('#')) {
            continue;
        }
        ++login.machines;
        const QRegularExpressionMatch here = thisMachine.match(QString::fromUtf8(line));
        if (here.hasMatch()) {
            login.jobsHere = here.captured(1).toInt();
        } else {
            login.namesOther = true;
        }
    }
    return login;
}
