// Converts one workspace document with the converter, within bounds of time and memory.
//
// usage: convert_with_qprocess CONVERTER DOCUMENT [MEMORY_MIB [SECONDS]]

#include <QCoreApplication>
#include <QProcess>
#include <QTextStream>

#include <cstdio>
#include <cstdlib>

#include <sys/resource.h>

namespace {

struct Bounds
{
    int memoryMib = 1024;
    int seconds = 60;
};

/** A process that ends rather than hold more memory than it may. */
class BoundedProcess : public QProcess
{
public:
    explicit BoundedProcess(int memoryMib) : m_memoryBytes(static_cast<rlim_t>(memoryMib) << 20U) {}

protected:
    // Runs in the child before the program does, where nothing but plain system calls is safe.
    void setupChildProcess() override
    {
        const rlimit memory{m_memoryBytes, m_memoryBytes};
        const rlimit coreFile{0, 0};
        if (setrlimit(RLIMIT_AS, &memory) != 0 || setrlimit(RLIMIT_CORE, &coreFile) != 0) {
            std::abort();
        }
    }

private:
    const rlim_t m_memoryBytes;
};

/** The converted document, UTF-8. Empty when there is none: @p problem then says why. */
QByteArray convert(const QString& converter, const QString& path, const Bounds& bounds,
                   QString& problem)
{
    BoundedProcess process(bounds.memoryMib);
    process.start(converter, {path}, QIODevice::ReadOnly);
    if (!process.waitForStarted()) {
        problem = "the converter could not be started: " + process.errorString();
        return {};
    }
    // Waiting also takes in what arrives on both streams, so that the converter never stands still.
    if (!process.waitForFinished(bounds.seconds * 1000)) {
        process.kill();
        process.waitForFinished();
        problem = "the conversion took too long";
        return {};
    }
    if (process.exitStatus() == QProcess::CrashExit) {
        problem = "the conversion broke off: not enough memory, or a profile without a valid id";
        return {};
    }
    if (process.exitCode() == 0) {
        return process.readAllStandardOutput();
    }
    const QByteArray word = process.readAllStandardError();
    if (process.exitCode() == 1 && word == "\nFAILURE") {
        problem = "the document is not one coordination workspace";
    } else if (process.exitCode() == 1 && word.isEmpty()) {
        problem = "the document cannot be read, or its conversion not be written";
    } else {
        problem = "the converter could not run: " + QString::fromLocal8Bit(word).trimmed();
    }
    return {};
}

} // namespace

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() < 3 || arguments.size() > 5) {
        QTextStream(stderr) << "usage: convert_with_qprocess CONVERTER DOCUMENT"
                               " [MEMORY_MIB [SECONDS]]\n";
        return 2;
    }
    Bounds bounds;
    if (arguments.size() > 3) {
        bounds.memoryMib = arguments[3].toInt();
    }
    if (arguments.size() > 4) {
        bounds.seconds = arguments[4].toInt();
    }

    QString problem;
    const QByteArray document = convert(arguments[1], arguments[2], bounds, problem);
    if (document.isEmpty()) {
        QTextStream(stderr) << problem << '\n';
        return 1;
    }
    std::fwrite(document.constData(), 1, static_cast<std::size_t>(document.size()), stdout);
    return std::fflush(stdout) == 0 ? 0 : 1;
}
