// Writes records of every shape to files, for the schemas to be held against.
//
// usage: written_records FOLDER

#include "ZelMain/FrequencyCompatibility/QtPkCompatProfile.h"
#include "ZelMain/FrequencyCompatibility/QtPkTuningCapability.h"

#include <QString>

#include <limits>
#include <string>
#include <vector>

namespace {

constexpr int LEAST = std::numeric_limits<int>::min();
constexpr int MOST = std::numeric_limits<int>::max();

PkCompatProfile profile(std::string const& name, EBFType type, int value,
                        std::vector<int> const& centres)
{
    PkCompatProfile made;
    made.name = name;
    made.chCh = made.imd2t3o = made.imd2t5o = value;
    made.imd2t7o = made.imd2t9o = made.imd3t3o = value;
    made.filterType = type;
    made.filterStart = made.filterEnd = made.filterCenter = value;
    made.filterCenterList = centres;
    made.imdSource = value != 0;
    made.synthesizable = value >= 0;
    return made;
}

std::vector<PkCompatProfile> profiles()
{
    return {
        PkCompatProfile(),
        profile("Standard", EBF_CENTER_LIST, 75, {634000, 642000}),
        profile("one centre", EBF_CENTER_LIST, -1, {LEAST}),
        profile("no centres", EBF_CENTER_LIST, 0, {}),
        profile("a list of another type", EBFType(1), 1, {634000}),
        profile("<&> \"quoted\" 'é'", EBFType(LEAST), LEAST, {}),
        profile("Robust", EBFType(MOST), MOST, {}),
    };
}

TuningCapability tuning(int start, int end, int step, std::vector<int> const& frequencies,
                        std::vector<std::pair<int, int>> const& subRanges)
{
    TuningCapability made;
    made.rangeStart = start;
    made.rangeEnd = end;
    made.step = step;
    made.freqList = frequencies;
    made.subRanges = subRanges;
    return made;
}

std::vector<TuningCapability> tunings()
{
    return {
        TuningCapability(),
        tuning(470000, 608000, 25, {}, {}),
        tuning(470000, 608000, 25, {470000}, {{470000, 510000}}),
        tuning(LEAST, MOST, MOST, {}, {{LEAST, MOST}, {0, 0}}),
        tuning(1, 2, 0, {470000, 470025}, {}),
        tuning(1, 2, -1, {LEAST, MOST}, {{1, 2}}),
        tuning(0, 0, 0, {}, {{470000, 510000}}),
    };
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 2) {
        return 2;
    }
    // The name of a file in the folder, as "FOLDER/profile-3.xml".
    const auto file = [folder = QString(argv[1])](const char* kind, int number) {
        return QStringLiteral("%1/%2-%3.xml").arg(folder, kind).arg(number).toStdString();
    };
    bool isWritten = true;
    int number = 0;
    for (PkCompatProfile const& record : profiles()) {
        ++number;
        QtPkCompatProfile writer(record);
        isWritten = writer.Export(file("profile", number), false) && isWritten;
        isWritten = record.Export(file("light-profile", number), false) && isWritten;
    }
    number = 0;
    for (TuningCapability const& record : tunings()) {
        QtPkTuningCapability writer(record);
        isWritten = writer.Export(file("tuning", ++number), false) && isWritten;
    }
    return isWritten ? 0 : 1;
}
