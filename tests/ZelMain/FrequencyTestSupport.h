#pragma once

#include <QByteArray>
#include <QLocale>
#include <QString>

/** The default locale of its scope. */
class DefaultLocale
{
public:
    explicit DefaultLocale(const QString& name) { QLocale::setDefault(QLocale(name)); }
    ~DefaultLocale() { QLocale::setDefault(m_before); }
    Q_DISABLE_COPY_MOVE(DefaultLocale)

private:
    const QLocale m_before;
};

/** All digits of a double, for QCOMPARE, which takes nearly equal doubles for equal. */
inline QByteArray exactly(double value)
{
    return QByteArray::number(value, 'g', 17);
}
