#include "FileConverters/CoordinationWorkspaceSection/archive/ArchiveCommandLine.h"

#include "FileConverters/CoordinationWorkspaceSection/archive/files/Paths.h"
#include "FileConverters/CoordinationWorkspaceSection/archive/machines/LoginFile.h"

#include <QCommandLineOption>
#include <QCommandLineParser>
#include <QFileInfo>

namespace {

const char* const HELP = R"(usage: coordworkspace-convert-archive [OPTION...] SOURCE TARGET

Converts every workspace document below the folder SOURCE into the same place below the folder
TARGET. May be stopped at any moment; the next run goes on where this one stopped. Changes nothing
in SOURCE.

  --dry-run        write nothing but a page; print what the report would get
  --force          replace what stands in a target's place
  --verify         compare each output with its document by a reading of its own
  --only-clean     do not write documents that lose something
  --fail-if-lossy  end with the status 2 when a document loses something
  --timeout=S      seconds for each document, or none; by default 10 and 1 for each MB of it
  --memory=MB      memory for each document, or none; by default 256 MB and 64 times its size
  --jobs=N         documents at the same time; by default one more than cores
  --machines=FILE  convert on the machines of this file as well, over ssh; a line is [JOBS/]MACHINE
  --report=FILE    by default TARGET/.coordworkspace/report.jsonl
  --html=FILE      write the report as a page for the browser as well
  --json-schema    print the JSON Schema of a report's lines
  --help           print this
  --version        print the version

Status: 0 all is converted or was current; 2 a document lost something, with --fail-if-lossy; 3 a
document was refused; 4 one met a limit; 5 one failed; 64 wrong usage; 69 a program that is needed
is missing or broke off; 74 the run could not read or write its files; 75 another run is at work in
TARGET; 130 stopped. Of several the highest counts. Files that are no workspace documents do not
count.
)";

constexpr qint64 MILLISECONDS_PER_SECOND = 1000;
constexpr qint64 BYTES_PER_MEGABYTE = 1000000;
constexpr qint64 MOST = 1000000000; // days, or more than any machine has
constexpr int MOST_JOBS = 1000;

QCommandLineOption option(const char* name, const char* value = nullptr)
{
    QCommandLineOption made(QString{QLatin1String(name)});
    made.setValueName(QLatin1String(value));
    return made;
}

// "none" for no limit. Without the option the limit is left as it is.
bool parseLimit(const QCommandLineParser& parser, const char* name, qint64 unit,
                std::optional<qint64>& limit)
{
    const QString option = QLatin1String(name);
    if (!parser.isSet(option)) {
        return true;
    }
    const QString value = parser.value(option);
    bool isNumber = false;
    const qint64 number = value.toLongLong(&isNumber);
    if (value == QLatin1String("none")) {
        limit = 0;
        return true;
    }
    if (!isNumber || number <= 0 || number > MOST) {
        return false;
    }
    limit = number * unit;
    return true;
}

bool parseJobs(const QCommandLineParser& parser, int& jobs)
{
    if (!parser.isSet(QStringLiteral("jobs"))) {
        return true;
    }
    bool isNumber = false;
    jobs = parser.value(QStringLiteral("jobs")).toInt(&isNumber);
    return isNumber && jobs > 0 && jobs <= MOST_JOBS;
}

// A file that names this machine only tells no more than how many jobs there may be.
bool parseMachines(const QCommandLineParser& parser, QString& machines, int& jobs)
{
    if (!parser.isSet(QStringLiteral("machines"))) {
        return true;
    }
    const QString file = QFileInfo(parser.value(QStringLiteral("machines"))).absoluteFilePath();
    const LoginFile login = LoginFile::read(file);
    if (login.namesOther) {
        machines = file;
    } else if (jobs == 0) {
        jobs = login.jobsHere;
    }
    return login.machines > 0;
}

ArchiveCommandLine::Task taskOf(const QCommandLineParser& parser)
{
    if (parser.isSet(QStringLiteral("help"))) {
        return ArchiveCommandLine::SHOW_HELP;
    }
    if (parser.isSet(QStringLiteral("version"))) {
        return ArchiveCommandLine::SHOW_VERSION;
    }
    return parser.isSet(QStringLiteral("json-schema")) ? ArchiveCommandLine::SHOW_SCHEMA
                                                       : ArchiveCommandLine::CONVERT;
}

