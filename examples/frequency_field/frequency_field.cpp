// Shows a field for a frequency, and prints each frequency that it gets.
//
// usage: frequency_field [FREQUENCY]

#include "FrequencyField.h"

#include <QApplication>
#include <QLocale>
#include <QTextStream>

int main(int argc, char** argv)
{
    const QApplication application(argc, argv);
    // Everything that is typed and shown follows the user's locale.
    QLocale::setDefault(QLocale::system());

    FrequencyField field;
    QObject::connect(&field, &FrequencyField::frequencyChanged, [](const Frequency& frequency) {
        QTextStream(stdout) << frequency.toString() << '\n';
    });

    const QStringList arguments = QApplication::arguments();
    bool isUnderstood = arguments.size() == 1;
    if (arguments.size() == 2) {
        field.setFrequency(Frequency::fromString(arguments[1], &isUnderstood, Frequency::MHz));
    }
    if (!isUnderstood) {
        QTextStream(stderr) << "usage: frequency_field [FREQUENCY]\n";
        return 2;
    }
    field.show();
    return QApplication::exec();
}
