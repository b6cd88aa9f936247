// Feeds files to a fuzz target, so that what a fuzzer once found stays tested without one.
//
// usage: replay_TARGET FOLDER [MIXED]
//
// Tries each file of FOLDER, and then MIXED inputs more that are put together from pieces of these
// files, the same ones every time.

#include "fuzz/FuzzTarget.h"

#include <QDir>
#include <QFile>

#include <algorithm>
#include <cstdlib>
#include <iostream>
#include <random>

namespace {

constexpr int MAX_PIECES = 6;
constexpr int MAX_PIECE_SIZE = 64;

void tryInput(const QByteArray& input)
{
    LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(input.constData()),
                           static_cast<std::size_t>(input.size()));
}

QList<QByteArray> readSeeds(const QDir& folder)
{
    QList<QByteArray> seeds;
    for (const QString& name : folder.entryList(QDir::Files, QDir::Name)) {
        QFile file(folder.filePath(name));
        if (file.open(QIODevice::ReadOnly)) {
            seeds.append(file.readAll());
        }
    }
    return seeds;
}

class Mixer
{
public:
    explicit Mixer(const QList<QByteArray>& seeds) : m_seeds(seeds) {}

    QByteArray next()
    {
        QByteArray input;
        for (int pieces = 1 + number(MAX_PIECES); pieces > 0; --pieces) {
            const QByteArray& seed = m_seeds[number(m_seeds.size())];
            input += seed.mid(number(seed.size() + 1), number(MAX_PIECE_SIZE));
        }
        return input;
    }

private:
    int number(int limit) { return static_cast<int>(m_random() % static_cast<unsigned>(limit)); }

    const QList<QByteArray>& m_seeds;
    std::minstd_rand m_random;
};

} // namespace

int main(int argc, char** argv)
{
    if (argc != 2 && argc != 3) {
        std::cerr << "usage: " << argv[0] << " FOLDER [MIXED]\n";
        return 2;
    }
    const QList<QByteArray> seeds = readSeeds(QDir(QString::fromLocal8Bit(argv[1])));
    if (seeds.isEmpty()) {
        std::cerr << argv[0] << ": no file in " << argv[1] << "\n";
        return 1;
    }
    std::for_each(seeds.begin(), seeds.end(), tryInput);

    Mixer mixer(seeds);
    const int mixed = argc == 3 ? std::atoi(argv[2]) : 0;
    for (int i = 0; i < mixed; ++i) {
        tryInput(mixer.next());
    }
    std::cout << seeds.size() << " seeds and " << mixed << " mixed inputs tried\n";
    return 0;
}