void addOptions(QCommandLineParser& parser)
{
    for (const char* name : {"dry-run", "force", "verify", "only-clean", "fail-if-lossy",
                             "json-schema", "help", "version"}) {
        parser.addOption(option(name));
    }
    parser.addOption(option("timeout", "S"));
    parser.addOption(option("memory", "MB"));
    parser.addOption(option("jobs", "N"));
    parser.addOption(option("report", "FILE"));
    parser.addOption(option("html", "FILE"));
    parser.addOption(option("machines", "FILE"));
}

// The problem is told when there is one, and left as it is otherwise.
QString realPath(const QString& given, QString& problem)
{
    const std::optional<QString> real = Paths::real(given);
    if (!real) {
        problem = QStringLiteral("a path that is not UTF-8 cannot be used: %1").arg(given);
    }
    return real.value_or(QString());
}

// These three return what is wrong, and nothing when nothing is.

QString parseBounds(const QCommandLineParser& parser, ArchiveCommandLine& line)
{
    if (!parseLimit(parser, "timeout", MILLISECONDS_PER_SECOND, line.settings.milliseconds)) {
        return QStringLiteral("--timeout is a whole number of seconds, or none");
    }
    if (!parseLimit(parser, "memory", BYTES_PER_MEGABYTE, line.settings.memoryBytes)) {
        return QStringLiteral("--memory is a whole number of MB, or none");
    }
    if (!parseJobs(parser, line.jobs)) {
        return QStringLiteral("--jobs is a number from 1 to %1").arg(MOST_JOBS);
    }
    if (!parseMachines(parser, line.machines, line.jobs)) {
        return QStringLiteral("--machines is a file that names machines, one a line");
    }
    return {};
}

QString parseFolders(const QCommandLineParser& parser, ArchiveSettings& settings)
{
    const QStringList folders = parser.positionalArguments();
    if (folders.size() != 2 || folders.contains(QString())) {
        return QStringLiteral("the folders SOURCE and TARGET are to be named");
    }
    QString problem;
    settings.source = realPath(folders[0], problem);
    settings.target = realPath(folders[1], problem);
    return problem;
}

QString parseFiles(const QCommandLineParser& parser, ArchiveCommandLine& line)
{
    for (const QString& name : {QStringLiteral("report"), QStringLiteral("html")}) {
        if (parser.isSet(name) && parser.value(name).isEmpty()) {
            return QStringLiteral("--%1 is the name of a file").arg(name);
        }
    }
    QString problem;
    line.settings.report = parser.isSet(QStringLiteral("report"))
                               ? realPath(parser.value(QStringLiteral("report")), problem)
                               : line.settings.usualReport();
    if (parser.isSet(QStringLiteral("html"))) {
        line.page = realPath(parser.value(QStringLiteral("html")), problem);
    }
    return problem;
}

} // namespace

QString ArchiveCommandLine::parse(const QStringList& arguments)
{
    QCommandLineParser parser;
    addOptions(parser);
    // The parser takes the first for the program's name.
    if (!parser.parse(QStringList(QString()) + arguments)) {
        return parser.errorText();
    }
    task = taskOf(parser);
    if (task != CONVERT) {
        return {};
    }
    isTrial = parser.isSet(QStringLiteral("dry-run"));
    forces = parser.isSet(QStringLiteral("force"));
    failsIfLossy = parser.isSet(QStringLiteral("fail-if-lossy"));
    settings.verifies = parser.isSet(QStringLiteral("verify"));
    settings.onlyClean = parser.isSet(QStringLiteral("only-clean"));
    QString problem = parseBounds(parser, *this);
    if (problem.isEmpty()) {
        problem = parseFolders(parser, settings);
    }
    return problem.isEmpty() ? parseFiles(parser, *this) : problem;
}

QString ArchiveCommandLine::helpText()
{
    return QString::fromUtf8(HELP);
}
