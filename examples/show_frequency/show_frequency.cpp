// Reads a frequency as a person types it, "470.125 MHz" or a bare number of megahertz, and shows
// its text forms.
//
// usage: show_frequency TEXT [LOCALE]

#include "ZelMain/Frequency.h"

#include <QCoreApplication>
#include <QLocale>
#include <QTextStream>
#include <QVariant>

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() < 2 || arguments.size() > 3) {
        QTextStream(stderr) << "usage: show_frequency TEXT [LOCALE]\n";
        return 2;
    }
    // Every text follows the default locale, so it is set before the first one.
    if (arguments.size() == 3) {
        QLocale::setDefault(QLocale(arguments[2]));
    }

    bool ok = false;
    const Frequency typed = Frequency::fromString(arguments[1], &ok, Frequency::MHz);
    if (!ok) {
        QTextStream(stderr) << "not a frequency: " << arguments[1] << '\n';
        return 1;
    }

    // Models, settings and queued signals carry it as a QVariant.
    const QVariant carried = typed;
    auto frequency = carried.value<Frequency>();
    frequency.setSuffix(QStringLiteral(" (main stage)"));

    QTextStream(stdout) << "to read     " << frequency.toString() << '\n'
                        << "trimmed     " << frequency.toString(true, false) << '\n'
                        << "kilohertz   " << frequency.asKhzString(true, 2, false) << '\n'
                        << "megahertz   " << frequency.asMhzString(true, 5) << '\n'
                        << "gigahertz   " << frequency.asGhzString(true, 8) << '\n'
                        << "carried as  " << carried.typeName() << '\n';
    return 0;
}
