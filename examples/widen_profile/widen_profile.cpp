// Reads a compatibility profile from a file, makes its spacings wider and writes it to another
// file.
//
// usage: widen_profile PROFILE KHZ WIDER_PROFILE

#include "ZelMain/FrequencyCompatibility/QtPkCompatProfile.h"

#include <QString>
#include <QTextStream>

#include <stdexcept>

namespace {

/** Whether the file holds a profile; @p profile is it then. */
bool read(const char* path, QtPkCompatProfile& profile, QTextStream& problems)
{
    try {
        if (profile.Import(path)) {
            return true;
        }
        problems << "no profile in " << path << '\n';
    } catch (const std::runtime_error&) {
        problems << "the id of the profile in " << path << " is no UUID\n";
    }
    return false;
}

// A spacing of 0 stands for an intermodulation product that does not matter.
void widen(int& spacingKhz, int byKhz)
{
    if (spacingKhz != 0) {
        spacingKhz += byKhz;
    }
}

} // namespace

int main(int argc, char** argv)
{
    QTextStream out(stdout);
    QTextStream problems(stderr);
    bool isNumber = false;
    const int byKhz = argc == 4 ? QString(argv[2]).toInt(&isNumber) : 0;
    if (!isNumber) {
        problems << "usage: widen_profile PROFILE KHZ WIDER_PROFILE\n";
        return 2;
    }

    QtPkCompatProfile profile;
    if (!read(argv[1], profile, problems)) {
        return 1;
    }
    for (int* spacingKhz : {&profile.chCh, &profile.imd2t3o, &profile.imd2t5o, &profile.imd2t7o,
                            &profile.imd2t9o, &profile.imd3t3o}) {
        widen(*spacingKhz, byKhz);
    }

    // A const profile would write the form without centre list instead.
    if (!profile.Export(argv[3], false)) {
        problems << "cannot write " << argv[3] << '\n';
        return 1;
    }
    out << QString::fromStdString(profile.name) << ": channels " << profile.chCh << " kHz apart, "
        << profile.filterCenterList.size() << " filter centres\n";
    return 0;
}
